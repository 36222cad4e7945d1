#include "probes/processor.h"

#include <gtest/gtest.h>

#include "probes/processor_speed.h"
#include "tests/probes/test_system.h"

namespace kivstore {
namespace {

class ProcessorTest : public testing::Test {
 protected:
  kivtest::TestSystem system;
  SPlatformOverride<ISystem> override{Platform().system, &system};
};

TEST_F(ProcessorTest, FamilyComesFromCpuidOrFromTheFlagsThatStick) {
  const struct {
    const char* name;
    uint32_t flags, changeable, highestLeaf, signature;
    int16_t family;
  } kCases[] = {{"Pentium", 0, 1u << 21, 1, 0x543, 5},
                {"sixth", 0, 1u << 21, 5, 0x6F2, 6},
                {"CPUID without leaf 1", 0, 1u << 21, 0, 0x543, -1},
                {"8086: the top bits stick at 1", 0xF000, 0, 1, 0x543, 0},
                {"286: they stick at 0", 0, 0, 1, 0x543, 2},
                {"386: no alignment check", 0, 0x7000, 1, 0x543, 3},
                {"486: alignment check, no CPUID", 0, 0x7000 | 1u << 18, 1, 0x543, 4}};
  system.features = 0x12345678;
  for (const auto& c : kCases) {
    system.flags = c.flags;
    system.changeable = c.changeable;
    system.highestLeaf = c.highestLeaf;
    system.signature = c.signature;
    EXPECT_EQ(c.family, ProcessorFamily()) << c.name;
    EXPECT_EQ(c.family >= 5 ? 0x12345678u : 0, ProcessorFeatures()) << c.name;
  }
}

TEST_F(ProcessorTest, SpeedGoesToProductsThatAreSold) {
  const struct {
    uint32_t mhz, kept, rounded;
  } kCases[] = {{0, 0, 0},        {133, 133, 133},    {166, 166, 166},   {199, 200, 200},
                {200, 200, 200},  {300, 300, 300},    {449, 450, 450},   {975, 966, 966},
                {976, 976, 1000}, {1049, 1049, 1000}, {1050, 1050, 1100}};
  for (const auto& c : kCases) {
    EXPECT_EQ(c.kept, RoundMhz(c.mhz, true)) << c.mhz;
    EXPECT_EQ(c.rounded, RoundMhz(c.mhz, false)) << c.mhz;
  }
}

TEST_F(ProcessorTest, CounterGivesCyclesOverTime) {
  system.features = kFeatureTimeStampCounter;
  system.frequency = 1'000'000;
  system.cyclesPerTick = 233;
  const SSpeedResult result = MeasureSpeed();
  EXPECT_NEAR(233.0, result.wholeMhz, 1.0);
  EXPECT_NEAR(233.0, static_cast<double>(result.cycles) / result.microseconds, 1.0);
  EXPECT_EQ(0, system.priority) << "the priority is given back";
  EXPECT_EQ(233u, ProcessorSpeed());
}

TEST_F(ProcessorTest, WithoutCounterTheLoopIsTimed) {
  system.frequency = 1'000'000;
  system.ticksPerLoop = 1721;  // 172,000 cycles at 100 MHz, one tick for the look
  system.signature = 0x500;
  const SSpeedResult result = MeasureSpeed();
  EXPECT_EQ(43u * 4000u, result.cycles);
  EXPECT_EQ(1722u, result.microseconds);
  EXPECT_EQ(99u, result.wholeMhz);
  EXPECT_EQ(100u, result.roundedMhz);
  EXPECT_EQ(40000u, system.roundsRun) << "ten times 4000 rounds";
}

TEST_F(ProcessorTest, WhatCannotBeMeasuredIsZero) {
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

}  // namespace
}  // namespace kivstore
