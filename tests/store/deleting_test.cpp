#include "store/deleting.h"

#include "store/deleting_files.h"
#include "store/listing.h"
#include "tests/store/store_fixture.h"

using namespace kivstore;
using kivtest::IndexBytes;
using kivtest::Kind;
using kivtest::Lines;
using kivtest::StoreBuilder;
using kivtest::Text;

namespace {

const std::string kClasses = "Classes.zep/aHill/Classes.zep";
const std::string kStudents = kClasses + "/Room/Students";

class DeletingTest : public kivtest::StoreFixture {
 protected:
  DeletingTest() {
    UseSite(Kind::kTeachers);
    store.AddTeacher("Ms Hill", "aHill");
    store.AddTeacher("Mr Oak", "Oak");
    store.AddClass("Classes.zep/aHill", "Attic", "Attic");
    store.AddClass("Classes.zep/aHill", "Room", "Room");
    for (const char* name : {"Ann", "Bob", "Cid"}) {
      store.AddStudent(kClasses + "/Room", name, "", name);
    }
    store.WriteGame(kStudents + "/Bob", kivtest::GameBytes());
    store.Finish();
    LoadTeacherList(teachers.Array());
    SelectTeacher(&hill);
    LoadClassList(classes.Array(), true);
    LoadStudentList(students.Array(), room, true, true);
  }
  // A file of the entry that another workstation is working on.
  std::string BusyFile(const std::string& folder) const {
    temp.WriteFile(folder + "/busy.zep", "");
    return folder + "/busy.zep";
  }

