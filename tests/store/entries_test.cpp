#include "store/list/entries.h"

#include <gtest/gtest.h>

#include <memory>

#include "records/teacher_options_dob.h"
#include "store/list/name_derivation.h"
#include "tests/store/store_scope.h"

using namespace kivstore;
using kivtest::Bytes;

namespace {

int Sign(int value) {
  return (value > 0) - (value < 0);
}

SLoginNameObj Named(const char* first, const char* last, const char* folder = "") {
  return {first, last, folder};
}

std::string FoldersOf(const SLoginList& logins) {
  std::string folders;
  for (int32_t i = 0; i < logins.GetSize(); ++i) {
    folders += Bytes(logins.At(i)->folderName) + ":" + Bytes(logins.At(i)->firstName) + " ";
  }
  return folders;
}

// The comparison goes over the pieces of the names: it must agree with the texts they make.
TEST(DisplayName, ComparesAsTheTextItMakes) {
  const struct {
    SLoginNameObj a, b;
    int order;
  } cases[] = {
      {Named("Ann", "Lee"), Named("ann", "LEE"), 0},
      {Named("Ann Lee", ""), Named("Ann", "Lee"), 0},
      {Named("Ann", "B Lee"), Named("Ann B", "Lee"), 0},
      {Named("Ann", ""), Named("Ann", "Lee"), -1},
      {Named("Anna", ""), Named("Ann", "Lee"), 1},
      {Named("", "Lee"), Named("Ann", ""), -1},
      {Named("_", ""), Named("A", ""), -1},
      {Named("\xC4", ""), Named("\xE4", ""), -1},
      {Named("50%2", "Lee"), Named("50Lee", "Lee"), 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(Bytes(DisplayName(c.a)) + " | " + Bytes(DisplayName(c.b)));
    EXPECT_EQ(Sign(CompareDisplayNames(c.a, c.b)), c.order);
    EXPECT_EQ(Sign(CompareDisplayNames(c.b, c.a)), -c.order);
    EXPECT_EQ(Sign(DisplayName(c.a).CompareNoCase(DisplayName(c.b))), c.order);
    EXPECT_EQ(SameName(c.a, c.b.firstName, c.b.lastName, false), c.order == 0);
  }
  EXPECT_FALSE(SameName(Named("Ann", "Lee"), "ANN LEE", "", true));
  // What is cut off at the most that a text holds does not tell two names apart.
  const SString half('x', 20000);
  EXPECT_EQ(CompareDisplayNames({half, half + "a", ""}, {half, half + "b", ""}), 0);
}

TEST(SortName, IsLastFirstOnlyIfTheOptionsSaySo) {
  const SLoginNameObj entry = Named("Ann", "Lee");
  EXPECT_EQ(SortName(entry), "Ann Lee");
  kivtest::AppScope scope;
  auto& options = *scope.app.options;
  for (const bool firstLast : {true, false}) {
    for (const bool separate : {true, false}) {
      options.DisplayFirstLastName.value = firstLast;
      options.SeparateLastName.value = separate;
      EXPECT_EQ(SortName(entry), !firstLast && separate ? "Lee, Ann" : "Ann Lee");
      EXPECT_EQ(SortName(Named("Ann", "")), "Ann");
    }
  }
}

TEST(CompareByDisplayName, PutsTheDefaultEntryFirstAmongEqualNames) {
  SLoginNameObj entries[] = {Named("Ann", "", "Ann"), Named("Default", "", "DEFAULT"),
                             Named("default", "", "Defaul0"), Named("Default", "", "Other")};
  void* at[] = {&entries[0], &entries[1], &entries[2], &entries[3]};
  EXPECT_LT(CompareByDisplayName(&at[0], &at[1]), 0);
  EXPECT_LT(CompareByDisplayName(&at[1], &at[2]), 0);
  EXPECT_GT(CompareByDisplayName(&at[2], &at[1]), 0);
  EXPECT_EQ(CompareByDisplayName(&at[2], &at[3]), 0);
}

TEST(SortByFolder, IgnoresCaseLooksPastEightLettersAndKeepsEqualsInOrder) {
  SLoginList logins;
  for (const char* const folder :
       {"room2", "Room", "averylongname", "AVERYLONG", "b", "B", "\xE9", ""}) {
    logins.Array().Add(new SLoginNameObj(std::to_string(logins.GetSize()).c_str(), "", folder));
  }
  SortByFolder(logins.Array());
  EXPECT_EQ(FoldersOf(logins), ":7 AVERYLONG:3 averylongname:2 b:4 B:5 Room:1 room2:0 \xE9:6 ");
}

TEST(DefaultEntries, AreKnownByAllThreeFields) {
  SLoginNameObj classEntry = Named("x", "y", "z"), teacher = classEntry;
  MakeDefaultEntry(classEntry);
  MakeTeacherDefaultEntry(teacher);
  EXPECT_EQ(classEntry.folderName, "Default");
  EXPECT_EQ(teacher.firstName, "TDefault");
  EXPECT_TRUE(IsDefaultEntry(&classEntry));
  EXPECT_TRUE(IsTeacherDefaultEntry(&teacher));
  for (const SLoginNameObj& other :
       {teacher, Named("Default", "x", "Default"), Named("Default", "", "Other"),
        Named("Other", "", "Default")}) {
    EXPECT_FALSE(IsDefaultEntry(&other));
  }
}

}  // namespace
