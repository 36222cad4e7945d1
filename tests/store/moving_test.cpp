#include "store/moving.h"

#include "store/listing.h"
#include "tests/store/store_fixture.h"
#include "tests/support/fault_file_services.h"

using namespace kivstore;
using kivtest::IndexBytes;
using kivtest::IndexLine;
using kivtest::Kind;
using kivtest::Lines;
using kivtest::StoreBuilder;
using kivtest::Text;

namespace {

const std::string kHill = "Classes.zep/aHill/Classes.zep";
const std::string kOak = "Classes.zep/Oak/Classes.zep";

class MovingTest : public kivtest::StoreFixture {
 protected:
  MovingTest() { Build(); }
  void Build() {
    UseSite(Kind::kTeachers);
    StoreBuilder builder(temp.Path(), Kind::kTeachers);
    builder.AddTeacher("Ms Hill", "aHill");
    builder.AddTeacher("Mr Oak", "Oak");
    builder.AddClass("Classes.zep/aHill", "Room", "Room");
    builder.AddClass("Classes.zep/aHill", "Den", "Den");
    builder.AddClass("Classes.zep/Oak", "Yard", "Yard");
    builder.AddStudent(kHill + "/Room", "Ann", "Lee", "AnnLee");
    builder.AddStudent(kHill + "/Room", "Bob", "", "Bob");
    builder.AddStudent(kHill + "/Den", "Zoe", "", "Zoe");
    builder.AddStudent(kOak + "/Yard", "Yves", "", "Yves");
    builder.WriteGame(kHill + "/Room/Students/AnnLee", kivtest::GameBytes());
    builder.Finish();
    SelectTeacher(&hill);
    DeleteLogins(classes.Array());
    DeleteLogins(students.Array());
    LoadClassList(classes.Array(), true);
    LoadStudentList(students.Array(), room, true, true);
  }
  std::map<std::string, std::string> Snapshot() const {
    return StoreBuilder(temp.Path(), Kind::kTeachers).Snapshot();
  }
  std::string Index(const std::string& list) const { return temp.ReadFile(list + "/index.kiv"); }
  bool MoveRoom() { return MoveClass(&hill, &oak, classes.At(1), &classes.Array(), "Room 2"); }
  bool MoveAnn() {
    return MoveStudent(&room, &den, students.At(0), &students.Array(), "Ann", "Lee");
  }
  bool MoveAnnAcross() {
    return MoveStudentAcross(&hill, &oak, &room, &yard, students.At(0), &students.Array(), "Ann",
                             "Ray");
  }

