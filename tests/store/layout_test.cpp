#include "store/place/layout.h"

#include "tests/store/store_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

class LayoutTest : public StoreFixture {
 protected:
  // One teacher (where the kind has them), one class, one student.
  void Build(Kind kind) {
    UseSite(kind);
    StoreBuilder store(temp.Path(), kind);
    const bool tier = kind == Kind::kTeachers;
    const std::string teacher = tier ? store.AddTeacher("Ms Hill", "MsHill") : "";
    const std::string room12 = store.AddClass(teacher, "Room 12", "Room12");
    const std::string annLee = store.AddStudent(room12, "Ann", "Lee", "AnnLee");
    for (const std::string& place : {StoreBuilder::ClassList(teacher), room12, annLee}) {
      store.WriteOptions(place, OptionsBytes());
    }
    store.Finish();
  }
  void BuildEmpty(Kind kind) {
    UseSite(kind);
    StoreBuilder(temp.Path(), kind).Finish();
  }
  std::map<std::string, std::string> Snapshot() const {
    return StoreBuilder(temp.Path(), Kind::kLocal).Snapshot();
  }

  std::string Classes() {
    SString path;
    ClassesFolder(spec, path, false);
    return PlaceAndKind(spec);
  }
  std::string Teachers() {
    TeachersFolder(spec);
    return PlaceAndKind(spec);
  }
  std::string Students(const SLoginNameObj& entry) {
    StudentsFolder(spec, entry, false);
    return PlaceAndKind(spec);
  }
  std::string Folder(const SLoginNameObj* entry, const SLoginNameObj* student, bool mustExist) {
    EntryFolder(spec, entry, student, false, mustExist);
    return PlaceAndKind(spec);
  }
  std::string Options(const SLoginNameObj* entry, const SLoginNameObj* student) {
    OptionsFile(spec, entry, student);
    return PlaceAndKind(spec);
  }

  const SLoginNameObj room = Entry("Room12", "Room 12"), ann = Entry("AnnLee", "Ann", "Lee");
  SFileSpec spec;
};

TEST_F(LayoutTest, EveryPlaceIsFoundOnEveryKindOfSite) {
  const std::string teachersList = "Classes.zep/MsHill/Classes.zep/";
  for (const Kind kind : {Kind::kLocal, Kind::kShared, Kind::kTeachers}) {
    Build(kind);
    const std::string list = kind == Kind::kTeachers ? teachersList : "Classes.zep/";
    EXPECT_EQ(Teachers(), "folder Classes.zep/");
    EXPECT_EQ(Classes(), "folder " + list);
    EXPECT_EQ(Students(room), "folder " + list + "Room12/Students/");
    SharedFolder(spec, room);
    EXPECT_EQ(PlaceAndKind(spec), "folder " + list + "Room12/Shared/");
    EXPECT_EQ(Folder(nullptr, &ann, true), "folder " + list);
    EXPECT_EQ(Folder(&room, nullptr, true), "folder " + list + "Room12/");
    EXPECT_EQ(Folder(&room, &ann, true), "folder " + list + "Room12/Students/AnnLee/");
    EXPECT_EQ(Options(nullptr, &ann), "file " + list + "options.kiv");
    EXPECT_EQ(Options(&room, nullptr), "file " + list + "Room12/options.kiv");
    EXPECT_EQ(Options(&room, &ann), "file " + list + "Room12/Students/AnnLee/options.kiv");
    TopScoreFile(spec, &room, &ann);
    EXPECT_EQ(PlaceAndKind(spec), "none " + list + "Room12/Students/AnnLee/topScore.kiv");
    for (const char* ending : {"/", "\\", "//", "/Classes.zep/.."}) {
      SetRoot(temp.Path() + ending);
      Classes();
      EXPECT_TRUE(spec.Down("Room12") && spec.Exists()) << ending;
    }
    SetRoot(temp.Path());
    EXPECT_TRUE(Dropped().empty());
    temp.Remove("Classes.zep");
    SelectTeacher(nullptr);
  }
}

