// Waiting on the tick count.
#include "foundation/time/ticks.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/test_clock.h"

namespace kivstore {
namespace {

TEST(WaitTicks, SpinsUntilTheCountHasReachedTheEnd) {
  kivtest::TestClock clock(1);
  WaitTicks(0);
  WaitTicks(-5);
  EXPECT_EQ(clock.TicksCalls(), 0);
  WaitTicks(100);
  EXPECT_EQ(clock.TicksCalls(), 101);  // tick 0, then 1 to 100
}

TEST(WaitTicks, ComparesSigned) {
  kivtest::TestClock clock(1);
  clock.SetTicks(0xFFFFFFF0);
  WaitTicks(32);  // across 0
  EXPECT_EQ(clock.CurrentTicks(), 0x11U);
  clock.SetTicks(0x7FFFFFF0);
  WaitTicks(100);  // the end is negative: over at the first look
  EXPECT_EQ(clock.CurrentTicks(), 0x7FFFFFF2U);
}

TEST(Beep, IsTheExclamation) {
  kivtest::TestClock clock;
  Beep();
  EXPECT_EQ(clock.Beeps(), std::vector<uint32_t>{0x30});
}

}  // namespace
}  // namespace kivstore
