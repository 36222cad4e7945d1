// Changing parts of a text and taking parts of it, with indices in, at and beyond its ends.
#include <gtest/gtest.h>

#include <climits>

#include "foundation/string.h"

namespace kivstore {
namespace {

struct EditCase {
  int start;
  int count;
  const char* expected;
};

TEST(SStringEdit, FillAndOverwriteStayWithinTheTextOrDoNothing) {
  const EditCase cases[] = {
      {0, 5, "*****"},  {1, 2, "a**de"},       {4, 1, "abcd*"},       {3, 3, "abcde"},
      {-1, 2, "abcde"}, {0, 0, "abcde"},       {0, 6, "abcde"},       {5, 1, "abcde"},
      {2, -1, "abcde"}, {INT_MAX, 1, "abcde"}, {1, INT_MAX, "abcde"}, {INT_MIN, INT_MAX, "abcde"},
  };
  for (const EditCase& c : cases) {
    SString filled("abcde");
    filled.Fill(c.start, '*', c.count);
    EXPECT_STREQ(filled.GetText(), c.expected);
    SString overwritten("abcde");
    overwritten.Overwrite(c.start, "*****", c.count);
    EXPECT_STREQ(overwritten.GetText(), c.expected);
  }
}

TEST(SStringEdit, DeleteNeedsAStartInsideAndCutsTheCount) {
  const EditCase cases[] = {
      {0, 2, "cde"},    {3, 99, "abc"},  {4, 1, "abcd"},   {5, 1, "abcde"},
      {-1, 3, "abcde"}, {2, 0, "abcde"}, {2, -2, "abcde"}, {1, INT_MAX, "a"},
  };
  for (const EditCase& c : cases) {
    SString s("abcde");
    s.Delete(c.start, c.count);
    EXPECT_STREQ(s.GetText(), c.expected) << c.start << ',' << c.count;
  }
}

TEST(SStringEdit, ReplacingARangeTakesTheStartUpToTheLength) {
  const EditCase cases[] = {
      {0, 2, "-+cde"}, {5, 3, "abcde-+"},  {6, 1, "abcde"},     {-1, 1, "abcde"},
      {2, 99, "ab-+"}, {2, -1, "ab-+cde"}, {1, INT_MAX, "a-+"},
  };
  for (const EditCase& c : cases) {
    SString s("abcde");
    s.Replace(c.start, c.count, "-+");
    EXPECT_STREQ(s.GetText(), c.expected) << c.start << ',' << c.count;
  }
}

TEST(SStringEdit, MidLeftAndRightClamp) {
  const EditCase cases[] = {
      {0, 2, "ab"}, {1, 3, "bcd"}, {-4, 2, "ab"}, {3, 99, "de"},
      {5, 1, ""},   {9, 1, ""},    {2, -1, ""},   {1, INT_MAX, "bcde"},
  };
  const SString s("abcde");
  for (const EditCase& c : cases) {
    EXPECT_STREQ(s.Mid(c.start, c.count).GetText(), c.expected) << c.start << ',' << c.count;
  }
  EXPECT_STREQ(s.Mid(3).GetText(), "de");
  EXPECT_STREQ(s.Mid(-3).GetText(), "abcde");
  EXPECT_STREQ(s.Left(-1).GetText(), "");
  EXPECT_STREQ(s.Left(3).GetText(), "abc");
  EXPECT_STREQ(s.Left(70000).GetText(), "abcde");
  EXPECT_STREQ(s.Right(2).GetText(), "de");
  EXPECT_STREQ(s.Right(-2).GetText(), "");
  EXPECT_STREQ(s.Right(70000).GetText(), "abcde");
}

TEST(SStringEdit, DeletingFromAnEndClamps) {
  SString s("abcdef");
  s.DeleteLeft(2);
  s.DeleteRight(1);
  EXPECT_STREQ(s.GetText(), "cde");
  s.DeleteLeft(-1);
  s.DeleteRight(-1);
  EXPECT_STREQ(s.GetText(), "cde");
  SString t(s);
  s.DeleteLeft(99);
  t.DeleteRight(99);
  EXPECT_TRUE(s.IsEmpty());
  EXPECT_TRUE(t.IsEmpty());
}

TEST(SStringEdit, InsertAtTheLengthAppendsAndBeyondDoesNothing) {
  struct Case {
    int index;
    const char* expected;
  };
  for (const Case& c : {Case{0, "xyab"}, {1, "axyb"}, {2, "abxy"}, {3, "ab"}, {-1, "ab"}}) {
    SString s("ab");
    s.Insert(c.index, SString("xy"));
    EXPECT_STREQ(s.GetText(), c.expected);
    SString t("ab");
    t.Insert(c.index, "xyz", 2);
    EXPECT_STREQ(t.GetText(), c.expected);
  }
  SString s("ab");
  s.Insert(1, '-');
  s.Insert(1, "nothing", -1);
  EXPECT_STREQ(s.GetText(), "a-b");
}

TEST(SStringEdit, SingleCharactersOutsideTheTextDoNotExist) {
  SString s("abc");
  s.SetAt(3, 'x');
  s.SetAt(-1, 'x');
  EXPECT_STREQ(s.GetText(), "abc");
  EXPECT_EQ(s.GetAt(2), 'c');
  EXPECT_EQ(s.GetAt(3), '\0');
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
  struct Case {
    const char* source;
    const char* left;
    const char* right;
  };
  const Case cases[] = {
      {" \t\r\n\v\fa b \t", "a b \t", " \t\r\n\v\fa b"},
      {"ab", "ab", "ab"},
      {"  ", "", ""},
      {"", "", ""},
      {"\xA0x\xA0", "\xA0x\xA0", "\xA0x\xA0"},
  };
  for (const Case& c : cases) {
    SString s(c.source);
    s.TrimLeft();
    EXPECT_STREQ(s.GetText(), c.left);
    SString t(c.source);
    t.TrimRight();
    EXPECT_STREQ(t.GetText(), c.right);
  }
}

TEST(SStringReplace, EveryMatchInOnePass) {
  struct Case {
    const char* source;
    const char* find;
    const char* with;
    int count;
    const char* expected;
  };
  const Case cases[] = {
      {"a-b-c", "-", "+", 2, "a+b+c"}, {"aaaa", "aa", "b", 2, "bb"},
      {"aaa", "aa", "b", 1, "ba"},     {"a%1b", "%1", "x%1x", 1, "ax%1xb"},
      {"abc", "b", nullptr, 1, "ac"},  {"abc", "abc", "", 1, ""},
      {"abc", "", "x", 0, "abc"},      {"abc", nullptr, "x", 0, "abc"},
      {"", "a", "x", 0, ""},           {"abc", "d", "x", 0, "abc"},
  };
  for (const Case& c : cases) {
    SString s(c.source);
    EXPECT_EQ(s.Replace(c.find, c.with), c.count);
    EXPECT_STREQ(s.GetText(), c.expected);
  }
}

TEST(SStringEdit, QuotedAndSurround) {
  EXPECT_STREQ(SString::Quoted(SString("a b")).GetText(), "\"a b\"");
  SString s("x");
  s.Surround("<<", nullptr);
  EXPECT_STREQ(s.GetText(), "<<x");
}

}  // namespace
}  // namespace kivstore
