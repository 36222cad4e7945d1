#include "store/entries.h"

#include <gtest/gtest.h>

#include <memory>

#include "records/teacher_options_dob.h"
#include "store/name_derivation.h"
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

TEST(DisplayName, IsTheFirstNameAloneWithoutALastName) {
  EXPECT_EQ(DisplayName("Room 12", "", true), "Room 12");
  EXPECT_EQ(DisplayName("Room 12", "", false), "Room 12");
  EXPECT_EQ(DisplayName("Ann", "Lee", true), "Ann Lee");
  EXPECT_EQ(DisplayName("Ann", "Lee", false), "Lee, Ann");
  EXPECT_EQ(DisplayName("", "Lee", true), " Lee");
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
      {Named("", ""), Named("", "Lee"), -1},
      {Named("", ""), Named("", ""), 0},
      {Named("_", ""), Named("A", ""), -1},
      {Named("\xC4", ""), Named("z", "z"), 1},
      {Named("\xC4", ""), Named("\xE4", ""), -1},
      {Named("50%2", "Lee"), Named("50Lee", "Lee"), 0},
      {Named("50%2", ""), Named("50%2", ""), 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(Bytes(DisplayName(c.a)) + " | " + Bytes(DisplayName(c.b)));
    EXPECT_EQ(Sign(CompareDisplayNames(c.a, c.b)), c.order);
    EXPECT_EQ(Sign(CompareDisplayNames(c.b, c.a)), -c.order);
    EXPECT_EQ(Sign(DisplayName(c.a).CompareNoCase(DisplayName(c.b))), c.order);
  }
}

TEST(DisplayName, OfMoreThanATextHoldsComparesAsTheTextItIsCutTo) {
  const SString half('x', 20000);
  const SLoginNameObj a(half, half + "a", ""), b(half, half + "b", "");
  EXPECT_EQ(DisplayName(a), DisplayName(b));
  EXPECT_EQ(CompareDisplayNames(a, b), 0);
}

TEST(SameName, ComparesDisplayNamesAndNotTheirParts) {
  const SLoginNameObj entry = Named("Ann", "Lee");
  EXPECT_TRUE(SameName(entry, "ANN LEE", "", false));
  EXPECT_FALSE(SameName(entry, "ANN LEE", "", true));
  EXPECT_TRUE(SameName(entry, "Ann Lee", "", true));
  EXPECT_FALSE(SameName(entry, "Ann", "", false));
}

TEST(SortName, IsLastFirstOnlyIfTheOptionsSaySo) {
  const SLoginNameObj entry = Named("Ann", "Lee");
  EXPECT_EQ(SortName(entry), "Ann Lee");
  kivtest::AppScope scope;
  auto& options = *scope.app.options;
  const struct {
    bool firstLast, separate;
    const char* name;
  } cases[] = {{true, true, "Ann Lee"},
               {true, false, "Ann Lee"},
               {false, false, "Ann Lee"},
               {false, true, "Lee, Ann"}};
  for (const auto& c : cases) {
    options.DisplayFirstLastName.value = c.firstLast;
    options.SeparateLastName.value = c.separate;
    EXPECT_EQ(SortName(entry), c.name) << c.firstLast << c.separate;
  }
}

TEST(CompareByDisplayName, PutsTheDefaultEntryFirstAmongEqualNames) {
  SLoginNameObj plain = Named("default", "", "Defaul0"), other = Named("Default", "", "Other"),
                defaultEntry = Named("Default", "", "DEFAULT"), earlier = Named("Ann", "", "Ann");
  void* const plainAt = &plain;
  void* const otherAt = &other;
  void* const defaultAt = &defaultEntry;
  void* const earlierAt = &earlier;
  EXPECT_LT(CompareByDisplayName(&defaultAt, &plainAt), 0);
  EXPECT_GT(CompareByDisplayName(&plainAt, &defaultAt), 0);
  EXPECT_EQ(CompareByDisplayName(&plainAt, &otherAt), 0);
  EXPECT_LT(CompareByDisplayName(&earlierAt, &defaultAt), 0);
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

TEST(FindLogin, WantsDisplayNameAndFolderNameIgnoringCase) {
  SLoginList logins;
  logins.Array().Add(new SLoginNameObj("Ann", "Lee", "AnnLee"));
  logins.Array().Add(new SLoginNameObj("Ann", "Lee", "AnnLee0"));
  logins.Array().Add(new SLoginNameObj("Bob", "", "AnnLee0"));
  EXPECT_EQ(FindLogin(logins.Array(), Named("ann lee", "", "ANNLEE0")), 1);
  EXPECT_EQ(FindLogin(logins.Array(), Named("Bob", "", "AnnLee")), -1);
  EXPECT_EQ(FindLogin(SPtrArray(), Named("Bob", "")), -1);
}

TEST(DefaultEntries, AreKnownByAllThreeFields) {
  SLoginNameObj classEntry = Named("x", "y", "z"), teacher = classEntry;
  MakeDefaultEntry(classEntry);
  MakeTeacherDefaultEntry(teacher);
  EXPECT_EQ(FindLogin(SPtrArray(), classEntry), -1);
  EXPECT_EQ(classEntry.folderName, "Default");
  EXPECT_EQ(teacher.firstName, "TDefault");
  EXPECT_TRUE(IsDefaultEntry(&classEntry));
  EXPECT_TRUE(IsTeacherDefaultEntry(&teacher));
  EXPECT_FALSE(IsTeacherDefaultEntry(&classEntry));
  EXPECT_FALSE(IsDefaultEntry(nullptr));
  const SLoginNameObj others[] = {Named("Default", "x", "Default"), Named("Default", "", "Other"),
                                  Named("Other", "", "Default")};
  for (const SLoginNameObj& other : others) {
    EXPECT_FALSE(IsDefaultEntry(&other));
  }
}

}  // namespace
