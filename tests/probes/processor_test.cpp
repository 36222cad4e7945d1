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
  // Flags that are set, flags that can be changed, the highest CPUID leaf; and the family.
  constexpr uint32_t kCpuid = 1u << 21, kAlignmentCheck = 1u << 18, kTopBits = 0x7000;
  const std::tuple<uint32_t, uint32_t, uint32_t, int16_t> kCases[] = {
      {0, kCpuid, 1, 5},
      {0, kCpuid, 5, 5},
      {0, kCpuid, 0, -1},
      {0xF000, 0, 1, 0},
      {0, 0, 1, 2},
      {0, kTopBits, 1, 3},
      {0, kTopBits | kAlignmentCheck, 1, 4}};
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

TEST_F(ProcessorTest, SpeedGoesToProductsThatAreSold) {
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