TEST_F(LayoutTest, TheFirstTeacherStandsInWhereNoneIsSelected) {
  UseSite(Kind::kTeachers);
  StoreBuilder store(temp.Path(), Kind::kTeachers);
  store.AddTeacher("Aaron", "Zed");
  const std::string abe = store.AddTeacher("Zoe", "Abe");
  store.Finish();
  EXPECT_EQ(Classes(), "folder Classes.zep/Abe/Classes.zep/");
  ASSERT_NE(gCurrentTeacher, nullptr);
  EXPECT_EQ(gCurrentTeacher->firstName, "Zoe");

  // Where the folders of all are gone, nobody is added.
  SelectTeacher(nullptr);
  store.RemoveFolder(abe);
  store.RemoveFolder("Classes.zep/Zed");
  const CreatingScope creating;
  EXPECT_EQ(Classes(), "none -");
  EXPECT_EQ(temp.List("Classes.zep"), Lines({"index.kiv", "index.lok"}));
}

TEST_F(LayoutTest, AFailedRootIsReportedOnceForTheProcess) {
  UseSite(Kind::kLocal);
  temp.MakeFolder("nowhere/Classes/Room12/Students");  // the plain stem is not looked at
  const std::string missing = temp.Path("nowhere");
  SetRoot(missing);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(Classes(), "none nowhere/Classes.zep");
    EXPECT_TRUE(gStoreFailed);
    ASSERT_EQ(Dropped().size(), 3u);
  }
  const std::string opening =
      "Unable to access the data files located in " + missing + ".  Make sure you are connected";
  EXPECT_EQ(Dropped()[0].substr(0, opening.size()), opening);
  EXPECT_EQ(Lines(Dropped().begin() + 1, Dropped().end()), Lines({"Quit", "&Retry"}));
}

TEST_F(LayoutTest, ARootThatIsNoFolderLeadsNowhere) {
  temp.WriteFile("plain", "");
  for (const std::string& root : {std::string(), temp.Path("plain"), std::string(32000, 'x')}) {
    SetRoot(root);
    for (const Kind kind : {Kind::kLocal, Kind::kTeachers}) {
      UseSite(kind);
      SelectTeacher(nullptr);
      EXPECT_EQ(Options(&room, &ann).substr(0, 4), "none") << root.substr(0, 40);
    }
  }
}

TEST_F(LayoutTest, RemovableDataAsksForADiskEachTime) {
  for (int i = 0; i < 2; ++i) {
    EXPECT_FALSE(ReportStoreFailure("B:\\data\\", true));
  }
  const std::string text =
      "Please make sure there is a writable disk in drive B:.  Also, make sure the disk is not "
      "full.";
  EXPECT_EQ(Dropped(), Lines({text, "&Retry", text, "&Retry"}));
  EXPECT_EQ(app.heard, Lines({"PrepareMessage", "PrepareMessage"}));
  EXPECT_FALSE(gStoreFailed);
  UseSite(Kind::kLocal);
  StudentsFolder(spec, room, true);
  EXPECT_EQ(PlaceAndKind(spec), "none Classes.zep");  // and goes no further
  EXPECT_EQ(Dropped().size(), 6u);
}

TEST_F(LayoutTest, ServicesThatMakeNothingLeaveAHoleOpen) {
  Build(Kind::kTeachers);
  const std::string list = "Classes.zep/MsHill/Classes.zep/";
  temp.Remove(list + "Room12/Students");
  const auto before = Snapshot();
  const SLoginNameObj gone = Entry("Gone", "Room 7");
  EXPECT_EQ(Students(room), "none " + list + "Room12/Students");
  EXPECT_TRUE(gStoreFailed);
  EXPECT_EQ(Folder(&gone, nullptr, true), "none " + list + "Gone");
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
  EXPECT_EQ(Students(gone), "none " + list + "Students");
  temp.Remove("Classes.zep/MsHill");
  EXPECT_EQ(Folder(&room, &ann, true), "none Classes.zep/MsHill");
}

