#include "store/change/moving.h"

#include "tests/support/school_fixture.h"
#include "tests/support/wine.h"

using namespace kivstore;
using namespace kivtest;

namespace {

class MovingTest : public SchoolFixture {
 protected:
  bool MoveRoom() { return MoveClass(site, hill, oak, classes[1], classes, "Room 2"); }
  bool MoveAnn() { return MoveStudent(site, room, den, students[0], students, "Ann", "Lee"); }
};

TEST_F(MovingTest, AStudentMovesWithTheFolder) {
  NoteCounted();
  EXPECT_TRUE(MoveAnn());
  EXPECT_FALSE(site.GetCountedClasses().IsValid());
  EXPECT_EQ(Index(kRoom), IndexBytes({{"Bob", "Bob", ""}, {"Cid", "Cid", ""}}));
  EXPECT_EQ(Index(kDen), IndexBytes({{"Zoe", "Zoe", ""}, {"AnnLee", "Ann", "Lee"}}));
  EXPECT_FALSE(temp.Exists(kRoom + "/AnnLee"));
  EXPECT_TRUE(temp.Exists(kDen + "/AnnLee/mark"));
  EXPECT_EQ(Described(students), Lines({"Bob:Bob:", "Cid:Cid:"}));
  EXPECT_EQ(owner.heard, Lines({"StudentMoved|Room|Den|Lee|Ann|TDefault|TDefault"}));
  EXPECT_EQ(Why(), "");
}

TEST_F(MovingTest, AStudentMovesToAnotherTeachersClass) {
  EXPECT_TRUE(MoveStudentAcross(site, hill, oak, room, yard, students[1], students, "Bob", "Ray"));
  EXPECT_EQ(Index(kYard),
            IndexBytes({{"Yves", "Yves", ""}, {"AnnLee", "An", "Nlee"}, {"Bob", "Bob", "Ray"}}));
  EXPECT_EQ(owner.heard, Lines({"StudentMoved|Room|Yard|Ray|Bob|Ms Hill|Mr Oak"}));
  EXPECT_EQ(Selected(), "aHill");
}

TEST_F(MovingTest, AClassMovesWithItsStudents) {
  // The teacher handed in may be the selected one itself.
  EXPECT_TRUE(MoveClass(site, *site.GetCurrentTeacher(), oak, classes[1], classes, "Room 2"));
  EXPECT_EQ(Index(kHill), IndexBytes({{"Den", "Den", ""}}));
  EXPECT_EQ(Index(kOak), IndexBytes({{"Yard", "Yard", ""}, {"Room", "Room 2", ""}}));
  EXPECT_TRUE(temp.Exists(kOak + "/Room/Students/AnnLee/mark"));
  EXPECT_EQ(Described(classes), Lines({"Den:Den:"}));
  EXPECT_EQ(owner.heard, Lines({"ClassMoved|Ms Hill|Mr Oak|Room 2"}));
  EXPECT_EQ(Selected(), "aHill");
}

TEST_F(MovingTest, WhoHasAFileOpenStays) {
  if (kivtest::RunsUnderWine()) {
    GTEST_SKIP() << "there a folder moves though a file in it is open";
  }
  const Holder other(Spec(kRoom + "/AnnLee/mark"));
  EXPECT_EQ(WhyNot(MoveAnn()).substr(0, 16), "in use students ");
  EXPECT_EQ(WhyNot(MoveRoom()).substr(0, 15), "in use classes ");
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
    EXPECT_EQ(Why(), count < 1000 ? "" : "full students " + kDen + "/");
    EXPECT_EQ(MoveRoom(), count < 1000);
    EXPECT_EQ(site.GetFailure().text, "");
    EXPECT_EQ(Why(), count < 1000 ? "" : "full classes " + kOak + "/");
    EXPECT_EQ(Changes(before, Snapshot()) == Lines(), count == 1000);
  }
}

TEST_F(MovingTest, WhoIsNotListedOrNotThereDoesNotMove) {
  SLoginList empty;
  SLoginNameObj copy = ann;
  EXPECT_EQ(WhyNot(MoveStudent(site, room, den, copy, empty, "Ann", "Lee")),
            "no entry students " + kRoom + "/");
  EXPECT_FALSE(MoveStudent(site, room, room, students[0], students, "Ann", "Lee"));
  EXPECT_EQ(Changed(), Lines());
  temp.Remove(kRoom + "/AnnLee");
  Why();
  EXPECT_EQ(WhyNot(MoveAnn()), "no entry students " + kRoom + "/AnnLee");
  EXPECT_EQ(students.GetSize(), 3);
  EXPECT_FALSE(MoveStudent(site, room, Entry("Gone", "Gone"), students[1], students, "Bob", ""));
  EXPECT_EQ(owner.heard, Lines());
}

TEST_F(MovingTest, AFolderNameThatIsTakenThereGivesWayUnlessItIsOfThisName) {
  const CreatingScope creating;
  temp.WriteFile(kDen + "/AnnLee/longname.kiv", LongNameBytes("Ann", "Lee"));
  const auto before = Snapshot();
  EXPECT_FALSE(MoveAnn());
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
  EXPECT_EQ(students[0].folderName, "AnnLee");

  temp.WriteFile(kDen + "/AnnLee/longname.kiv", LongNameBytes("An", "NLee"));
  EXPECT_TRUE(MoveAnn());
  EXPECT_TRUE(temp.Exists(kDen + "/AnnLee0/mark"));
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
  EXPECT_EQ(owner.heard, Lines());
}

}  // namespace
