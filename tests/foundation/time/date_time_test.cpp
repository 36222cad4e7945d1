// Time stamps: the count from 1904, the two reserved values, and dates that a person types.
#include "foundation/time/date_time.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/test_clock.h"

namespace kivstore {
namespace {

uint32_t Raw(uint16_t year, uint16_t month, uint16_t day, uint16_t hour = 0, uint16_t minute = 0,
             uint16_t second = 0) {
  SDateTime time(7);
  time.Set(year, month, day, hour, minute, second);
  return time.Raw();
}

// Answers one date, whatever the text.
struct FixedDates final : IDates {
  FixedDates(double date, bool isDate) : date(date), isDate(isDate) {}
  bool Parse(const char*, bool, double& out) override {
    out = date;
    return isDate;
  }
  double date;
  bool isDate;
  SPlatformOverride<IDates> installed{Platform().dates, this};
};

TEST(SDateTimeSet, CountsSecondsFrom1904) {
  constexpr uint32_t kDay = 86400;
  const struct {
    const char* what;
    uint32_t raw, expected;
  } cases[] = {{"midnight of the first day is no longer 0", Raw(1904, 1, 1), 1},
               {"one second", Raw(1904, 1, 1, 0, 0, 1), 1},
               {"two seconds", Raw(1904, 1, 1, 0, 0, 2), 2},
               {"1 March 1904", Raw(1904, 3, 1), 60 * kDay},
               {"1 January 1970", Raw(1970, 1, 1), 2082844800U},
               {"29 February 2000 is the 60th day", Raw(2000, 2, 29) - Raw(2000, 1, 1), 59 * kDay},
               {"1 March 2000", Raw(2000, 3, 1) - Raw(2000, 1, 1), 60 * kDay},
               {"1 March 2001", Raw(2001, 3, 1) - Raw(2001, 1, 1), 59 * kDay},
               {"31 December 2003", Raw(2004, 1, 1) - Raw(2003, 12, 31), kDay},
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

TEST(SDateTime, IsNowByTheLocalClock) {
  kivtest::TestClock clock;
  clock.SetLocal(2001, 2, 3, 4, 5, 6);
  EXPECT_EQ(SDateTime().Raw(), 3064017906U);
  EXPECT_EQ(clock.NowCalls(), 1);
  EXPECT_LT(SDateTime(0x7FFFFFFF), SDateTime(0x80000000)) << "unsigned";
}

TEST(SDateTimeUnix, ShiftsTheEpochAndStaysWithinTheRange) {
  const struct {
    uint32_t seconds, raw, back;
  } cases[] = {{0, 2082844800U, 1},
               {1, 2082844801U, 1},
               {2, 2082844802U, 2},
               {0x83DA4F7E, 0xFFFFFFFE, 0x83DA4F7E},
               {0x83DA4F7F, 0xFFFFFFFE, 0x83DA4F7E},
               {0xFFFFFFFF, 0xFFFFFFFE, 0x83DA4F7E}};
  for (const auto& c : cases) {
    SDateTime time(0);
    time.SetUnix(c.seconds);
    EXPECT_EQ(time.Raw(), c.raw) << c.seconds;
    EXPECT_EQ(time.GetUnix(), c.back) << c.seconds;
  }
  EXPECT_EQ(SDateTime(5).GetUnix(), 1U);
}

TEST(SDateTimeParse, TurnsADateNumberIntoSeconds) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    double date;
    bool isDate, result;
    uint32_t raw;
  } cases[] = {{0.0, true, false, 7},         // day 0 at midnight counts as no date
               {0.0, false, false, 7},        // no date leaves the value
               {3.0, false, false, 0},        // a failure that gave a number
               {1462.0, true, true, 1},       // 1 January 1904
               {1463.5, true, true, 129600},  // a day and a half later
               {-20000.0, true, true, 1},     // before
               {0.25, true, true, 1},         // a time alone
               {51172.0, true, true, 4294944000U},
               {51172.5, true, true, 0},
               {1e300, true, true, 0},
               {kNan, true, true, 1}};
  for (const auto& c : cases) {
    const FixedDates dates(c.date, c.isDate);
    SDateTime time(7);
    EXPECT_EQ(time.Parse("any", true), c.result) << c.date;
    EXPECT_EQ(time.Raw(), c.raw) << c.date;
  }
}

TEST(SDateTimeParse, TakesTheTimeOfDayOnlyIfAskedAndBeyondTheRangeIsNoTime) {
  SDateTime time(7);
  EXPECT_TRUE(time.Parse("2/3/2001 12:00", true));
  EXPECT_EQ(time.Raw(), Raw(2001, 2, 3, 12));
  EXPECT_TRUE(time.Parse("2/3/2001 12:00", false));
  EXPECT_FALSE(time.Parse("12:00", false));
  EXPECT_EQ(time.Raw(), Raw(2001, 2, 3));
  EXPECT_TRUE(time.Parse("3/1/2041", false));
  EXPECT_EQ(time, SDateTime::None());
}

}  // namespace
}  // namespace kivstore
