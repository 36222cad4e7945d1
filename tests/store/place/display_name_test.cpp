#include "store/place/display_name.h"

#include "records/tutor_options_dob.h"
#include "store/place/store_names.h"
#include "tests/support/draw.h"
#include "tests/support/site_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

int Sign(int value) {
  return (value > 0) - (value < 0);
}

SLoginNameObj Named(const char* first, const char* last, const char* folder = "") {
  return {first, last, folder};
}

// The comparison goes over the pieces of the names: it must agree with the texts they make.
TEST(DisplayNameTest, ComparesAsTheTextItMakes) {
  Draw draw(1);
  const auto part = [&] {
    std::string text;
    while (!draw.OneIn(3)) {
      text += " aAbB%2_\xE4"[draw.Below(9)];
    }
    return Text(text);
  };
  for (int i = 0; i < 5000; ++i) {
    const SLoginNameObj a(part(), part(), ""), b(part(), part(), "");
    const SString textA = DisplayName(a), textB = DisplayName(b);
    const int order = Sign(textA.CompareNoCase(textB));
    SCOPED_TRACE(Bytes(textA) + " | " + Bytes(textB));
    EXPECT_EQ(Sign(CompareDisplayNames(a, b)), order);
    EXPECT_EQ(SameName(a, b.firstName, b.lastName, false), order == 0);
    EXPECT_EQ(SameName(a, b.firstName, b.lastName, true), textA == textB);
  }
  EXPECT_EQ(DisplayName(SLoginNameObj("Ann", "Lee", "")), "Ann Lee");
  EXPECT_EQ(DisplayName(SLoginNameObj("", "Lee", "")), " Lee");
  // What is cut off at the most that a text holds does not tell two names apart.
  const SString half('x', 20000);
  EXPECT_EQ(CompareDisplayNames({half, half + "a", ""}, {half, half + "b", ""}), 0);
}

TEST(DisplayNameTest, IsLastFirstInAListOnlyIfTheOptionsSaySo) {
  TestOwner owner;
  SSite site;
  const SLoginNameObj entry = Named("Ann", "Lee");
  EXPECT_EQ(SortName(site, entry), "Ann Lee");
  STeacherOptionsDob options;
  owner.options = &options;
  site.SetOwner(&owner);
  for (const auto& [firstLast, separate] :
       {std::pair(true, true), {true, false}, {false, true}, {false, false}}) {
    options.DisplayFirstLastName.value = firstLast;
    options.SeparateLastName.value = separate;
    EXPECT_EQ(SortName(site, entry), !firstLast && separate ? "Lee, Ann" : "Ann Lee");
    EXPECT_EQ(SortName(site, Named("Ann", "")), "Ann");
  }
}

TEST(DefaultEntries, AreKnownByAllThreeFields) {
  SLoginNameObj classEntry = Named("x", "y", "z"), teacher = classEntry;
  MakeDefaultEntry(classEntry);
  MakeTeacherDefaultEntry(teacher);
  EXPECT_EQ(classEntry.folderName, "Default");
  EXPECT_EQ(teacher.firstName, "TDefault");
  EXPECT_TRUE(IsDefaultEntry(&classEntry) && IsTeacherDefaultEntry(&teacher));
  EXPECT_FALSE(IsTeacherDefaultEntry(&classEntry) || IsDefaultEntry(nullptr));
  for (const SLoginNameObj& other :
       {teacher, Named("Default", "x", "Default"), Named("Default", "", "Other"),
        Named("Other", "", "Default")}) {
    EXPECT_FALSE(IsDefaultEntry(&other));
  }
}

}  // namespace
