#include "probes/system_info.h"

#include <gtest/gtest.h>

#include "tests/probes/test_system.h"

namespace kivstore {
namespace {

class SystemInfoTest : public testing::Test {
 protected:
  kivtest::TestSystem system;
  SPlatformOverride<ISystem> override{Platform().system, &system};
};

TEST_F(SystemInfoTest, NamesAndVersions) {
  using Row = std::tuple<uint32_t, const char*, const char*, uint16_t>;
  for (const auto& [version, name, text, packed] :
       {Row{0x80000004, "Windows 95", "4.0", 0x0400}, Row{0x80000104, "Windows 98", "4.01", 0x0401},
        Row{0x80000A04, "Windows", "4.1", 0x0410}, Row{0x80000904, "Windows Me", "4.09", 0x0409},
        Row{0x80005A04, "Windows", "4.9", 0x0490}, Row{0x3303, "Windows NT", "3.51", 0x0351},
        Row{4, "Windows NT", "4.0", 0x0400}, Row{5, "Windows 2000", "5.0", 0x0500},
        Row{0x0105, "Windows XP", "5.01", 0x0501}, Row{10, "Windows", "10.0", 0x1000}}) {
    system.version = version;
    EXPECT_TRUE(SSystemInfo::Probe());
    EXPECT_STREQ(name, SSystemInfo::osName.GetText());
    EXPECT_STREQ(text, SSystemInfo::osVersionText.GetText());
    EXPECT_EQ(packed, SSystemInfo::osVersion);
    EXPECT_EQ(version < 0x80000000, SSystemInfo::isNtFamily);
    EXPECT_EQ(packed >= 0x0400, SSystemInfo::atLeastVersion4);
  }
}

TEST_F(SystemInfoTest, OldSystemIsToldAndProbedAllTheSame) {
  system.memory = (64ull << 20) + 1;
  for (const uint32_t version : {0x3203u, 0x3303u}) {  // 3.50 and 3.51
    system.version = version;
    system.message.clear();
    EXPECT_TRUE(SSystemInfo::Probe());
    EXPECT_EQ(version == 0x3203
                  ? "Error!: This program requires 32-bit Windows (NT, 95, 98, 2000, or later)"
                  : "",
              system.message);
    EXPECT_EQ(65u, SSystemInfo::memoryMegabytes) << "rounded up";
  }
}

TEST_F(SystemInfoTest, ProcessorNames) {
  std::string names;
  const auto probe = [&](uint32_t version, std::initializer_list<ProcessorFacts> processors) {
    system.version = version;
    for (const ProcessorFacts& facts : processors) {
      system.processor = facts;
      SSystemInfo::Probe();
      names += SSystemInfo::processorName.GetText() + std::string(" ");
    }
  };
  probe(5, {{0, 3, 0}, {0, 4, 0}, {0, 15, 0}, {1, 4, 0}, {2, 4, 0}, {3, 4, 0}, {9, 4, 0}});
  EXPECT_EQ("386 486 Pentium MIPS Alpha PPC ??? ", std::exchange(names, ""));
  probe(0x80000004, {{0, 6, 0x182}, {0, 6, 0x1E6}, {0, 3, 0x24A}, {0, 6, 7}});
  EXPECT_EQ("386 486 Pentium ??? ", names);
}

TEST_F(SystemInfoTest, SmoothingIsAskedOnceAndOnlyOfNewerSystems) {
  system.smoothing = system.smoothingKnown = true;
  system.version = 0x00003303;
  SSystemInfo::Probe();
  EXPECT_FALSE(FontSmoothing());
  system.version = 0x0000000A;
  SSystemInfo::Probe();
  EXPECT_TRUE(FontSmoothing());
  system.smoothing = false;
  EXPECT_FALSE(FontSmoothing());
  EXPECT_TRUE(SetFontSmoothing());
  EXPECT_TRUE(FontSmoothing());
}

TEST_F(SystemInfoTest, NumbersAndNames) {
  for (const uint32_t mhz : {199u, 2893u}) {
    system.statedMhz = mhz;
    SSystemInfo::Probe();
    EXPECT_EQ(mhz == 199 ? 200 : 2893, SSystemInfo::processorMhz) << "before the measured";
  }
  system.planes = 1;
  system.bitsPerPixel = 24;
  EXPECT_EQ(24, ColorDepth());
  system.affinity = 0xB;
  EXPECT_EQ(3, ProcessorCount());
  SString name("a:b<c>d\"e\\f/g|h");
  SanitizeName(name);
  EXPECT_STREQ("a;b[c]d'e_f_g!h", name.GetText());
}

}  // namespace
}  // namespace kivstore
