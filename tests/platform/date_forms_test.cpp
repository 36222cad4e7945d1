// The forms of a date that both systems take, Windows where the user's locale is American; and what
// POSIX does with everything else.
#include <gtest/gtest.h>

#include <string>

#include "platform/platform.h"

namespace kivstore {
namespace {

double ParseDate(const std::string& text, bool dateOnly = false) {
  double date = 99.0;
  EXPECT_TRUE(Platform().dates->Parse(text.c_str(), dateOnly, date)) << text;
  return date;
}

TEST(Dates, TakesItsForms) {
  for (const char* text :
       {"2001-02-03", "02/03/2001", "2/3/01", "3 February 2001", "3 feb 2001", "3-Feb-2001",
        "February 3, 2001", "Feb 3 2001", "february 3,2001", "  2001-02-03\t"}) {
    EXPECT_EQ(ParseDate(text), 36925.0) << text;
  }
}

TEST(Dates, TakesATimeOfDayBehindOrAlone) {
  const struct {
    const char* text;
    int seconds;
  } cases[] = {{"14:05", 50700}, {"14:05:06", 50706}, {"2:05 PM", 50700}, {"2:05:06pm", 50706},
               {"12:00 AM", 0},  {"12:30 pm", 45000}, {"0:00", 0},        {"23:59:59", 86399}};
  for (const auto& c : cases) {
    const std::string behind = std::string("February 3, 2001 ") + c.text;
    EXPECT_NEAR(ParseDate(c.text), c.seconds / 86400.0, 1e-9) << c.text;
    EXPECT_NEAR(ParseDate(behind), 36925.0 + c.seconds / 86400.0, 1e-9) << behind;
    EXPECT_EQ(ParseDate(behind, true), 36925.0) << behind;
    EXPECT_EQ(ParseDate(c.text, true), 0.0) << c.text;
  }
}

TEST(Dates, CountsDaysFromTheEndOf1899) {
  const struct {
    const char* text;
    double date;
  } cases[] = {{"12/30/1899", 0.0}, {"1/1/1904", 1462.0},      {"2/29/2000", 36585.0},
               {"1/1/29", 47119.0}, {"9999-12-31", 2958465.0}, {"12/29/1899 6:00", -1.25}};
  for (const auto& c : cases) {
    EXPECT_EQ(ParseDate(c.text), c.date) << c.text;
  }
}

#ifndef _WIN32
TEST(PosixDates, AreTheirOwnWhereTwoDigitsLeaveTheYearOpen) {
  EXPECT_EQ(ParseDate("03-FEB-01"), 36925.0);
  EXPECT_EQ(ParseDate("1/1/30"), 10959.0);
}

TEST(PosixDates, RefusesEverythingElse) {
  for (const char* text :
       {"",          " ",         "x",          "2001",     "2001-02",   "2001-02-03x",
        "2/30/2001", "2/29/2001", "13/1/2001",  "0/1/2001", "1/0/2001",  "3 Fe 2001",
        "3 2 2001",  "2/3/20011", "1/300/2001", "2/3/0099", "-2/3/2001", "24:00",
        "12:60",     "12:00:60",  "13:00 PM",   "0:30 AM",  "14:05 XM",  "14",
        ":05",       "14:05:",    "2/3/01 14",  "1/1/99 PM"}) {
    double date = 99.0;
    EXPECT_FALSE(Platform().dates->Parse(text, false, date)) << text;
    EXPECT_EQ(date, 0.0) << text;
  }
}
#endif

}  // namespace
}  // namespace kivstore
