// Formatted texts, and texts with marks.
#include <gtest/gtest.h>

#include <string>

#include "foundation/text/string.h"

namespace kivstore {
namespace {

TEST(SStringFormat, PrintsAndCutsAtTheBuffer) {
  SString s("old");
  s.Format("%s-%d", "a", 5);
  EXPECT_STREQ(s.GetText(), "a-5");
  s.Format("%s", s.GetText());
  EXPECT_STREQ(s.GetText(), "a-5");
  const std::string most(600, 'x');
  s.Format("%s", most.c_str());
  EXPECT_EQ(s.View(), most.substr(0, 511));
}

TEST(SStringFormat, FromTheStringTable) {
  SString s("old");
  s.FormatResource(16051, "Ann Lee");
  EXPECT_STREQ(s.GetText(), "Unable to add the student Ann Lee.");
  s.FormatResource(16051, std::string(600, 'x').c_str());
  EXPECT_EQ(s.GetLength(), 511);
  s.FormatResource(2, "x");
  EXPECT_TRUE(s.IsEmpty());
}

TEST(SStringSubstitute, GoesArgumentByArgumentOnTheGrowingText) {
  const struct {
    const char *pattern, *first, *second, *expected;
  } cases[] = {
      {"%2, %1", "Ann", "Lee", "Lee, Ann"},
      {"%1 %2", "<%2>", "b", "<b> b"},
      {"%1 %2", "a", "<%1>", "a <%1>"},
      {"%1 and %1", "%1", "", "%1 and %1"},
      {"%1%2%3", "a", "b", "ab%3"},
      {"'%1' could not be %3d.", "x", "", "'x' could not be %3d."},
  };
  SString s;
  for (const auto& c : cases) {
    s.Substitute(c.pattern, c.first, c.second);
    EXPECT_STREQ(s.GetText(), c.expected);
  }
  s.Substitute("%5%4%3%2%1%%1", "a", "b", "c", "d", "e");
  EXPECT_STREQ(s.GetText(), "edcba%a");
  s.Substitute("%1%2!", "a");
  EXPECT_STREQ(s.GetText(), "a%2!");
  s.Substitute(s, s, s);
  EXPECT_STREQ(s.GetText(), "aa%2!!") << "may read itself";
}

}  // namespace
}  // namespace kivstore
