// Time stamps and the dates that a person types, random numbers, and waiting on the tick count.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <set>

#include "foundation/time/date_time.h"
#include "foundation/time/random.h"
#include "foundation/time/ticks.h"
#include "tests/support/test_clock.h"

namespace kivstore {
namespace {

using kivtest::TestClock;

uint32_t Raw(uint16_t year, uint16_t month, uint16_t day, uint16_t hour = 0, uint16_t minute = 0,
             uint16_t second = 0) {
  SDateTime time(7);
  time.Set(year, month, day, hour, minute, second);
  return time.Raw();
}

TEST(SDateTimeSet, CountsSecondsFrom1904) {
  const struct {
    const char* what;
    uint32_t raw, expected;
  } cases[] = {{"midnight of the first day is no longer 0", Raw(1904, 1, 1), 1},
               {"one second", Raw(1904, 1, 1, 0, 0, 1), 1},
               {"two seconds", Raw(1904, 1, 1, 0, 0, 2), 2},
               {"3 February 2001, 04:05:06", Raw(2001, 2, 3, 4, 5, 6), 3064017906U},
               {"the last second is not the fresh mark", Raw(2040, 2, 6, 6, 28, 15), 0xFFFFFFFE},
               {"0 by wrapping is made 1", Raw(2040, 2, 6, 6, 28, 16), 1},
               {"the rest of that day wraps", Raw(2040, 2, 6, 23, 59, 59), 63103},
               {"7 February 2040", Raw(2040, 2, 7), 0},
               {"2041", Raw(2041, 1, 1), 0},
               {"1903", Raw(1903, 12, 31, 23, 59, 59), 1},
               {"year 0", Raw(0, 0, 0), 1},
               {"the next day at 24:00", Raw(2001, 2, 3, 24) - Raw(2001, 2, 4), 0},
               {"month 0 as January", Raw(2001, 0, 5) - Raw(2001, 1, 5), 0},
               {"months beyond the last as December", Raw(2001, 65535, 1) - Raw(2001, 12, 1), 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.raw, c.expected) << c.what;
  }
}

TEST(SDateTimeSet, CountsDaysAsTheCalendarDoes) {
  using namespace std::chrono;
  constexpr sys_days kFirst = 1904y / 1 / 1;
  for (sys_days day = kFirst + days(1); day < sys_days(2040y / 2 / 6); day += days(1)) {
    const year_month_day date(day);
    const auto year = static_cast<uint16_t>(static_cast<int>(date.year()));
    const auto month = static_cast<uint16_t>(static_cast<unsigned>(date.month()));
    ASSERT_EQ(Raw(year, month, static_cast<uint16_t>(static_cast<unsigned>(date.day()))),
              (day - kFirst).count() * 86400u);
  }
}

TEST(SDateTime, IsNowByTheLocalClock) {
  TestClock clock;
  EXPECT_EQ(SDateTime().Raw(), 3064017906U);
  EXPECT_EQ(clock.NowCalls(), 1);
  EXPECT_LT(SDateTime(0x7FFFFFFF), SDateTime(0x80000000)) << "unsigned";
}

TEST(SDateTimeUnix, ShiftsTheEpochAndStaysWithinTheRange) {
  const struct {
    uint32_t seconds, raw, back;
  } cases[] = {{0, 2082844800U, 1},
               {2, 2082844802U, 2},
               {0x83DA4F7E, 0xFFFFFFFE, 0x83DA4F7E},
               {0x83DA4F7F, 0xFFFFFFFE, 0x83DA4F7E}};
  for (const auto& c : cases) {
    SDateTime time(0);
    time.SetUnix(c.seconds);
    EXPECT_EQ(time.Raw(), c.raw) << c.seconds;
    EXPECT_EQ(time.GetUnix(), c.back) << c.seconds;
  }
  EXPECT_EQ(SDateTime(5).GetUnix(), 1U);
}

// Answers one date, whatever the text.
struct FixedDates final : IDates {
  FixedDates(double date, bool isDate) : date(date), isDate(isDate) {}
  bool Parse(const char*, bool, double& out) override { return out = date, isDate; }

  double date;
  bool isDate;
  SPlatformOverride<IDates> installed{Platform().dates, this};
};

TEST(SDateTimeParse, TurnsADateNumberIntoSeconds) {
  const struct {
    double date;
    bool isDate, result;
    uint32_t raw;
  } cases[] = {{0.0, true, false, 7},         // day 0 at midnight counts as no date
               {0.0, false, false, 7},        // no date leaves the value
               {3.0, false, false, 0},        // a failure that gave a number
               {1462.0, true, true, 1},       // 1 January 1904
               {1463.5, true, true, 129600},  // a day and a half later
               {0.25, true, true, 1},         // a time alone
               {51172.0, true, true, 4294944000U},
               {51172.5, true, true, 0},
               {1e300, true, true, 0},
               {std::numeric_limits<double>::quiet_NaN(), true, true, 1}};
  for (const auto& c : cases) {
    const FixedDates dates(c.date, c.isDate);
    SDateTime time(7);
    EXPECT_EQ(time.Parse("any", true), c.result) << c.date;
    EXPECT_EQ(time.Raw(), c.raw) << c.date;
  }
}

TEST(SDateTimeParse, TakesTheTimeOfDayOnlyIfAsked) {
  SDateTime time(7);
  EXPECT_TRUE(time.Parse("2/3/2001 12:00", true));
  EXPECT_EQ(time.Raw(), Raw(2001, 2, 3, 12));
  EXPECT_TRUE(time.Parse("2/3/2001 12:00", false));
  EXPECT_FALSE(time.Parse("12:00", false));
  EXPECT_EQ(time.Raw(), Raw(2001, 2, 3));
}

TEST(Random, SeedsFromTheTickCountAtEveryThousandthCallOfAnyForm) {
  TestClock clock;
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
  EXPECT_TRUE(Random(5, 4) == 5 && Random16(-1, -2) == -1);
  EXPECT_EQ(Random(INT32_MAX, INT32_MIN), INT32_MAX);
  EXPECT_LE(Random(INT32_MIN, INT32_MAX), INT32_MIN + 0x7FFF);
}

TEST(WaitTicks, SpinsUntilTheCountHasReachedTheEndBySignedNumbers) {
  const struct {
    uint32_t start;
    int32_t wait;
    uint32_t end;
  } cases[] = {{0, 0, 0},
               {0, -5, 0},
               {0, 100, 101},
               {0xFFFFFFF0, 32, 0x11},          // across 0
               {0x7FFFFFF0, 100, 0x7FFFFFF2}};  // the end is negative: over at the first look
  for (const auto& c : cases) {
    TestClock clock(1);
    clock.SetTicks(c.start);
    WaitTicks(c.wait);
    EXPECT_EQ(clock.CurrentTicks(), c.end) << c.wait;
  }
}

#ifndef _WIN32  // where std::clock tells the time of day
TEST(WaitTicks, LeavesTheProcessorAlone) {
  const std::clock_t used = std::clock();
  WaitTicks(200);
  EXPECT_LT(std::clock() - used, CLOCKS_PER_SEC / 20);
}
#endif

TEST(Beep, IsTheExclamation) {
  TestClock clock;
  Beep();
  EXPECT_EQ(clock.Beeps(), std::vector<uint32_t>{0x30});
}

}  // namespace
}  // namespace kivstore
