#include "store/renaming.h"

#include "store/listing.h"
#include "tests/store/store_fixture.h"

using namespace kivstore;
using kivtest::IndexBytes;
using kivtest::Kind;
using kivtest::Lines;
using kivtest::LongNameBytes;
using kivtest::StoreBuilder;
using kivtest::Text;

namespace {

const std::string kTeacher = "Classes.zep/aHill";
const std::string kClasses = kTeacher + "/Classes.zep";
const std::string kStudents = kClasses + "/Room/Students";

class RenamingTest : public kivtest::StoreFixture {
 protected:
  RenamingTest() {
    UseSite(Kind::kTeachers);
    store.AddTeacher("Ms Hill", "aHill");
    store.AddTeacher("Mr Oak", "Oak");
    store.AddClass(kTeacher, "Attic", "Attic");
    store.AddClass(kTeacher, "Room", "Room");
    store.AddStudent(kClasses + "/Room", "Ann", "Lee", "AnnLee");
    store.AddStudent(kClasses + "/Room", "Bob", "", "Bob");
    store.Finish();
    LoadTeacherList(teachers.Array());
    SelectTeacher(&hill);
    LoadClassList(classes.Array(), true);
    LoadStudentList(students.Array(), room, true, true);
  }
  bool RenameAll() {
    bool renamed = RenameStudent(&room, &ann, &students.Array(), "Eve", "Ray");
    renamed |= RenameClass(&room, &classes.Array(), "Den", folder);
    return RenameTeacher(&hill, &teachers.Array(), "Mrs Hill", folder) || renamed;
  }

  StoreBuilder store{temp.Path(), Kind::kTeachers};
  const SLoginNameObj hill = Entry("aHill", "Ms Hill");
  const SLoginNameObj room = Entry("Room", "Room");
  const SLoginNameObj ann = Entry("AnnLee", "Ann", "Lee");
  SLoginList teachers, classes, students;
  SString folder = "something";
};

TEST_F(RenamingTest, ATeachersNewNameIsInItsFolderTheIndexAndTheList) {
  EXPECT_TRUE(RenameTeacher(&hill, &teachers.Array(), "Mrs Hill", folder));
  EXPECT_EQ(temp.ReadFile(kTeacher + "/longname.kiv"), LongNameBytes("Mrs Hill"));
  EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"),
            IndexBytes({{"aHill", "Mrs Hill", ""}, {"Oak", "Mr Oak", ""}}));
  EXPECT_EQ(Described(teachers.Array()), Lines({"aHill:Mrs Hill:", "Oak:Mr Oak:"}));
  EXPECT_EQ(app.heard, Lines({"TeacherRenamed|Ms Hill|Mrs Hill"}));
  EXPECT_EQ(folder, "");
}

TEST_F(RenamingTest, AClassesAndAStudentsToo) {
  EXPECT_TRUE(RenameClass(&room, &classes.Array(), "Den", folder));
  EXPECT_EQ(temp.ReadFile(kClasses + "/Room/longname.kiv"), LongNameBytes("Den"));
  EXPECT_EQ(temp.ReadFile(kClasses + "/index.kiv"),
            IndexBytes({{"Attic", "Attic", ""}, {"Room", "Den", ""}}));
  EXPECT_TRUE(RenameStudent(&room, &ann, &students.Array(), "Eve", "Ray"));
  EXPECT_EQ(temp.ReadFile(kStudents + "/AnnLee/longname.kiv"), LongNameBytes("Eve", "Ray"));
  EXPECT_EQ(temp.ReadFile(kStudents + "/index.kiv"),
            IndexBytes({{"AnnLee", "Eve", "Ray"}, {"Bob", "Bob", ""}}));
  EXPECT_EQ(app.heard, Lines({"ClassRenamed|Room|Den|Ms Hill",
                              "StudentRenamed|Room|Lee|Ann|Ray|Eve|Ms Hill"}));
}

TEST_F(RenamingTest, TheNameMayBeTheListsOwn) {
  SLoginNameObj& own = *students.At(1);
  EXPECT_TRUE(RenameStudent(&room, &own, &students.Array(), own.folderName, own.firstName));
  EXPECT_EQ(Described(students.Array()), Lines({"AnnLee:Ann:Lee", "Bob:Bob:Bob"}));
  EXPECT_EQ(app.heard, Lines({"StudentRenamed|Room||Bob|Bob|Bob|Ms Hill"}));
}

