// Formatted texts, and texts with marks.
#include <gtest/gtest.h>

#include <string>

#include "foundation/string.h"

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
  s.FormatResource(16080, "Red", 1000L);
  EXPECT_STREQ(s.GetText(),
               "Unable to add the class Red because there are already 1000 classes.  Someone else "
               "may have added at least one.");
  s.FormatResource(16051, std::string(600, 'x').c_str());
  EXPECT_EQ(s.GetLength(), 511);
  s.FormatResource(2, "x");
  EXPECT_TRUE(s.IsEmpty());
}

TEST(SStringSubstitute, GoesArgumentByArgumentOnTheGrowingText) {
  SString s;
  s.Substitute("%2, %1", "Ann", "Lee");
  EXPECT_STREQ(s.GetText(), "Lee, Ann");
  s.Substitute("%1 %2", "<%2>", "b");
  EXPECT_STREQ(s.GetText(), "<b> b");
  s.Substitute("%1 %2", "a", "<%1>");
  EXPECT_STREQ(s.GetText(), "a <%1>");
  s.Substitute("%1 and %1", "%1");
  EXPECT_STREQ(s.GetText(), "%1 and %1");
  s.Substitute("%1%2%3", "a", "b");
  EXPECT_STREQ(s.GetText(), "ab%3");
  s.Substitute("%5%4%3%2%1%%1", "a", "b", "c", "d", "e");
  EXPECT_STREQ(s.GetText(), "edcba%a");
  s.Substitute("%3-%1-%2", "a", "b", "c");
  EXPECT_STREQ(s.GetText(), "c-a-b");
  s.Substitute("%4", "a", "b", "c", "");
  EXPECT_STREQ(s.GetText(), "");
  s.Substitute("The file '%1' could not be %2d.", "x");
  EXPECT_STREQ(s.GetText(), "The file 'x' could not be %2d.");
}

TEST(SStringSubstitute, MayReadItself) {
  SString s("%1!");
  s.Substitute(s, s);
  EXPECT_STREQ(s.GetText(), "%1!!");
}

}  // namespace
}  // namespace kivstore
