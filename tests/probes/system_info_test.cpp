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
  const struct {
    uint32_t version;
    const char* name;
    const char* text;
    uint16_t packed;
    bool nt;
  } kCases[] = {{0x80000004, "Windows 95", "4.0", 0x0400, false},
                {0x80000104, "Windows 98", "4.01", 0x0401, false},
                {0x80000A04, "Windows", "4.1", 0x0410, false},
                {0x80005A04, "Windows", "4.9", 0x0490, false},
                {0x80000904, "Windows Me", "4.09", 0x0409, false},
                {0x00003303, "Windows NT", "3.51", 0x0351, true},
                {0x00000004, "Windows NT", "4.0", 0x0400, true},
                {0x00000005, "Windows 2000", "5.0", 0x0500, true},
                {0x00000105, "Windows XP", "5.01", 0x0501, true},
                {0x0000000A, "Windows", "10.0", 0x1000, true}};
  for (const auto& c : kCases) {
    system.version = c.version;
    EXPECT_TRUE(SSystemInfo::Probe());
    EXPECT_STREQ(c.name, SSystemInfo::osName.GetText());
    EXPECT_EQ(c.packed, SSystemInfo::osVersion);
    EXPECT_EQ(c.nt, SSystemInfo::isNtFamily);
    EXPECT_STREQ(c.text, SSystemInfo::osVersionText.GetText());
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
    EXPECT_FALSE(SSystemInfo::atLeastVersion4);
  }
}

TEST_F(SystemInfoTest, ProcessorNames) {
  const struct {
    uint32_t version;
    ProcessorFacts facts;
    const char* name;
  } kCases[] = {{5, {0, 3, 0}, "386"},
                {5, {0, 4, 0}, "486"},
                {5, {0, 15, 0}, "Pentium"},
                {5, {1, 4, 0}, "MIPS"},
                {5, {2, 4, 0}, "Alpha"},
                {5, {3, 4, 0}, "PPC"},
                {5, {9, 4, 0}, "???"},
                {0x80000004, {0, 6, 0x182}, "386"},
                {0x80000004, {0, 6, 0x1E6}, "486"},
                {0x80000004, {0, 3, 0x24A}, "Pentium"},
                {0x80000004, {0, 6, 7}, "???"}};
  for (const auto& c : kCases) {
    system.version = c.version;
    system.processor = c.facts;
    SSystemInfo::Probe();
    EXPECT_STREQ(c.name, SSystemInfo::processorName.GetText());
  }
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
