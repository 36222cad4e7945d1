// What is found out about the machine.
#include <gtest/gtest.h>

#include "probes/processor.h"
#include "probes/processor_speed.h"
#include "probes/system_info.h"
#include "tests/probes/test_system.h"

namespace kivstore {
namespace {

class Probes : public testing::Test {
 protected:
  kivtest::TestSystem system;
  SPlatformOverride<ISystem> override{Platform().system, &system};
};

TEST_F(Probes, FamilyComesFromCpuidOrFromTheFlagsThatStick) {
  // Flags that are set, flags that can be changed, the highest CPUID leaf; and the family.
  constexpr uint32_t kCpuid = 1u << 21, kCheck = 1u << 18, kTop = 0x7000, kNone = 0;
  const std::tuple<uint32_t, uint32_t, uint32_t, int16_t> kCases[] = {
      {0, kCpuid, 1, 5}, {0, kCpuid, 5, 5}, {0, kCpuid, 0, -1},      {0xF000, kNone, 1, 0},
      {0, kNone, 1, 2},  {0, kTop, 1, 3},   {0, kTop | kCheck, 1, 4}};
  system.features = 0x12345678;
  system.signature = 0x6543;
  for (const auto& [flags, changeable, highestLeaf, family] : kCases) {
    system.flags = flags;
    system.changeable = changeable;
    system.highestLeaf = highestLeaf;
    EXPECT_EQ(family, ProcessorFamily());
    EXPECT_EQ(family >= 5 ? 0x12345678u : 0, ProcessorFeatures()) << family;
  }
}

TEST_F(Probes, SpeedGoesToProductsThatAreSold) {
  // What was measured, and what it is with and without keeping what is beyond the products.
  const std::tuple<uint32_t, uint32_t, uint32_t> kCases[] = {
      {0, 0, 0},        {133, 133, 133},    {166, 166, 166},   {199, 200, 200},
      {200, 200, 200},  {300, 300, 300},    {449, 450, 450},   {975, 966, 966},
      {976, 976, 1000}, {1049, 1049, 1000}, {1050, 1050, 1100}};
  for (const auto& [mhz, kept, rounded] : kCases) {
    EXPECT_EQ(kept, RoundMhz(mhz, true)) << mhz;
    EXPECT_EQ(rounded, RoundMhz(mhz, false)) << mhz;
  }
}

TEST_F(Probes, CounterGivesCyclesOverTime) {
  system.features = kFeatureTimeStampCounter;
  system.frequency = 1'000'000;
  system.cyclesPerTick = 233;
  const SSpeedResult result = MeasureSpeed();
  EXPECT_NEAR(233.0, result.wholeMhz, 1.0);
  EXPECT_NEAR(233.0, static_cast<double>(result.cycles) / result.microseconds, 1.0);
  EXPECT_EQ(0, system.priority) << "the priority is given back";
  EXPECT_EQ(233u, ProcessorSpeed());
}

TEST_F(Probes, WithoutCounterTheLoopIsTimed) {
  system.frequency = 1'000'000;
  system.signature = 0x500;
  // 172,000 cycles at 100 MHz, one tick for the look; and so many that half a megahertz is left.
  for (const auto& [ticks, whole, rounded] : {std::tuple(1721, 99u, 100u), {1599, 107u, 107u}}) {
    system.ticksPerLoop = ticks;
    system.roundsRun = 0;
    const SSpeedResult result = MeasureSpeed();
    EXPECT_EQ(43u * 4000u, result.cycles);
    EXPECT_EQ(static_cast<uint32_t>(ticks) + 1, result.microseconds);
    EXPECT_EQ(std::pair(whole, rounded), std::pair(result.wholeMhz, result.roundedMhz));
    EXPECT_EQ(40000u, system.roundsRun) << "ten times 4000 rounds";
  }
}

TEST_F(Probes, WhatCannotBeMeasuredIsZero) {
  system.changeable = 0;  // a 286
  system.frequency = 1'000'000;
  EXPECT_EQ(0u, MeasureSpeed().cycles);
  system.changeable = 1u << 21;
  system.frequency = 0;
  for (const uint32_t features : {0u, kFeatureTimeStampCounter}) {
    system.features = features;
    const SSpeedResult result = MeasureSpeed();
    EXPECT_EQ(0u, result.cycles + result.microseconds + result.wholeMhz + result.roundedMhz);
  }
}

// A loop that was optimised away takes no cycles a round, a wrong one hundreds.
TEST(RealProcessor, LoopTakesTime) {
  ISystem& system = *Platform().system;
  int64_t frequency = 0, start = 0, end = 0;
  ASSERT_TRUE(system.PerformanceFrequency(frequency) && system.PerformanceCounter(start));
  const uint32_t stampBefore = system.TimeStamp();
  system.BitScanLoop(1'000'000);
  const uint32_t cycles = system.TimeStamp() - stampBefore;
  system.PerformanceCounter(end);
  EXPECT_GT(end, start);
  EXPECT_TRUE(cycles == 0 || (cycles > 250'000 && cycles < 200'000'000)) << cycles;
}

TEST_F(Probes, NamesAndVersions) {
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

TEST_F(Probes, OldSystemIsToldAndProbedAllTheSame) {
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

TEST_F(Probes, ProcessorNames) {
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

TEST_F(Probes, SmoothingIsAskedOnceAndOnlyOfNewerSystems) {
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

TEST_F(Probes, NumbersAndNames) {
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
