#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "foundation/string.h"

namespace kivstore {
namespace {

TEST(SStringNumbers, DecimalTexts) {
  SString s;
  const struct {
    int32_t value;
    const char* text;
  } cases[] = {
      {0, "0"}, {7, "7"}, {-1, "-1"}, {2147483647, "2147483647"}, {INT32_MIN, "-2147483648"}};
  for (const auto& c : cases) {
    s.FromLong(c.value);
    EXPECT_STREQ(s.GetText(), c.text);
  }
  s.FromULong(4294967295u);
  EXPECT_STREQ(s.GetText(), "4294967295");
  s.FromULong(0);
  EXPECT_STREQ(s.GetText(), "0");
}

TEST(SStringNumbers, ToLongGoesOnPastWhatIsNoDigit) {
  const struct {
    const char* text;
    bool clean;
    int32_t value;
  } cases[] = {
      {"123", true, 123},
      {"-45", true, -45},
      {"+6", true, 6},
      {"12a3", false, 123},
      {"-1x2", false, -12},
      {"+", false, 0},
      {"-", false, 0},
      {"", false, 0},
      {"--5", false, -5},
      {" 7", false, 7},
      {"-2147483648", true, INT32_MIN},
      {"4294967297", true, 1},
  };
  for (const auto& c : cases) {
    int32_t value = 99;
    EXPECT_EQ(SString(c.text).ToLong(value), c.clean) << c.text;
    EXPECT_EQ(value, c.value) << c.text;
  }
}

TEST(SStringNumbers, ToULongKnowsNoMinus) {
  const struct {
    const char* text;
    bool clean;
    uint32_t value;
  } cases[] = {
      {"4294967295", true, 4294967295u}, {"+1", true, 1}, {"-1", false, 1}, {"", false, 0}};
  for (const auto& c : cases) {
    uint32_t value = 99;
    EXPECT_EQ(SString(c.text).ToULong(value), c.clean) << c.text;
    EXPECT_EQ(value, c.value) << c.text;
  }
}

TEST(SStringNumbers, ToHexStopsAtTheFirstOtherCharacter) {
  const struct {
    const char* text;
    bool good;
    uint32_t value;
  } cases[] = {
      {"0x1F", true, 0x1F},
      {"0XfF", true, 0xFF},
      {"c0de", true, 0xC0DE},
      {"", false, 0},
      {"0", true, 0},
      {"12g4", false, 0x12},
      {"x1", false, 0},
      {"-1", false, 0},
      {"ffffffff", true, 0xFFFFFFFF},
      {"123456789", true, 0x23456789},
  };
  for (const auto& c : cases) {
    uint32_t value = 99;
    EXPECT_EQ(SString(c.text).ToHex(value), c.good) << c.text;
    EXPECT_EQ(value, c.value) << c.text;
  }
}

TEST(SStringNumbers, SixteenBitHexTakesItsRangeOnly) {
  const struct {
    const char* text;
    bool isSigned, isUnsigned;
  } cases[] = {
      {"7FFF", true, true},      {"8000", false, true},     {"FFFF", false, true},
      {"10000", false, false},   {"FFFF8000", true, false}, {"FFFF7FFF", false, false},
      {"FFFFFFFF", true, false}, {"zz", false, false},
  };
  for (const auto& c : cases) {
    int16_t asSigned = 5;
    uint16_t asUnsigned = 5;
    EXPECT_EQ(SString(c.text).ToHex(asSigned), c.isSigned) << c.text;
    EXPECT_EQ(SString(c.text).ToHex(asUnsigned), c.isUnsigned) << c.text;
    EXPECT_EQ(asSigned == 5, !c.isSigned) << c.text;
    EXPECT_EQ(asUnsigned == 5, !c.isUnsigned) << c.text;
  }
  int16_t lowest = 0;
  SString("0xFFFF8000").ToHex(lowest);
  EXPECT_EQ(lowest, -32768);
}

TEST(SStringNumbers, DecimalsBeyondSixFallBackToTheShortForm) {
  const struct {
    double value;
    int decimals;
    const char* text;
  } cases[] = {{1.5, 0, "2"},   {1.5, 2, "1.50"}, {-0.125, 6, "-0.125000"},
               {1.5, 7, "1.5"}, {1.5, -1, "1.5"}, {1e10, 7, "1e+10"}};
  SString s;
  for (const auto& c : cases) {
    s.FromDouble(c.value, c.decimals);
    EXPECT_STREQ(s.GetText(), c.text);
  }
  s.FromDouble(-1.7976931348623157e308, 6);
  EXPECT_EQ(s.GetLength(), 317);
}

TEST(SStringNumbers, ToDoubleMustUseTheWholeText) {
  const struct {
    const char* text;
    bool whole;
    double value;
  } cases[] = {{"1.5", true, 1.5}, {"-2e3", true, -2000}, {"1.5x", false, 1.5},
               {"", false, 0},     {"x", false, 0},       {"1 ", false, 1}};
  for (const auto& c : cases) {
    double value = 99;
    EXPECT_EQ(SString(c.text).ToDouble(value), c.whole) << c.text;
    EXPECT_EQ(value, c.value) << c.text;
  }
}

}  // namespace
}  // namespace kivstore