TEST_F(RenamingTest, WithoutNamedTeachersTheHookHearsTDefault) {
  gSiteMode = kSiteShared;
  EXPECT_TRUE(RenameClass(&room, &classes.Array(), "Den", folder));
  EXPECT_EQ(app.heard, Lines({"ClassRenamed|Room|Den|TDefault"}));
}

TEST_F(RenamingTest, AnEntryThatIsNotInTheListChangesNothing) {
  const auto before = store.Snapshot();
  SLoginList empty;
  EXPECT_FALSE(RenameTeacher(&hill, &empty.Array(), "x", folder));
  EXPECT_FALSE(RenameClass(&room, &empty.Array(), "x", folder));
  EXPECT_FALSE(RenameStudent(&room, &ann, &empty.Array(), "x", "y"));
  EXPECT_FALSE(RenameStudent(&room, nullptr, &students.Array(), "x", "y"));
  EXPECT_EQ(Changes(before, store.Snapshot()), Lines());
  EXPECT_EQ(app.heard, Lines());
}

TEST_F(RenamingTest, ALockThatIsTakenKeepsTheName) {
  const auto before = store.Snapshot();
  const std::vector<std::pair<std::string, std::string>> busy = {
      {"Classes.zep", kClasses}, {kClasses, kStudents}, {kStudents, kStudents + "/AnnLee"}};
  for (const auto& [list, inside] : busy) {
    for (const std::string& place : {list, inside}) {
      const Holder other(Spec(place + "/index.lok"));
      if (list == "Classes.zep") {
        EXPECT_FALSE(RenameTeacher(&hill, &teachers.Array(), "x", folder)) << place;
      } else if (list == kClasses) {
        EXPECT_FALSE(RenameClass(&room, &classes.Array(), "x", folder)) << place;
      } else {
        EXPECT_FALSE(RenameStudent(&room, &ann, &students.Array(), "x", "y")) << place;
      }
    }
  }
  EXPECT_EQ(Changes(before, store.Snapshot()), Lines());
}

TEST_F(RenamingTest, AFolderThatIsGoneCannotBeRenamed) {
  store.RemoveFolder(kStudents + "/AnnLee");
  EXPECT_FALSE(RenameStudent(&room, &ann, &students.Array(), "Eve", "Ray"));
  store.RemoveFolder(kStudents);
  EXPECT_FALSE(RenameClass(&room, &classes.Array(), "Den", folder));
}

TEST_F(RenamingTest, TeachersAreRenamedOnSharedSitesOnly) {
  gSiteMode = kSiteLocal;
  EXPECT_FALSE(RenameTeacher(&hill, &teachers.Array(), "Mrs Hill", folder));
  EXPECT_TRUE(RenameClass(&room, &classes.Array(), "Den", folder));
}

TEST_F(RenamingTest, ATeacherWithoutClassesGetsTheDefaultClassFirst) {
  store.RemoveFolder(kClasses);
  SelectTeacher(nullptr);
  EXPECT_FALSE(RenameTeacher(&hill, &teachers.Array(), "Mrs Hill", folder));
  EXPECT_EQ(Described(teachers.Array()), Lines({"aHill:Ms Hill:", "Oak:Mr Oak:"}));
  const kivtest::CreatingScope creating;
  EXPECT_TRUE(RenameTeacher(&hill, &teachers.Array(), "Mrs Hill", folder));
  EXPECT_EQ(temp.ReadFile(kClasses + "/index.kiv"), IndexBytes({{"Default", "Default", ""}}));
  EXPECT_EQ(gCurrentTeacher, nullptr);
}

TEST_F(RenamingTest, AFilesLongNameIsRenamedInItsIndex) {
  const std::string student = kStudents + "/AnnLee";
  store.AddFileLine(student, {"a.zep", "Old", "zep"});
  store.AddFileLine(student, {"b.zep", "Other", "zep"});
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
    EXPECT_EQ(RenameUserFile(Spec(student), c.from, c.to, true), c.renamed) << c.to;
    EXPECT_EQ(temp.ReadFile(student + "/index.kiv"),
              IndexBytes({}, {{"a.zep", c.now, "zep"}, {"b.zep", "Other", "zep"}}));
  }
  EXPECT_TRUE(Dropped().empty());
  const Holder other(Spec(student + "/index.lok"));
  EXPECT_FALSE(RenameUserFile(Spec(student + "/a.zep"), "New", "Newer", true));
  EXPECT_TRUE(RenameUserFile(Spec(student + "/a.zep"), "New", "Newer", false));
}

}  // namespace
