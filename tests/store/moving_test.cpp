#include "store/change/moving.h"

#include "tests/store/school_fixture.h"
#include "tests/support/wine.h"

using namespace kivstore;
using namespace kivtest;

namespace {

class MovingTest : public SchoolFixture {
 protected:
  bool MoveRoom() { return MoveClass(&hill, &oak, classes.At(1), &classes.Array(), "Room 2"); }
  bool MoveAnn() {
    return MoveStudent(&room, &den, students.At(0), &students.Array(), "Ann", "Lee");
  }
};

TEST_F(MovingTest, AStudentMovesWithTheFolder) {
  EXPECT_TRUE(MoveAnn());
  EXPECT_EQ(Index(kRoom), IndexBytes({{"Bob", "Bob", ""}, {"Cid", "Cid", ""}}));
  EXPECT_EQ(Index(kDen), IndexBytes({{"Zoe", "Zoe", ""}, {"AnnLee", "Ann", "Lee"}}));
  EXPECT_FALSE(temp.Exists(kRoom + "/AnnLee"));
  EXPECT_TRUE(temp.Exists(kDen + "/AnnLee/autogame.zep"));
  EXPECT_EQ(Described(students.Array()), Lines({"Bob:Bob:", "Cid:Cid:"}));
  EXPECT_EQ(app.heard, Lines({"StudentMoved|Room|Den|Lee|Ann|TDefault|TDefault"}));
}

TEST_F(MovingTest, AStudentMovesToAnotherTeachersClass) {
  EXPECT_TRUE(MoveStudentAcross(&hill, &oak, &room, &yard, students.At(0), &students.Array(), "Ann",
                                "Ray"));
  EXPECT_EQ(Index(kYard), IndexBytes({{"Yves", "Yves", ""}, {"AnnLee", "Ann", "Ray"}}));
  EXPECT_EQ(app.heard, Lines({"StudentMoved|Room|Yard|Ray|Ann|Ms Hill|Mr Oak"}));
  EXPECT_EQ(gCurrentTeacher->folderName, "aHill");
}

TEST_F(MovingTest, AClassMovesWithItsStudents) {
  // The teacher handed in may be the selected one itself.
  EXPECT_TRUE(MoveClass(gCurrentTeacher, &oak, classes.At(1), &classes.Array(), "Room 2"));
  EXPECT_EQ(Index(kHill), IndexBytes({{"Den", "Den", ""}}));
  EXPECT_EQ(Index(kOak), IndexBytes({{"Yard", "Yard", ""}, {"Room", "Room 2", ""}}));
  EXPECT_TRUE(temp.Exists(kOak + "/Room/Students/AnnLee/autogame.zep"));
  EXPECT_EQ(Described(classes.Array()), Lines({"Den:Den:"}));
  EXPECT_EQ(app.heard, Lines({"ClassMoved|Ms Hill|Mr Oak|Room 2"}));
  EXPECT_EQ(gCurrentTeacher->folderName, "aHill");
}

TEST_F(MovingTest, WhatIsInUseStaysWhereItIs) {
  for (const std::string& busy : {kHill, kOak, kHill + "/Room", kRoom + "/Bob"}) {
    const Holder other(Spec(busy + "/index.lok"));
    EXPECT_FALSE(MoveRoom()) << busy;
    EXPECT_EQ(gCurrentTeacher->folderName, "aHill");
  }
  std::vector<std::string> files{"/Room/Students/index.lok", "/Den/Students/index.lok",
                                 "/Room/Students/AnnLee/index.lok"};
  if (!kivtest::RunsUnderWine()) {  // where a folder moves though a file in it is open
    files.push_back("/Room/Students/AnnLee/autogame.zep");
  }
  for (const std::string& busy : files) {
    const Holder other(Spec(kHill + busy));
    EXPECT_FALSE(MoveAnn()) << busy;
  }
  EXPECT_EQ(Changed(), Lines());
  EXPECT_EQ(classes.GetSize() + students.GetSize(), 5);
  EXPECT_EQ(app.heard, Lines());
}

TEST_F(MovingTest, AFullDestinationTakesNobody) {
  const std::vector<IndexLine> lines(1000, IndexLine{"f", "Name", ""});
  for (const std::string& full : {kOak, kDen}) {
    temp.WriteFile(full + "/index.kiv", IndexBytes(lines));
  }
  const auto before = store.Snapshot();
  EXPECT_FALSE(MoveRoom());
  EXPECT_FALSE(MoveAnn());
  EXPECT_EQ(Changes(before, store.Snapshot()), Lines());
  EXPECT_TRUE(Dropped().empty());
}

TEST_F(MovingTest, WhoIsNotListedOrNotThereDoesNotMove) {
  SLoginList empty;
  SLoginNameObj copy = ann;
  EXPECT_FALSE(MoveStudent(&room, &den, &copy, &empty.Array(), "Ann", "Lee"));
  EXPECT_FALSE(MoveStudent(&room, &room, students.At(0), &students.Array(), "Ann", "Lee"));
  EXPECT_EQ(Changed(), Lines());
  temp.Remove(kRoom + "/AnnLee");
  EXPECT_FALSE(MoveAnn());
  temp.Remove(kOak);
  EXPECT_FALSE(MoveRoom());
  EXPECT_EQ(gCurrentTeacher->folderName, "aHill");
}

TEST_F(MovingTest, AFolderNameThatIsTakenThereGivesWayUnlessItIsOfThisName) {
  const CreatingScope creating;
  temp.WriteFile(kDen + "/AnnLee/longname.kiv", LongNameBytes("Ann", "Lee"));
  const auto before = store.Snapshot();
  EXPECT_FALSE(MoveAnn());
  EXPECT_EQ(Changes(before, store.Snapshot()), Lines());
  EXPECT_EQ(students.At(0)->folderName, "AnnLee");

  temp.WriteFile(kDen + "/AnnLee/longname.kiv", LongNameBytes("An", "NLee"));
  EXPECT_TRUE(MoveAnn());
  EXPECT_TRUE(temp.Exists(kDen + "/AnnLee0/autogame.zep"));
  EXPECT_FALSE(temp.Exists(kRoom + "/AnnLee"));
  EXPECT_EQ(Index(kDen), IndexBytes({{"Zoe", "Zoe", ""}, {"AnnLee0", "Ann", "Lee"}}));
  EXPECT_EQ(students.GetSize(), 2);
}

// A copy that is inert says it went well: a collision costs the folder.
TEST_F(MovingTest, WithoutMakersATakenFolderNameCostsTheSource) {
  temp.MakeFolder(kDen + "/AnnLee");
  EXPECT_TRUE(MoveAnn());
  EXPECT_FALSE(temp.Exists(kRoom + "/AnnLee"));
  EXPECT_FALSE(temp.Exists(kDen + "/AnnLee0"));
  EXPECT_EQ(app.heard, Lines());
}

}  // namespace
