#include "store/change/renaming.h"

#include "tests/store/school_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

class RenamingTest : public SchoolFixture {
 protected:
  bool RenameHill() { return RenameTeacher(&hill, &teachers.Array(), "Mrs Hill", folder); }
  bool RenameRoom() { return RenameClass(&room, &classes.Array(), "Attic", folder); }
  bool RenameAnn() { return RenameStudent(&room, &ann, &students.Array(), "Eve", "Ray"); }
};

TEST_F(RenamingTest, ANewNameIsInItsFolderTheIndexAndTheList) {
  EXPECT_TRUE(RenameAnn());
  EXPECT_TRUE(RenameRoom());
  EXPECT_TRUE(RenameHill());
  EXPECT_EQ(folder, "");
  EXPECT_EQ(temp.ReadFile(kRoom + "/AnnLee/longname.kiv"), LongNameBytes("Eve", "Ray"));
  EXPECT_EQ(Index(kRoom),
            IndexBytes({{"AnnLee", "Eve", "Ray"}, {"Bob", "Bob", ""}, {"Cid", "Cid", ""}}));
  EXPECT_EQ(temp.ReadFile(kHill + "/Room/longname.kiv"), LongNameBytes("Attic"));
  EXPECT_EQ(Index(kHill), IndexBytes({{"Den", "Den", ""}, {"Room", "Attic", ""}}));
  EXPECT_EQ(temp.ReadFile("Classes.zep/aHill/longname.kiv"), LongNameBytes("Mrs Hill"));
  EXPECT_EQ(Index("Classes.zep"), IndexBytes({{"aHill", "Mrs Hill", ""}, {"Oak", "Mr Oak", ""}}));
  EXPECT_EQ(Described(teachers.Array()), Lines({"aHill:Mrs Hill:", "Oak:Mr Oak:"}));
  EXPECT_EQ(app.heard,
            Lines({"StudentRenamed|Room|Lee|Ann|Ray|Eve|Ms Hill", "ClassRenamed|Room|Attic|Ms Hill",
                   "TeacherRenamed|Ms Hill|Mrs Hill"}));
}

TEST_F(RenamingTest, TheNameMayBeTheListsOwn) {
  SLoginNameObj& own = *students.At(1);
  EXPECT_TRUE(RenameStudent(&room, &own, &students.Array(), own.folderName, own.firstName));
  EXPECT_EQ(Described(students.Array()), Lines({"AnnLee:Ann:Lee", "Bob:Bob:Bob", "Cid:Cid:"}));
  EXPECT_EQ(app.heard, Lines({"StudentRenamed|Room||Bob|Bob|Bob|Ms Hill"}));
}

TEST_F(RenamingTest, OtherSitesRenameNoTeacherAndHearOfTDefault) {
  gSiteMode = kSiteLocal;
  EXPECT_FALSE(RenameHill());
  EXPECT_TRUE(RenameRoom());
  EXPECT_EQ(app.heard, Lines({"ClassRenamed|Room|Attic|TDefault"}));
}

TEST_F(RenamingTest, WhatIsNotListedBusyOrGoneKeepsItsName) {
  SLoginList empty;
  EXPECT_FALSE(RenameTeacher(&hill, &empty.Array(), "x", folder));
  EXPECT_FALSE(RenameClass(&room, &empty.Array(), "x", folder));
  EXPECT_FALSE(RenameStudent(&room, &ann, &empty.Array(), "x", "y"));
  const struct {
    std::string list, inside;
    std::function<bool()> rename;
  } cases[] = {{"Classes.zep", kHill, [this] { return RenameHill(); }},
               {kHill, kRoom, [this] { return RenameRoom(); }},
               {kRoom, kRoom + "/AnnLee", [this] { return RenameAnn(); }}};
  for (const auto& c : cases) {
    for (const std::string& place : {c.list, c.inside}) {
      const Holder other(Spec(place + "/index.lok"));
      EXPECT_FALSE(c.rename()) << place;
    }
  }
  EXPECT_EQ(Changed(), Lines());
  EXPECT_EQ(app.heard, Lines());
  store.RemoveFolder(kRoom + "/AnnLee");
  EXPECT_FALSE(RenameAnn());
  store.RemoveFolder(kRoom);
  EXPECT_FALSE(RenameRoom());
}

TEST_F(RenamingTest, ATeacherWithoutClassesGetsTheDefaultClassFirst) {
  store.RemoveFolder(kHill);
  SelectTeacher(nullptr);
  EXPECT_FALSE(RenameHill());
  EXPECT_EQ(Described(teachers.Array()), Lines({"aHill:Ms Hill:", "Oak:Mr Oak:"}));
  const CreatingScope creating;
  EXPECT_TRUE(RenameHill());
  EXPECT_EQ(Index(kHill), IndexBytes({{"Default", "Default", ""}}));
  EXPECT_EQ(gCurrentTeacher, nullptr);
}

TEST_F(RenamingTest, AFilesLongNameIsRenamedInItsIndex) {
  const std::string home = kRoom + "/AnnLee";
  store.AddFileLine(home, {"a.zep", "Old", "zep"});
  store.AddFileLine(home, {"b.zep", "Other", "zep"});
  store.Finish();
  const struct {
    const char *from, *to;
    bool renamed;
    const char* now;
  } cases[] = {{"Old", "OTHER", false, "Old"},
               {"Old", "old", false, "Old"},
               {"OLD", "New", true, "Old"},
               {"Old", "New", true, "New"}};
  for (const auto& c : cases) {
    EXPECT_EQ(RenameUserFile(Spec(home), c.from, c.to, true), c.renamed) << c.to;
    EXPECT_EQ(Index(home), IndexBytes({}, {{"a.zep", c.now, "zep"}, {"b.zep", "Other", "zep"}}));
  }
  EXPECT_TRUE(Dropped().empty());
  const Holder other(Spec(home + "/index.lok"));
  EXPECT_FALSE(RenameUserFile(Spec(home + "/a.zep"), "New", "Newer", true));
  EXPECT_TRUE(RenameUserFile(Spec(home + "/a.zep"), "New", "Newer", false));
}

}  // namespace