TEST_F(LayoutTest, ServicesThatCreateFillTheHoles) {
  const CreatingScope creating;
  UseSite(Kind::kTeachers);
  const std::string teacher = "Classes.zep/MsHill/", list = teacher + "Classes.zep/";
  const SLoginNameObj hill = Entry("MsHill", "Ms Hill");
  TeacherFolder(spec, &hill);
  EXPECT_EQ(PlaceAndKind(spec), "folder " + teacher);
  SelectTeacher(&hill);
  EXPECT_EQ(Folder(&room, nullptr, true), "folder " + list + "Room12/");
  EXPECT_EQ(Folder(&room, &ann, false), "none " + list + "Room12/Students/AnnLee");
  EXPECT_EQ(Folder(&room, &ann, true), "folder " + list + "Room12/Students/AnnLee/");
  TopScoreFile(spec, nullptr, nullptr);
  EXPECT_EQ(PlaceAndKind(spec), "file " + list + "topScore.kiv");
  // A class that is lost comes back under its name.
  EXPECT_EQ(Students(Entry("Lost", "Room 7")), "folder " + list + "Room7/Students/");
  EXPECT_FALSE(gStoreFailed);
}

TEST_F(LayoutTest, NoEntryLeadsOutOfItsListFolder) {
  const CreatingScope creating;
  Build(Kind::kLocal);
  temp.MakeFolder("Students");
  const auto before = Snapshot();
  for (const char* name :
       {"", ".", "..", "...", ". .", "..\\..", "../..", "Room12\\..", "/", "Room12/Students"}) {
    const SLoginNameObj hostile = Entry(name, "Hostile");
    EXPECT_EQ(Students(hostile), "none -") << name;
    EXPECT_EQ(Folder(&hostile, nullptr, true), "none -") << name;
    EXPECT_EQ(Folder(&room, &hostile, true), "none -") << name;
    UseSite(Kind::kTeachers);
    TeacherFolder(spec, &hostile);
    EXPECT_EQ(PlaceAndKind(spec), "none -") << name;
    UseSite(Kind::kLocal);
  }
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
}

using DefaultEntriesTest = LayoutTest;

TEST_F(DefaultEntriesTest, AnEmptyListGetsTheDefaultClassOrItsLineAlone) {
  const std::string line = IndexBytes({{"Default", "Default", ""}});
  for (const Kind kind : {Kind::kLocal, Kind::kShared}) {
    BuildEmpty(kind);
    EXPECT_EQ(Classes(), "folder Classes.zep/");
    EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"), line);
    EXPECT_FALSE(temp.Exists("Classes.zep/Default"));
    EXPECT_TRUE(gStoreFailed);
    ASSERT_FALSE(Dropped().empty());
    EXPECT_EQ(Dropped()[0].substr(0, 34), "Unable to add the class Default be");

    BuildEmpty(kind);
    Dropped().clear();
    const CreatingScope creating;
    EXPECT_EQ(Classes(), "folder Classes.zep/");
    EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"), line);
    EXPECT_EQ(temp.ReadFile("Classes.zep/Default/longname.kiv"), LongNameBytes("Default"));
    EXPECT_TRUE(temp.Exists("Classes.zep/Default/Students"));
    EXPECT_TRUE(Dropped().empty());
    temp.Remove("Classes.zep");
  }
}

TEST_F(DefaultEntriesTest, AListIsLeftAloneWhereItMayHaveEntries) {
  const CreatingScope creating;
  BuildEmpty(Kind::kShared);
  {
    const Holder other(Spec("Classes.zep/index.lok"));
    EXPECT_EQ(Classes(), "folder Classes.zep/");
  }
  EXPECT_EQ(temp.List("Classes.zep"), Lines({"index.kiv", "index.lok"}));
  temp.MakeFolder("Classes.zep/Default");
  EXPECT_EQ(Classes(), "folder Classes.zep/");
  EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"), IndexBytes({}));
  EXPECT_FALSE(gStoreFailed);
}

TEST_F(DefaultEntriesTest, AStoreWithoutTeachersGetsTheDefaultTeacher) {
  BuildEmpty(Kind::kTeachers);
  EXPECT_EQ(Classes(), "none Classes.zep/TDefault");
  ASSERT_NE(gCurrentTeacher, nullptr);
  EXPECT_EQ(gCurrentTeacher->folderName, "TDefault");

  SelectTeacher(nullptr);
  BuildEmpty(Kind::kTeachers);
  const CreatingScope creating;
  EXPECT_EQ(Classes(), "folder Classes.zep/TDefault/Classes.zep/");
  EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"), IndexBytes({{"TDefault", "TDefault", ""}}));
  EXPECT_TRUE(temp.Exists("Classes.zep/TDefault/Classes.zep/Default/Students"));
}

}  // namespace
