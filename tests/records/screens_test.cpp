// The screens' names and numbers.
#include "records/screens.h"

#include <gtest/gtest.h>

namespace kivstore {
namespace {

TEST(Screens, EveryNameLeadsBackToItsNumber) {
  for (int id = 0; id < kScreenCount; ++id) {
    EXPECT_EQ(GetScreenId(GetScreenName(id)), id);
  }
}

TEST(Screens, HaveTheTutorsNumbers) {
  struct Case {
    const char* name;
    int id;
  };
  const Case cases[] = {
      {"SPLASH", 0},      {"ZEPSCRN", 6},        {"MAIN", 7},  {"JOURNAL", 10}, {"TYPELINE", 11},
      {"CHECKPOINT", 17}, {"POWER_BOOSTER", 21}, {"main", -1}, {"MAI", -1},     {"", -1}};
  for (const Case& c : cases) {
    EXPECT_EQ(GetScreenId(c.name), c.id) << c.name;
  }
  EXPECT_EQ(GetScreenName(kMainScreen), SString("MAIN"));
}

TEST(Screens, ANumberOutsideHasNoName) {
  EXPECT_TRUE(GetScreenName(-1).IsEmpty());
  EXPECT_TRUE(GetScreenName(kScreenCount).IsEmpty());
}

}  // namespace
}  // namespace kivstore