  StoreBuilder store{temp.Path(), Kind::kTeachers};
  const SLoginNameObj hill = Entry("aHill", "Ms Hill");
  const SLoginNameObj room = Entry("Room", "Room");
  SLoginList teachers, classes, students;
  bool stop = false;
};

TEST_F(DeletingTest, AStudentGoesWithEverythingInItsFolder) {
  EXPECT_TRUE(DeleteStudent(&room, students.At(1), &students.Array(), true, stop));
  EXPECT_EQ(temp.List(kStudents), Lines({"Ann", "Cid", "index.kiv", "index.lok"}));
  EXPECT_EQ(temp.ReadFile(kStudents + "/index.kiv"),
            IndexBytes({{"Ann", "Ann", ""}, {"Cid", "Cid", ""}}));
  EXPECT_EQ(Described(students.Array()), Lines({"Ann:Ann:", "Cid:Cid:"}));
  EXPECT_TRUE(Dropped().empty());
}

TEST_F(DeletingTest, AStudentWhoIsGoneAlreadyIsASuccess) {
  store.RemoveFolder(kStudents + "/Bob");
  const auto before = store.Snapshot();
  EXPECT_TRUE(DeleteStudent(&room, students.At(1), &students.Array(), true, stop));
  EXPECT_EQ(Changes(before, store.Snapshot()), Lines());
  EXPECT_EQ(students.GetSize(), 3);
}

TEST_F(DeletingTest, AStudentInUseStays) {
  const auto before = store.Snapshot();
  const Holder other(Spec(kStudents + "/Bob/index.lok"));
  stop = true;
  EXPECT_FALSE(DeleteStudent(&room, students.At(1), &students.Array(), true, stop));
  EXPECT_FALSE(stop);
  EXPECT_EQ(Changes(before, store.Snapshot()), Lines());
  EXPECT_EQ(students.GetSize(), 3);
}

TEST_F(DeletingTest, NobodyIsDeletedOutsideTheList) {
  const auto before = store.Snapshot();
  for (const char* folder : {"", "..", "..\\..\\Attic", "."}) {
    const SLoginNameObj hostile = Entry(folder, "Ann");
    EXPECT_FALSE(DeleteStudent(&room, &hostile, &students.Array(), true, stop)) << folder;
    EXPECT_FALSE(DeleteClass(&hostile, &classes.Array(), true, stop)) << folder;
    EXPECT_FALSE(DeleteTeacher(&hostile, &teachers.Array())) << folder;
  }
  EXPECT_FALSE(DeleteStudent(&room, nullptr, &students.Array(), true, stop));
  EXPECT_FALSE(DeleteStudent(nullptr, students.At(0), &students.Array(), true, stop));
  EXPECT_FALSE(DeleteClass(&room, nullptr, true, stop));
  EXPECT_FALSE(DeleteTeacher(nullptr, &teachers.Array()));
  EXPECT_EQ(Changes(before, store.Snapshot()), Lines());
}

TEST_F(DeletingTest, AFolderThatCannotGoIsReported) {
  const struct { bool standAlone, stop; } cases[] = {{true, false}, {false, true}};
  const Holder other(Spec(BusyFile(kStudents + "/Bob")));
  for (const auto& c : cases) {
    Dropped().clear();
    temp.WriteFile(kStudents + "/Bob/index.lok", "");  // the first try takes it along
    EXPECT_FALSE(DeleteStudent(&room, students.At(1), &students.Array(), c.standAlone, stop));
    EXPECT_EQ(stop, c.stop);
    ASSERT_EQ(Dropped().size(), 1u);
    const std::string opening = "Unable to delete the student Bob because the student folder " +
                                kivtest::Bytes(Spec(kStudents + "/Bob").GetPath()) +
                                " could not be deleted.  ";
    EXPECT_EQ(Dropped()[0].substr(0, opening.size()), opening);
    EXPECT_EQ(students.GetSize(), 3);
  }
}

TEST_F(DeletingTest, AClassGoesWithItsStudents) {
  EXPECT_TRUE(DeleteClass(&room, &classes.Array(), true, stop));
  EXPECT_EQ(temp.List(kClasses), Lines({"Attic", "index.kiv", "index.lok"}));
  EXPECT_EQ(temp.ReadFile(kClasses + "/index.kiv"), IndexBytes({{"Attic", "Attic", ""}}));
  EXPECT_EQ(Described(classes.Array()), Lines({"Attic:Attic:"}));
}

TEST_F(DeletingTest, OneStudentInUseKeepsTheClassButNotTheOthers) {
  const std::string index = temp.ReadFile(kStudents + "/index.kiv");
  const Holder other(Spec(kStudents + "/Bob/index.lok"));
  EXPECT_FALSE(DeleteClass(&room, &classes.Array(), true, stop));
  EXPECT_FALSE(stop);
  EXPECT_EQ(temp.List(kStudents), Lines({"Bob", "index.kiv", "index.lok"}));
  EXPECT_EQ(temp.ReadFile(kStudents + "/index.kiv"), index);
  EXPECT_EQ(classes.GetSize(), 2);
}

TEST_F(DeletingTest, AFolderThatStaysEndsTheDeleteOfItsClass) {
  const Holder other(Spec(BusyFile(kStudents + "/Bob")));
  EXPECT_FALSE(DeleteClass(&room, &classes.Array(), true, stop));
  EXPECT_TRUE(stop);
  EXPECT_FALSE(temp.Exists(kStudents + "/Ann"));
  EXPECT_TRUE(temp.Exists(kStudents + "/Cid"));
}

TEST_F(DeletingTest, ATeacherGoesWithTheClasses) {
  EXPECT_TRUE(DeleteTeacher(&hill, &teachers.Array()));
  EXPECT_EQ(temp.List("Classes.zep"), Lines({"Oak", "index.kiv", "index.lok"}));
  EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"), IndexBytes({{"Oak", "Mr Oak", ""}}));
  EXPECT_EQ(Described(teachers.Array()), Lines({"Oak:Mr Oak:"}));
}

TEST_F(DeletingTest, ASelectionThatWasThereNamesTheDeletedTeacherAfterwards) {
  const SLoginNameObj oak = Entry("Oak", "Mr Oak");
  ASSERT_EQ(gCurrentTeacher->folderName, "aHill");
  EXPECT_TRUE(DeleteTeacher(&oak, &teachers.Array()));
  EXPECT_EQ(gCurrentTeacher->folderName, "Oak");
  SelectTeacher(nullptr);
  EXPECT_TRUE(DeleteTeacher(&hill, &teachers.Array()));
  EXPECT_EQ(gCurrentTeacher, nullptr);
}

TEST_F(DeletingTest, ATeacherWithoutClassesGoesAtOnce) {
  store.RemoveFolder(kClasses);
  EXPECT_TRUE(DeleteTeacher(&hill, &teachers.Array()));
  EXPECT_FALSE(temp.Exists("Classes.zep/aHill"));
  EXPECT_EQ(teachers.GetSize(), 1);
}

TEST_F(DeletingTest, ATeacherWithAStudentInUseStays) {
  const Holder other(Spec(kStudents + "/Bob/index.lok"));
  EXPECT_FALSE(DeleteTeacher(&hill, &teachers.Array()));
  EXPECT_EQ(teachers.GetSize(), 2);
  EXPECT_TRUE(temp.Exists(kStudents + "/Bob"));
  EXPECT_FALSE(temp.Exists(kClasses + "/Attic"));
  ASSERT_EQ(Dropped().size(), 1u);
  EXPECT_EQ(Dropped()[0].substr(0, 41), "Unable to delete the teacher Ms Hill beca");
}

TEST_F(DeletingTest, OutsideSharedModeNoTeacherGoesButClassesDo) {
  gSiteMode = kSiteLocal;
  EXPECT_FALSE(DeleteTeacher(&hill, &teachers.Array()));
  const Holder other(Spec(kClasses + "/index.lok"));
  EXPECT_TRUE(DeleteClass(&room, &classes.Array(), true, stop));
  EXPECT_FALSE(temp.Exists(kClasses + "/Room"));
}

class DeletingFilesTest : public DeletingTest {
 protected:
  void SetUp() override {
    store.AddFileLine(kStudents + "/Bob", {"a.zep", "A", "zep"});
    store.AddFileLine(kStudents + "/Bob", {"b.TXT", "B", "TXT"});
    store.AddFileLine(kStudents + "/Bob", {"c.doc", "C", "doc"});
    store.Finish();
    for (const char* file : {"/a.zep", "/b.TXT", "/c.doc", "/zep", "/sub/d.zep"}) {
      temp.WriteFile(folder + file, "");
    }
  }
  const std::string folder = kStudents + "/Bob";
  const SLoginNameObj bob = Entry("Bob", "Bob");
};

TEST_F(DeletingFilesTest, FilesOfASuffixGoWithTheirLines) {
  SStringArray suffixes;
  const auto before = store.Snapshot();
  DeleteFilesBySuffix(&room, &bob, suffixes, "");
  EXPECT_EQ(Changes(before, store.Snapshot()), Lines());
  suffixes.Add("ZEP");
  suffixes.Add("txt");
  DeleteFilesBySuffix(&room, &bob, suffixes, "");
  EXPECT_EQ(Changes(before, store.Snapshot()),
            Lines({"*" + folder + "/index.kiv", "-" + folder + "/a.zep",
                   "-" + folder + "/autogame.zep", "-" + folder + "/b.TXT"}));
  EXPECT_EQ(temp.ReadFile(folder + "/index.kiv"), IndexBytes({}, {{"c.doc", "C", "doc"}}));
}

TEST_F(DeletingFilesTest, FilesOfAFolderInsideGoAndTheLinesOfTheEntrysOwn) {
  SStringArray suffixes;
  suffixes.Add("zep");
  DeleteFilesBySuffix(&room, &bob, suffixes, "sub");
  EXPECT_EQ(temp.List(folder + "/sub"), Lines());
  EXPECT_TRUE(temp.Exists(folder + "/a.zep"));
  EXPECT_EQ(temp.ReadFile(folder + "/index.kiv"),
            IndexBytes({}, {{"b.TXT", "B", "TXT"}, {"c.doc", "C", "doc"}}));
}

TEST_F(DeletingFilesTest, AFileThatStaysLeavesTheIndexAlone) {
  SStringArray suffixes;
  suffixes.Add("doc");
  const std::string index = temp.ReadFile(folder + "/index.kiv");
  const Holder other(Spec(folder + "/c.doc"));
  DeleteFilesBySuffix(&room, &bob, suffixes, "");
  EXPECT_EQ(temp.ReadFile(folder + "/index.kiv"), index);
  ASSERT_EQ(Dropped().size(), 1u);
  const std::string opening =
      "The file '" + kivtest::Bytes(Spec(folder + "/c.doc").GetPath()) + "' could not be %2d.  ";
  EXPECT_EQ(Dropped()[0].substr(0, opening.size()), opening);
}

TEST_F(DeletingFilesTest, OneFileGoesWithItsLine) {
  SFileSpec spec = Spec(folder + "/B.txt");
  EXPECT_TRUE(DeleteUserFile(spec, true));
  EXPECT_FALSE(temp.Exists(folder + "/b.TXT"));
  spec = Spec(folder + "/nothing.zep");
  EXPECT_TRUE(DeleteUserFile(spec, true));
  EXPECT_EQ(temp.ReadFile(folder + "/index.kiv"),
            IndexBytes({}, {{"a.zep", "A", "zep"}, {"c.doc", "C", "doc"}}));
  EXPECT_TRUE(Dropped().empty());
}

TEST_F(DeletingFilesTest, AFileThatCannotGoIsReported) {
  const auto before = store.Snapshot();
  SFileSpec busy = Spec(folder + "/c.doc");
  SFileSpec aFolder = Spec(folder + "/sub");
  SFileSpec locked = Spec(folder + "/a.zep");
  SFileSpec nowhere;
  {
    const Holder other(busy);
    EXPECT_FALSE(DeleteUserFile(busy, false));
  }
  EXPECT_FALSE(DeleteUserFile(aFolder, false));
  EXPECT_FALSE(DeleteUserFile(nowhere, false));
  const Holder other(Spec(folder + "/index.lok"));
  EXPECT_FALSE(DeleteUserFile(locked, true));
  EXPECT_EQ(Changes(before, store.Snapshot()), Lines());
  EXPECT_EQ(app.heard, Lines());
}

}  // namespace
