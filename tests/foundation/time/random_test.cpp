// The shared call counter, the 15-bit width, and the ranges of random numbers.
#include "foundation/time/random.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include "tests/support/test_clock.h"

namespace kivstore {
namespace {

TEST(Random, SeedsFromTheTickCountAtEveryThousandthCallOfAnyForm) {
  kivtest::TestClock clock;
  while (clock.TicksCalls() == 0) {
    RandomUnit();
  }
  for (int i = 0; i < 333; ++i) {
    Random(1, 6);
    Random16(1, 6);
    RandomUnit();
  }
  EXPECT_EQ(clock.TicksCalls(), 1);
  clock.SetTicks(4711);
  const int32_t drawn = Random(0, 0x7FFF);
  EXPECT_EQ(clock.TicksCalls(), 2);
  std::srand(4711);
  EXPECT_EQ(drawn, std::rand() & 0x7FFF);
}

TEST(Random, IsFifteenBitsWideIncludesBothEndsAndAnyRangeIsSafe) {
  int32_t seen = 0;
  std::set<int32_t> drawn, drawn16;
  for (int i = 0; i < 2000; ++i) {
    seen |= Random(0, INT32_MAX - 1);
    drawn.insert(Random(-2, 3));
    drawn16.insert(Random16(-2, 3));
    const double unit = RandomUnit();
    ASSERT_TRUE(unit >= 0.0 && unit <= 1.0) << unit;
  }
  EXPECT_EQ(seen, 0x7FFF);
  EXPECT_EQ(drawn, (std::set<int32_t>{-2, -1, 0, 1, 2, 3}));
  EXPECT_EQ(drawn16, drawn);
  EXPECT_EQ(Random(5, 4), 5);
  EXPECT_EQ(Random(INT32_MAX, INT32_MIN), INT32_MAX);
  EXPECT_EQ(Random16(-1, -2), -1);
  EXPECT_LE(Random(INT32_MIN, INT32_MAX), INT32_MIN + 0x7FFF);
}

}  // namespace
}  // namespace kivstore
