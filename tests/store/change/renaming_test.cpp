#include "store/change/renaming.h"

#include "tests/support/school_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

class RenamingTest : public SchoolFixture {
 public:
  bool RenameHill() { return RenameTeacher(site, hill, teachers, "Mrs Hill"); }
  bool RenameRoom() { return RenameClass(site, room, classes, "Attic"); }
  bool RenameAnn() { return RenameStudent(site, room, ann, students, "Eve", "Ray"); }
};

TEST_F(RenamingTest, ANewNameIsInItsFolderTheIndexAndTheList) {
  EXPECT_TRUE(RenameAnn());
  EXPECT_TRUE(RenameRoom());
  EXPECT_TRUE(RenameHill());
  EXPECT_EQ(temp.ReadFile(kRoom + "/AnnLee/longname.kiv"), LongNameBytes("Eve", "Ray"));
  EXPECT_EQ(Index(kRoom),
            IndexBytes({{"AnnLee", "Eve", "Ray"}, {"Bob", "Bob", ""}, {"Cid", "Cid", ""}}));
  EXPECT_EQ(temp.ReadFile(kHill + "/Room/longname.kiv"), LongNameBytes("Attic"));
  EXPECT_EQ(Index(kHill), IndexBytes({{"Den", "Den", ""}, {"Room", "Attic", ""}}));
  EXPECT_EQ(temp.ReadFile("Classes.zep/aHill/longname.kiv"), LongNameBytes("Mrs Hill"));
  EXPECT_EQ(Index(kTop), IndexBytes({{"aHill", "Mrs Hill", ""}, {"Oak", "Mr Oak", ""}}));
  EXPECT_EQ(Described(teachers), Lines({"aHill:Mrs Hill:", "Oak:Mr Oak:"}));
  EXPECT_EQ(owner.heard,
            Lines({"StudentRenamed|Room|Lee|Ann|Ray|Eve|Ms Hill", "ClassRenamed|Room|Attic|Ms Hill",
                   "TeacherRenamed|Ms Hill|Mrs Hill"}));
  EXPECT_EQ(Why(), "");
}

TEST_F(RenamingTest, TheNameMayBeTheListsOwn) {
  SLoginNameObj& own = students[1];
  EXPECT_TRUE(RenameStudent(site, room, own, students, own.folderName, own.firstName));
  EXPECT_EQ(Described(students), Lines({"AnnLee:Ann:Lee", "Bob:Bob:Bob", "Cid:Cid:"}));
  EXPECT_EQ(owner.heard, Lines({"StudentRenamed|Room||Bob|Bob|Bob|Ms Hill"}));
}

// What others have made of the index since the list was loaded stays.
TEST_F(RenamingTest, AnOldListTakesNoOtherNameBack) {
  SLoginList old;
  LoadStudentList(site, old, room, true, true);
  EXPECT_TRUE(RenameAnn());
  temp.WriteFile(kRoom + "/index.kiv",
                 IndexBytes({{"AnnLee", "Eve", "Ray"}, {"Bob", "Bob", ""}, {"Dan", "Dan", ""}}));
  EXPECT_TRUE(RenameStudent(site, room, In(old, "Bob"), old, "Rob", ""));
  EXPECT_EQ(
      Index(kRoom),
      IndexBytes(
          {{"AnnLee", "Eve", "Ray"}, {"Bob", "Rob", ""}, {"Cid", "Cid", ""}, {"Dan", "Dan", ""}}));
}

TEST_F(RenamingTest, OtherSitesRenameNoTeacherAndHearOfTDefault) {
  site.SetSiteMode(kSiteLocal);
  EXPECT_FALSE(RenameHill());
  EXPECT_TRUE(RenameRoom());
  EXPECT_EQ(owner.heard, Lines({"ClassRenamed|Room|Attic|TDefault"}));
}

TEST_F(RenamingTest, WhatIsNotListedOrGoneKeepsItsName) {
  SLoginList empty;
  EXPECT_EQ(WhyNot(RenameTeacher(site, hill, empty, "x")), "no entry teachers Classes.zep/");
  EXPECT_EQ(WhyNot(RenameClass(site, room, empty, "x")), "no entry classes " + kHill + "/");
  EXPECT_EQ(WhyNot(RenameStudent(site, room, ann, empty, "x", "y")),
            "no entry students " + kRoom + "/");
  EXPECT_EQ(Changed(), Lines());
  EXPECT_EQ(owner.heard, Lines());
  const CreatingScope creating;
  for (const auto& [gone, why, rename] :
       {std::tuple(kRoom + "/AnnLee", "no entry students ", &RenamingTest::RenameAnn),
        {kRoom, "missing classes ", &RenamingTest::RenameRoom},
        {kTop + "/aHill", "no entry teachers ", &RenamingTest::RenameHill}}) {
    store.RemoveFolder(gone);
    EXPECT_EQ(WhyNot((this->*rename)()), why + gone);
  }
}

TEST_F(RenamingTest, ATeacherWithoutClassesGetsTheDefaultClassFirst) {
  store.RemoveFolder(kHill);
  site.SelectTeacher(nullptr);
  EXPECT_FALSE(RenameHill());
  EXPECT_EQ(Described(teachers), Lines({"aHill:Ms Hill:", "Oak:Mr Oak:"}));
  const CreatingScope creating;
  EXPECT_TRUE(RenameHill());
  EXPECT_EQ(Index(kHill), IndexBytes({{"Default", "Default", ""}}));
  EXPECT_EQ(Selected(), "-");
  store.RemoveFolder(kHill);
  site.SelectTeacher(&oak);
  EXPECT_TRUE(RenameTeacher(site, teachers[0], teachers, "Ms H"));
  EXPECT_EQ(Selected(), "aHill");  // the one object there is has been overwritten
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
    EXPECT_EQ(RenameUserFile(site, Spec(home), c.from, c.to, true), c.renamed) << c.to;
    EXPECT_EQ(Index(home), IndexBytes({}, {{"a.zep", c.now, "zep"}, {"b.zep", "Other", "zep"}}));
    EXPECT_EQ(site.GetFailure().text, "");
    EXPECT_EQ(Why(), c.renamed ? "" : "name taken files " + home + "/");
  }
  const Holder other(Spec(home + "/index.lok"));
  EXPECT_FALSE(RenameUserFile(site, Spec(home + "/a.zep"), "New", "Newer", true));
  EXPECT_EQ(site.GetFailure().text.View().substr(0, 42),
            "Unable to rename the file you selected.  M");
  EXPECT_EQ(Why(), "locked files " + home + "/index.lok");
  EXPECT_TRUE(RenameUserFile(site, Spec(home + "/a.zep"), "New", "Newer", false));
  EXPECT_EQ(WhyNot(RenameUserFile(site, SFileSpec(), "New", "Newer", false)), "missing files ");
}

}  // namespace
