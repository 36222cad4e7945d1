// Renaming and moving, but for what transactions_test.cpp has of them.
#include "store/change/moving.h"

#include "store/change/renaming.h"
#include "tests/support/school_fixture.h"
#include "tests/support/wine.h"

using namespace kivstore;
using namespace kivtest;

namespace {

class RenamingTest : public SchoolFixture {
 public:
  bool RenameHill() { return RenameTeacher(site, hill, teachers, "Mrs Hill"); }
  bool RenameRoom() { return RenameClass(site, room, classes, "Attic"); }
  bool RenameAnn() { return RenameStudent(site, room, ann, students, "Eve", "Ray"); }
};

TEST_F(RenamingTest, TheNameMayBeTheListsOwn) {
  SLoginNameObj& own = students[1];
  EXPECT_TRUE(RenameStudent(site, room, own, students, own.folderName, own.firstName));
  EXPECT_EQ(Described(students), Lines({"AnnLee:Ann:Lee", "Bob:Bob:Bob", "Cid:Cid:"}));
  EXPECT_EQ(owner.heard, Lines({"StudentRenamed|Room||Bob|Bob|Bob|Ms Hill"}));
}

// What others have made of the index since the list was loaded stays.
TEST_F(RenamingTest, AnOldListTakesNoOtherNameBack) {
  temp.WriteFile(kRoom + "/index.kiv",
                 IndexBytes({{"AnnLee", "Eve", "Ray"}, {"Bob", "Bob", ""}, {"Dan", "Dan", ""}}));
  EXPECT_TRUE(RenameStudent(site, room, students[1], students, "Rob", ""));
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
  const CreatingScope creating;
  for (const auto& [gone, why, rename] :
       {std::tuple(kRoom + "/AnnLee", "no entry students ", &RenamingTest::RenameAnn),
        {kRoom, "missing classes ", &RenamingTest::RenameRoom},
        {kTop + "/aHill", "no entry teachers ", &RenamingTest::RenameHill}}) {
    store.RemoveFolder(gone);
    EXPECT_EQ(WhyNot((this->*rename)()), why + gone);
  }
  EXPECT_EQ(owner.heard, Lines());
}

TEST_F(RenamingTest, WhereNobodyIsSelectedItIsTheFirstTeachersClass) {
  site.SelectTeacher(nullptr);
  EXPECT_TRUE(RenameClass(site, room, classes, "R"));
  EXPECT_EQ(Index(kHill), IndexBytes({{"Den", "Den", ""}, {"Room", "R", ""}}));
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
  const auto files = [](const char* name) {
    return IndexBytes({}, {{"a.zep", name, "zep"}, {"b.zep", "Other", "zep"}});
  };
  temp.WriteFile(home + "/index.kiv", files("Old"));
  const struct {
    const char *from, *to, *why, *now;
  } cases[] = {{"Old", "OTHER", "|name taken files ", "Old"},
               {"Old", "old", "|name taken files ", "Old"},
               {"OLD", "New", "|", "Old"},
               {"Old", "New", "|", "New"}};
  for (const auto& c : cases) {
    const bool renamed = c.why == std::string("|");
    EXPECT_EQ(RenameUserFile(site, Spec(home), c.from, c.to, true), renamed) << c.to;
    EXPECT_EQ(Index(home), files(c.now));
    EXPECT_EQ(Told(), c.why + (renamed ? "" : home + "/"));
  }
  const Holder other(Spec(home + "/index.lok"));
  EXPECT_FALSE(RenameUserFile(site, Spec(home + "/a.zep"), "New", "Newer", true));
  EXPECT_EQ(site.GetFailure().text.View().substr(0, 42),
            "Unable to rename the file you selected.  M");
  EXPECT_EQ(Why(), "locked files " + home + "/index.lok");
  EXPECT_TRUE(RenameUserFile(site, Spec(home + "/a.zep"), "New", "Newer", false));
  EXPECT_EQ(WhyNot(RenameUserFile(site, SFileSpec(), "New", "Newer", false)), "missing files ");
}

class MovingTest : public SchoolFixture {
 protected:
  bool MoveRoom() {
    // The teacher handed in may be the selected one itself.
    return MoveClass(site, *site.GetCurrentTeacher(), oak, classes[1], classes, "Room 2");
  }
  bool MoveAnn() { return MoveStudent(site, room, den, students[0], students, "Ann", "Ray"); }
};

TEST_F(MovingTest, AClassMovesWithItsStudents) {
  EXPECT_TRUE(MoveAnn());
  EXPECT_TRUE(MoveRoom());
  EXPECT_EQ(Index(kDen), IndexBytes({{"Zoe", "Zoe", ""}, {"AnnLee", "Ann", "Ray"}}));
  EXPECT_EQ(Index(kOak), IndexBytes({{"Yard", "Yard", ""}, {"Room", "Room 2", ""}}));
  EXPECT_TRUE(temp.Exists(kOak + "/Room/Students/Bob/mark"));
  EXPECT_EQ(owner.heard, Lines({"StudentMoved|Room|Den|Ray|Ann|TDefault|TDefault",
                                "ClassMoved|Ms Hill|Mr Oak|Room 2"}));
  EXPECT_EQ(Selected(), "aHill");
}

TEST_F(MovingTest, WhoHasAFileOpenStays) {
  if (kivtest::RunsUnderWine()) {
    GTEST_SKIP() << "there a folder moves though a file in it is open";
  }
  {
    const Holder other(Spec(kRoom + "/AnnLee/mark"));
    EXPECT_EQ(WhyNot(MoveAnn()).substr(0, 16), "in use students ");
    EXPECT_EQ(WhyNot(MoveRoom()).substr(0, 15), "in use classes ");
  }
  EXPECT_EQ(Changed(), Lines());
  EXPECT_EQ(classes.GetSize() + students.GetSize(), 5);
  EXPECT_EQ(owner.heard, Lines());
  EXPECT_EQ(Selected(), "aHill");
}

TEST_F(MovingTest, ADestinationOfAThousandTakesNobodyMore) {
  for (const size_t count : {1000u, 999u}) {
    for (const std::string& list : {kOak, kDen}) {
      temp.WriteFile(list + "/index.kiv",
                     IndexBytes(std::vector<IndexLine>(count, IndexLine{"f", "Name", ""})));
    }
    const auto before = Snapshot();
    EXPECT_EQ(MoveAnn(), count < 1000);
    EXPECT_EQ(Told(), count < 1000 ? "|" : "|full students " + kDen + "/");
    EXPECT_EQ(MoveRoom(), count < 1000);
    EXPECT_EQ(Told(), count < 1000 ? "|" : "|full classes " + kOak + "/");
    EXPECT_EQ(Changes(before, Snapshot()) == Lines(), count == 1000);
  }
}

TEST_F(MovingTest, WhoIsNotListedOrNotThereDoesNotMove) {
  SLoginList empty;
  SLoginNameObj copy = ann;
  EXPECT_EQ(WhyNot(MoveStudent(site, room, den, copy, empty, "Ann", "Lee")),
            "no entry students " + kRoom + "/");
  EXPECT_EQ(WhyNot(MoveClass(site, hill, oak, copy, empty, "x")),
            "no entry classes " + kHill + "/");
  EXPECT_EQ(Selected(), "aHill");
  EXPECT_FALSE(MoveStudent(site, room, room, students[0], students, "Ann", "Lee"));
  EXPECT_EQ(Changed(), Lines());
  temp.Remove(kRoom + "/AnnLee");
  Why();
  EXPECT_EQ(WhyNot(MoveAnn()), "no entry students " + kRoom + "/AnnLee");
  EXPECT_EQ(students.GetSize(), 3);
  EXPECT_FALSE(MoveStudent(site, room, Entry("Gone", "Gone"), students[1], students, "Bob", ""));
  EXPECT_EQ(owner.heard, Lines());
}

// In one rename, which needs no maker.
TEST_F(MovingTest, ATakenFolderNameGivesANewOneUnlessItIsOfTheSameName) {
  temp.WriteFile(kDen + "/AnnLee/longname.kiv", LongNameBytes("Ann", "Lee"));
  const auto before = Snapshot();
  EXPECT_EQ(WhyNot(MoveAnn()), "name taken students " + kDen + "/");
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
  EXPECT_EQ(students[0].folderName, "AnnLee");
  temp.WriteFile(kDen + "/AnnLee/longname.kiv", LongNameBytes("An", "NLee"));
  // A line that a death has left there is not hers.
  temp.WriteFile(kDen + "/index.kiv", IndexBytes({{"AnnLee0", "Zac", ""}}));
  EXPECT_TRUE(MoveAnn());
  EXPECT_FALSE(temp.Exists(kRoom + "/AnnLee"));
  EXPECT_EQ(temp.ReadFile(kDen + "/AnnLee0/mark"), "Ann");
  EXPECT_EQ(Index(kDen), IndexBytes({{"AnnLee0", "Ann", "Ray"}}));
}

}  // namespace
