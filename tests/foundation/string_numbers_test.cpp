#include <gtest/gtest.h>

#include <climits>
#include <utility>

#include "foundation/text/string.h"

namespace kivstore {
namespace {

TEST(SStringNumbers, DecimalTexts) {
  SString s;
  const struct {
    int32_t value;
    const char* text;
  } cases[] = {{0, "0"}, {-1, "-1"}, {INT32_MAX, "2147483647"}, {INT32_MIN, "-2147483648"}};
  for (const auto& c : cases) {
    s.FromLong(c.value);
    EXPECT_STREQ(s.GetText(), c.text);
  }
  s.FromULong(4294967295u);
  EXPECT_STREQ(s.GetText(), "4294967295");
  s.FromULong(0);
  EXPECT_STREQ(s.GetText(), "0");
}

// Whether a text was a clean number, and the value that came.
template <class T>
std::pair<bool, T> Parsed(bool (SString::*parse)(T&) const, const char* text) {
  T value = 99;
  const bool clean = (SString(text).*parse)(value);
  return {clean, value};
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
    EXPECT_EQ(Parsed(&SString::ToLong, c.text), std::pair(c.clean, c.value)) << c.text;
  }
}

TEST(SStringNumbers, ToULongKnowsNoMinus) {
  EXPECT_EQ(Parsed(&SString::ToULong, "4294967295"), std::pair(true, UINT32_MAX));
  EXPECT_EQ(Parsed(&SString::ToULong, "+1"), std::pair(true, 1u));
  EXPECT_EQ(Parsed(&SString::ToULong, "-1"), std::pair(false, 1u));
  EXPECT_EQ(Parsed(&SString::ToULong, ""), std::pair(false, 0u));
}

TEST(SStringNumbers, ToHexStopsAtTheFirstOtherCharacter) {
  const struct {
    const char* text;
    bool good;
    uint32_t value;
  } cases[] = {
      {"0x1F", true, 0x1F}, {"0XfF", true, 0xFF}, {"c0de", true, 0xC0DE},
      {"", false, 0},       {"0", true, 0},       {"12g4", false, 0x12},
      {"x1", false, 0},     {"-1", false, 0},     {"123456789", true, 0x23456789},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Parsed<uint32_t>(&SString::ToHex, c.text), std::pair(c.good, c.value)) << c.text;
  }
}

template <class T>
std::pair<bool, T> Fitting(int value) {
  return {value != 99, static_cast<T>(value)};
}

TEST(SStringNumbers, SixteenBitHexTakesItsRangeOnly) {
  const struct {
    const char* text;
    int asSigned, asUnsigned;  // 99 is left where it does not fit
  } cases[] = {
      {"7FFF", 0x7FFF, 0x7FFF}, {"8000", 99, 0x8000}, {"FFFF", 99, 0xFFFF}, {"10000", 99, 99},
      {"FFFF8000", -32768, 99}, {"FFFF7FFF", 99, 99}, {"FFFFFFFF", -1, 99}, {"zz", 99, 99},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Parsed<int16_t>(&SString::ToHex, c.text), Fitting<int16_t>(c.asSigned)) << c.text;
    EXPECT_EQ(Parsed<uint16_t>(&SString::ToHex, c.text), Fitting<uint16_t>(c.asUnsigned)) << c.text;
  }
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
  EXPECT_EQ(Parsed(&SString::ToDouble, "1.5"), std::pair(true, 1.5));
  EXPECT_EQ(Parsed(&SString::ToDouble, "-2e3"), std::pair(true, -2000.0));
  EXPECT_EQ(Parsed(&SString::ToDouble, "1.5x"), std::pair(false, 1.5));
  EXPECT_EQ(Parsed(&SString::ToDouble, "1 "), std::pair(false, 1.0));
  EXPECT_EQ(Parsed(&SString::ToDouble, ""), std::pair(false, 0.0));
}

}  // namespace
}  // namespace kivstore