  const SLoginNameObj hill = Entry("aHill", "Ms Hill");
  const SLoginNameObj oak = Entry("Oak", "Mr Oak");
  const SLoginNameObj room = Entry("Room", "Room");
  const SLoginNameObj den = Entry("Den", "Den");
  const SLoginNameObj yard = Entry("Yard", "Yard");
  SLoginList classes, students;
};

TEST_F(MovingTest, AStudentMovesWithTheFolder) {
  EXPECT_TRUE(MoveAnn());
  EXPECT_EQ(Index(kHill + "/Room/Students"), IndexBytes({{"Bob", "Bob", ""}}));
  EXPECT_EQ(Index(kHill + "/Den/Students"),
            IndexBytes({{"Zoe", "Zoe", ""}, {"AnnLee", "Ann", "Lee"}}));
  EXPECT_FALSE(temp.Exists(kHill + "/Room/Students/AnnLee"));
  EXPECT_TRUE(temp.Exists(kHill + "/Den/Students/AnnLee/autogame.zep"));
  EXPECT_EQ(Described(students.Array()), Lines({"Bob:Bob:"}));
  EXPECT_EQ(app.heard, Lines({"StudentMoved|Room|Den|Lee|Ann|TDefault|TDefault"}));
}

TEST_F(MovingTest, AStudentMovesToAnotherTeachersClass) {
  EXPECT_TRUE(MoveAnnAcross());
  EXPECT_EQ(Index(kOak + "/Yard/Students"),
            IndexBytes({{"Yves", "Yves", ""}, {"AnnLee", "Ann", "Ray"}}));
  EXPECT_EQ(app.heard, Lines({"StudentMoved|Room|Yard|Ray|Ann|Ms Hill|Mr Oak"}));
  EXPECT_EQ(gCurrentTeacher->folderName, "aHill");
}

TEST_F(MovingTest, AClassMovesWithItsStudents) {
  EXPECT_TRUE(MoveRoom());
  EXPECT_EQ(Index(kHill), IndexBytes({{"Den", "Den", ""}}));
  EXPECT_EQ(Index(kOak), IndexBytes({{"Yard", "Yard", ""}, {"Room", "Room 2", ""}}));
  EXPECT_TRUE(temp.Exists(kOak + "/Room/Students/AnnLee/autogame.zep"));
  EXPECT_EQ(Described(classes.Array()), Lines({"Den:Den:"}));
  EXPECT_EQ(app.heard, Lines({"ClassMoved|Ms Hill|Mr Oak|Room 2"}));
  EXPECT_EQ(gCurrentTeacher->folderName, "aHill");
}

TEST_F(MovingTest, TheSelectedTeacherMayBeTheOneHandedIn) {
  EXPECT_TRUE(MoveClass(gCurrentTeacher, &oak, classes.At(1), &classes.Array(), "Room"));
  EXPECT_EQ(gCurrentTeacher->folderName, "aHill");
  EXPECT_TRUE(temp.Exists(kOak + "/Room"));
}

TEST_F(MovingTest, AnyLockThatIsTakenKeepsEverythingWhereItIs) {
  const auto before = Snapshot();
  for (const std::string& busy : {kHill, kOak, kHill + "/Room", kHill + "/Room/Students/Bob"}) {
    const Holder other(Spec(busy + "/index.lok"));
    EXPECT_FALSE(MoveRoom()) << busy;
    EXPECT_EQ(gCurrentTeacher->folderName, "aHill");
  }
  for (const std::string& busy :
       {kHill + "/Room/Students", kHill + "/Den/Students", kHill + "/Room/Students/AnnLee"}) {
    const Holder other(Spec(busy + "/index.lok"));
    EXPECT_FALSE(MoveAnn()) << busy;
  }
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
  EXPECT_EQ(classes.GetSize(), 2);
  EXPECT_EQ(app.heard, Lines());
}

TEST_F(MovingTest, AFullDestinationTakesNobody) {
  std::vector<IndexLine> lines(1000, IndexLine{"f", "Name", ""});
  for (const std::string& full : {kOak, kHill + "/Den/Students"}) {
    temp.WriteFile(full + "/index.kiv", IndexBytes(lines));
  }
  const auto before = Snapshot();
  EXPECT_FALSE(MoveRoom());
  EXPECT_FALSE(MoveAnn());
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
  EXPECT_TRUE(Dropped().empty());
}

TEST_F(MovingTest, WhoIsNotListedOrNotThereDoesNotMove) {
  SLoginList empty;
  SLoginNameObj ann = Entry("AnnLee", "Ann", "Lee");
  const auto before = Snapshot();
  EXPECT_FALSE(MoveStudent(&room, &den, &ann, &empty.Array(), "Ann", "Lee"));
  EXPECT_FALSE(MoveStudent(&room, nullptr, &ann, &students.Array(), "Ann", "Lee"));
  EXPECT_FALSE(MoveClass(nullptr, &oak, classes.At(0), &classes.Array(), "x"));
  EXPECT_FALSE(MoveStudent(&room, &room, students.At(0), &students.Array(), "Ann", "Lee"));
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
  temp.Remove(kHill + "/Room/Students/AnnLee");
  EXPECT_FALSE(MoveAnn());
  temp.Remove(kOak);
  EXPECT_FALSE(MoveRoom());
  EXPECT_EQ(gCurrentTeacher->folderName, "aHill");
}

TEST_F(MovingTest, AFolderNameThatIsTakenThereGivesWay) {
  const kivtest::CreatingScope creating;
  temp.WriteFile(kHill + "/Den/Students/AnnLee/longname.kiv", kivtest::LongNameBytes("An", "NLee"));
  EXPECT_TRUE(MoveAnn());
  EXPECT_TRUE(temp.Exists(kHill + "/Den/Students/AnnLee0/autogame.zep"));
  EXPECT_FALSE(temp.Exists(kHill + "/Room/Students/AnnLee"));
  EXPECT_EQ(Index(kHill + "/Den/Students"),
            IndexBytes({{"Zoe", "Zoe", ""}, {"AnnLee0", "Ann", "Lee"}}));
  EXPECT_EQ(students.GetSize(), 1);
}

TEST_F(MovingTest, WhoIsThereAlreadyUnderThisNameStaysInBothPlaces) {
  const kivtest::CreatingScope creating;
  temp.WriteFile(kHill + "/Den/Students/AnnLee/longname.kiv", kivtest::LongNameBytes("Ann", "Lee"));
  const auto before = Snapshot();
  EXPECT_FALSE(MoveAnn());
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
  EXPECT_EQ(students.At(0)->folderName, "AnnLee");
}

// A copy that is inert says it went well: a collision costs the folder.
TEST_F(MovingTest, WithoutMakersATakenFolderNameCostsTheSource) {
  temp.MakeFolder(kHill + "/Den/Students/AnnLee");
  EXPECT_TRUE(MoveAnn());
  EXPECT_FALSE(temp.Exists(kHill + "/Room/Students/AnnLee"));
  EXPECT_FALSE(temp.Exists(kHill + "/Den/Students/AnnLee0"));
  EXPECT_EQ(app.heard, Lines());
}

TEST_F(MovingTest, AFolderWithAnOpenFileDoesNotMove) {
  const auto before = Snapshot();
  const Holder other(Spec(kHill + "/Room/Students/AnnLee/autogame.zep"));
  EXPECT_FALSE(MoveAnn());
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
  EXPECT_EQ(students.GetSize(), 2);
}

// Wherever a move breaks off, the next listings find the student, and only once.
TEST_F(MovingTest, AMoveThatBreaksOffLosesNobody) {
  bool struck = true;
  for (int n = 1; struck && n < 300; ++n) {
    {
      kivtest::FaultFileServices services(*Platform().files);
      const SPlatformOverride<IFileServices> installed(Platform().files, &services);
      services.FailAt(n, SystemError::kOther, true);
      MoveAnn();
      struck = services.HasStruck();
      EXPECT_EQ(services.OpenPaths(), Lines()) << n;
    }
    int found = 0;
    for (const SLoginNameObj* place : {&room, &den}) {
      SLoginList list;
      LoadStudentList(list.Array(), *place, true, true);
      const Lines lines = Described(list.Array());
      found += static_cast<int>(std::count(lines.begin(), lines.end(), "AnnLee:Ann:Lee"));
    }
    EXPECT_EQ(found, 1) << n;
    temp.Remove("Classes.zep");
    Build();
  }
  EXPECT_FALSE(struck);
}

}  // namespace
