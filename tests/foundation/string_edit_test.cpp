// Changing parts of a text and taking parts of it, with indices in, at and beyond its ends.
#include <gtest/gtest.h>

#include <climits>

#include "foundation/text/string.h"

namespace kivstore {
namespace {

TEST(SStringEdit, ARangeIsCutToTheTextOrDoesNothing) {
  const struct {
    int start, count;
    const char *filled, *deleted, *replaced, *mid;
  } cases[] = {
      {0, 2, "**cde", "cde", "-+cde", "ab"},
      {1, 3, "a***e", "ae", "a-+e", "bcd"},
      {4, 1, "abcd*", "abcd", "abcd-+", "e"},
      {3, 99, "abcde", "abc", "abc-+", "de"},
      {5, 1, "abcde", "abcde", "abcde-+", ""},
      {6, 1, "abcde", "abcde", "abcde", ""},
      {-1, 3, "abcde", "abcde", "abcde", "abc"},
      {2, 0, "abcde", "abcde", "ab-+cde", ""},
      {2, -1, "abcde", "abcde", "ab-+cde", ""},
      {1, INT_MAX, "abcde", "a", "a-+", "bcde"},
      {INT_MAX, 1, "abcde", "abcde", "abcde", ""},
      {INT_MIN, INT_MAX, "abcde", "abcde", "abcde", "abcde"},
  };
  const SString source("abcde");
  for (const auto& c : cases) {
    SString filled(source), overwritten(source), deleted(source), replaced(source);
    filled.Fill(c.start, '*', c.count);
    EXPECT_STREQ(filled.GetText(), c.filled) << c.start << ',' << c.count;
    overwritten.Overwrite(c.start, "*****", c.count);
    EXPECT_STREQ(overwritten.GetText(), c.filled) << c.start << ',' << c.count;
    deleted.Delete(c.start, c.count);
    EXPECT_STREQ(deleted.GetText(), c.deleted) << c.start << ',' << c.count;
    replaced.Replace(c.start, c.count, "-+");
    EXPECT_STREQ(replaced.GetText(), c.replaced) << c.start << ',' << c.count;
    EXPECT_STREQ(source.Mid(c.start, c.count).GetText(), c.mid) << c.start << ',' << c.count;
  }
  EXPECT_STREQ(source.Mid(3).GetText(), "de");
  EXPECT_STREQ(source.Mid(-3).GetText(), "abcde");
}

TEST(SStringEdit, CountsFromAnEndAreClamped) {
  const struct {
    int count;
    const char *left, *right, *withoutLeft, *withoutRight;
  } cases[] = {{-1, "", "", "abcde", "abcde"},
               {2, "ab", "de", "cde", "abc"},
               {70000, "abcde", "abcde", "", ""}};
  for (const auto& c : cases) {
    SString s("abcde"), t(s);
    EXPECT_STREQ(s.Left(c.count).GetText(), c.left);
    EXPECT_STREQ(s.Right(c.count).GetText(), c.right);
    s.DeleteLeft(c.count);
    EXPECT_STREQ(s.GetText(), c.withoutLeft);
    t.DeleteRight(c.count);
    EXPECT_STREQ(t.GetText(), c.withoutRight);
  }
}

TEST(SStringEdit, InsertAtTheLengthAppendsAndBeyondNothingExists) {
  const struct {
    int index, count;
    const char* expected;
  } cases[] = {{0, 2, "xyab"}, {1, 2, "axyb"}, {2, 2, "abxy"},
               {3, 2, "ab"},   {-1, 2, "ab"},  {1, -1, "ab"}};
  for (const auto& c : cases) {
    SString s("ab");
    s.Insert(c.index, "xyz", c.count);
    EXPECT_STREQ(s.GetText(), c.expected);
  }
  SString s("ab");
  s.Insert(1, '-');
  s.Insert(3, SString("xy"));
  s.SetAt(5, 'x');
  s.SetAt(-1, 'x');
  EXPECT_STREQ(s.GetText(), "a-bxy");
  EXPECT_EQ(s.GetAt(5), '\0');
  EXPECT_EQ(s.GetAt(-1), '\0');
}

TEST(SStringEdit, CaseRulesTouchAToZOnly) {
  SString s("@aZ[\xE9\xC9z{");
  s.MakeUpper();
  EXPECT_STREQ(s.GetText(), "@AZ[\xE9\xC9Z{");
  s.MakeLower();
  EXPECT_STREQ(s.GetText(), "@az[\xE9\xC9z{");
  SString name("mARY");
  name.Capitalize();
  EXPECT_STREQ(name.GetText(), "MARY");
  name.Reverse();
  EXPECT_STREQ(name.GetText(), "YRAM");
}

TEST(SStringEdit, TrimmingTakesTheRunAtItsEndOnly) {
  const struct {
    const char *source, *left, *right;
  } cases[] = {
      {" \t\r\n\v\fa b \t", "a b \t", " \t\r\n\v\fa b"},
      {"  ", "", ""},
      {"", "", ""},
      {"\xA0x\xA0", "\xA0x\xA0", "\xA0x\xA0"},
  };
  for (const auto& c : cases) {
    SString left(c.source);
    left.TrimLeft();
    EXPECT_STREQ(left.GetText(), c.left);
    SString right(c.source);
    right.TrimRight();
    EXPECT_STREQ(right.GetText(), c.right);
  }
}

TEST(SStringReplace, EveryMatchInOnePass) {
  const struct {
    const char *source, *find, *with;
    int count;
    const char* expected;
  } cases[] = {
      {"a-b-c", "-", "+", 2, "a+b+c"},     {"aaa", "aa", "b", 1, "ba"},
      {"a%1b", "%1", "x%1x", 1, "ax%1xb"}, {"abc", "b", nullptr, 1, "ac"},
      {"abc", "abc", "", 1, ""},           {"abc", "", "x", 0, "abc"},
      {"abc", nullptr, "x", 0, "abc"},     {"", "a", "x", 0, ""},
  };
  for (const auto& c : cases) {
    SString s(c.source);
    EXPECT_EQ(s.Replace(c.find, c.with), c.count);
    EXPECT_STREQ(s.GetText(), c.expected);
  }
}

TEST(SStringEdit, QuotedAndSurround) {
  SString s = SString::Quoted(SString("a b"));
  s.Surround("<<", nullptr);
  EXPECT_STREQ(s.GetText(), "<<\"a b\"");
}

}  // namespace
}  // namespace kivstore
