#include "store/layout.h"

#include "store/adding.h"
#include "store/index_file.h"
#include "tests/store/store_fixture.h"
#include "tests/support/fault_file_services.h"

using namespace kivstore;
using kivtest::IndexBytes;
using kivtest::Kind;
using kivtest::Lines;
using kivtest::StoreBuilder;
using kivtest::Text;

namespace {

class LayoutTest : public kivtest::StoreFixture {
 protected:
  // One teacher (where the kind has them), one class, one student.
  void Build(Kind kind) {
    UseSite(kind);
    StoreBuilder store(temp.Path(), kind);
    std::string teacher;
    if (kind == Kind::kTeachers) {
      teacher = store.AddTeacher("Ms Hill", "MsHill");
    }
    const std::string room = store.AddClass(teacher, "Room 12", "Room12");
    const std::string ann = store.AddStudent(room, "Ann", "Lee", "AnnLee");
    store.WriteOptions(StoreBuilder::ClassList(teacher), kivtest::OptionsBytes());
    store.WriteOptions(room, kivtest::OptionsBytes());
    store.WriteOptions(ann, kivtest::OptionsBytes());
    store.Finish();
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

  const SLoginNameObj room = Entry("Room12", "Room 12");
  const SLoginNameObj ann = Entry("AnnLee", "Ann", "Lee");
  const SLoginNameObj gone = Entry("Gone", "Gone");
  SFileSpec spec;
};

TEST_F(LayoutTest, EveryPlaceIsFoundOnEveryKindOfSite) {
  const struct {
    Kind kind;
    std::string list;
  } sites[] = {{Kind::kLocal, "Classes.zep/"},
               {Kind::kShared, "Classes.zep/"},
               {Kind::kTeachers, "Classes.zep/MsHill/Classes.zep/"}};
  for (const auto& site : sites) {
    Build(site.kind);
    const std::string& list = site.list;
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
    EXPECT_TRUE(Dropped().empty());
    temp.Remove("Classes.zep");
    SelectTeacher(nullptr);
  }
}

TEST_F(LayoutTest, TheRootMayComeInAnySpelling) {
  Build(Kind::kTeachers);
  for (const char* ending : {"", "/", "\\", "//", "/Classes.zep/.."}) {
    SetRoot(temp.Path() + ending);
    EXPECT_EQ(Classes().substr(0, 7), "folder ") << ending;
    EXPECT_TRUE(spec.Down("Room12") && spec.Exists()) << ending;
  }
}

// The extension is the registered game type's; what was formed before it came does not stick.
TEST(ClassesNameTest, FollowsATypeThatIsRegisteredLater) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        const bool plain = ClassesName() == "Classes";
        RegisterFileType(kFileTypeGame, "Game File|Game Files|zep|Game|1");
        const bool joined = ClassesName() == "Classes.zep";
        std::exit(plain && joined ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(LayoutTest, AFolderOfThePlainStemIsNotLookedAt) {
  UseSite(Kind::kLocal);
  temp.MakeFolder("Classes/Room12/Students");
  EXPECT_EQ(Classes(), "none Classes.zep");
}

// Each is a round trip to a file server.
TEST_F(LayoutTest, PlacingCostsOneLookAndTheCountOfTheClassList) {
  Build(Kind::kTeachers);
  Classes();
  kivtest::FaultFileServices services(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &services);
  temp.Remove("Classes.zep/MsHill/Classes.zep/Room12/Students/AnnLee/options.kiv");
  const struct {
    const char* what;
    std::function<void()> place;
    int looks, opens;
  } cases[] = {{"teachers", [&] { TeachersFolder(spec); }, 1, 0},
               {"teacher", [&] { TeacherFolder(spec, gCurrentTeacher); }, 1, 0},
               {"classes", [&] { Classes(); }, 2, 2},
               {"students", [&] { Students(room); }, 3, 2},
               {"student", [&] { Folder(&room, &ann, false); }, 3, 2},
               {"options of all", [&] { Options(nullptr, nullptr); }, 3, 2},
               {"options of a class", [&] { Options(&room, nullptr); }, 3, 2},
               {"missing options of a student", [&] { Options(&room, &ann); }, 3, 2}};
  for (const auto& c : cases) {
    services.ClearLog();
    c.place();
    EXPECT_EQ(services.CountOf("Attributes"), c.looks) << c.what;
    EXPECT_EQ(services.CountOf("OpenRead") + services.CountOf("OpenAlone"), c.opens) << c.what;
    EXPECT_EQ(services.CountOf("Walk"), 0) << c.what;
  }
}

TEST_F(LayoutTest, TheFirstTeacherStandsInWhereNoneIsSelected) {
  UseSite(Kind::kTeachers);
  StoreBuilder store(temp.Path(), Kind::kTeachers);
  store.AddTeacher("Aaron", "Zed");
  store.AddTeacher("Zoe", "Abe");
  store.Finish();
  Classes();
  EXPECT_EQ(Place(spec), "Classes.zep/Abe/Classes.zep/");
  ASSERT_NE(gCurrentTeacher, nullptr);
  EXPECT_EQ(gCurrentTeacher->firstName, "Zoe");
}

TEST_F(LayoutTest, AFailedRootIsReportedOnceForTheProcess) {
  UseSite(Kind::kLocal);
  const std::string missing = temp.Path("nowhere");
  SetRoot(missing);
  EXPECT_EQ(Classes(), "none nowhere");
  EXPECT_TRUE(gStoreFailed);
  ASSERT_EQ(Dropped().size(), 3u);
  EXPECT_EQ(Dropped()[0].rfind("Unable to access the data files located in " + missing +
                                   ".  Make sure you are connected",
                               0),
            0u);
  EXPECT_EQ(Lines(Dropped().begin() + 1, Dropped().end()), Lines({"Quit", "&Retry"}));
  Classes();
  EXPECT_EQ(Dropped().size(), 3u);
  EXPECT_FALSE(ReportStoreFailure(Text(missing), false));
}

TEST_F(LayoutTest, ARootThatIsNoFolderLeadsNowhere) {
  temp.WriteFile("plain", "");
  for (const Kind kind : {Kind::kLocal, Kind::kTeachers}) {
    UseSite(kind);
    for (const std::string& root : {std::string(), temp.Path("plain"), std::string(32000, 'x')}) {
      SetRoot(root);
      SelectTeacher(nullptr);
      Teachers();
      EXPECT_FALSE(spec.IsExistingFolder()) << root.substr(0, 40);
      Options(&room, &ann);
      EXPECT_FALSE(spec.Exists()) << root.substr(0, 40);
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
}

TEST_F(LayoutTest, RemovableDataThatIsNotThereEndsBeforeTheClass) {
  UseSite(Kind::kLocal);
  StudentsFolder(spec, room, true);
  EXPECT_EQ(PlaceAndKind(spec), "none Classes.zep");
  EXPECT_EQ(Dropped().size(), 2u);
}

TEST_F(LayoutTest, ServicesThatMakeNothingLeaveAHoleOpen) {
  Build(Kind::kTeachers);
  SelectTeacher(nullptr);
  Classes();
  temp.Remove("Classes.zep/MsHill/Classes.zep/Room12/Students");
  const auto before = Snapshot();
  const std::string list = "Classes.zep/MsHill/Classes.zep/";
  EXPECT_EQ(Students(room), "none " + list + "Room12/Students");
  EXPECT_TRUE(gStoreFailed);
  EXPECT_EQ(Folder(&room, &ann, true), "none " + list + "Room12/Students");
  EXPECT_EQ(Folder(&gone, nullptr, true), "none " + list + "Gone");
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
  temp.Remove("Classes.zep/MsHill");
  EXPECT_EQ(Classes(), "none Classes.zep/MsHill");
  EXPECT_EQ(Folder(&room, &ann, true), "none Classes.zep/MsHill");
}

TEST_F(LayoutTest, ServicesThatCreateFillTheHoles) {
  const kivtest::CreatingScope creating;
  UseSite(Kind::kTeachers);
  const SLoginNameObj hill = Entry("MsHill", "Ms Hill");
  TeacherFolder(spec, &hill);
  EXPECT_EQ(PlaceAndKind(spec), "folder Classes.zep/MsHill/");
  SelectTeacher(&hill);
  EXPECT_EQ(Classes(), "folder Classes.zep/MsHill/Classes.zep/");
  EXPECT_EQ(Folder(&room, nullptr, true), "folder Classes.zep/MsHill/Classes.zep/Room12/");
  EXPECT_EQ(Folder(&room, &ann, false),
            "none Classes.zep/MsHill/Classes.zep/Room12/Students/AnnLee");
  EXPECT_EQ(Folder(&room, &ann, true),
            "folder Classes.zep/MsHill/Classes.zep/Room12/Students/AnnLee/");
  TopScoreFile(spec, nullptr, nullptr);
  EXPECT_EQ(PlaceAndKind(spec), "file Classes.zep/MsHill/Classes.zep/topScore.kiv");
  EXPECT_FALSE(gStoreFailed);
}

TEST_F(LayoutTest, NoEntryLeadsOutOfItsListFolder) {
  const kivtest::CreatingScope creating;
  Build(Kind::kLocal);
  temp.WriteFile("options.kiv", "outside");
  temp.WriteFile("Classes.zep/Room12/Students/options.kiv", "of nobody");
  temp.MakeFolder("Students");
  const auto before = Snapshot();
  for (const char* name : {"", ".", "..", "...", ". .", "..\\..", "../..", "Room12\\..", "/",
                           "Room12/Students", "\\"}) {
    const SLoginNameObj hostile = Entry(name, "Hostile");
    EXPECT_EQ(Students(hostile), "none -") << name;
    EXPECT_EQ(Folder(&hostile, nullptr, true), "none -") << name;
    EXPECT_EQ(Folder(&room, &hostile, true), "none -") << name;
    EXPECT_EQ(Options(&hostile, nullptr), "none -") << name;
    EXPECT_EQ(Options(&room, &hostile), "none -") << name;
    UseSite(Kind::kTeachers);
    TeacherFolder(spec, &hostile);
    EXPECT_EQ(PlaceAndKind(spec), "none -") << name;
    UseSite(Kind::kLocal);
  }
  EXPECT_EQ(Changes(before, Snapshot()), Lines());
}

class DefaultEntriesTest : public LayoutTest {
 protected:
  void BuildEmpty(Kind kind) {
    UseSite(kind);
    StoreBuilder(temp.Path(), kind).Finish();
  }
};

const char* const kNoClass = "Unable to add the class Default because the class folder located in ";

TEST_F(DefaultEntriesTest, AnEmptyListGetsTheDefaultClass) {
  const kivtest::CreatingScope creating;
  for (const Kind kind : {Kind::kLocal, Kind::kShared}) {
    BuildEmpty(kind);
    EXPECT_EQ(Classes(), "folder Classes.zep/");
    EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"), IndexBytes({{"Default", "Default", ""}}));
    EXPECT_EQ(temp.ReadFile("Classes.zep/Default/longname.kiv"), std::string("Default\0\0", 9));
    EXPECT_TRUE(temp.Exists("Classes.zep/Default/Students"));
    EXPECT_TRUE(Dropped().empty());
    temp.Remove("Classes.zep");
  }
}

TEST_F(DefaultEntriesTest, WithoutMakersTheEntryStaysAndTheFailureIsReported) {
  BuildEmpty(Kind::kShared);
  EXPECT_EQ(Classes(), "folder Classes.zep/");
  EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"), IndexBytes({{"Default", "Default", ""}}));
  EXPECT_FALSE(temp.Exists("Classes.zep/Default"));
  EXPECT_TRUE(gStoreFailed);
  ASSERT_EQ(Dropped().size(), 4u);
  EXPECT_EQ(Dropped()[0].rfind(kNoClass, 0), 0u) << Dropped()[0];
}

TEST_F(DefaultEntriesTest, AListIsLeftAloneWhereItMayHaveEntries) {
  const kivtest::CreatingScope creating;
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

TEST_F(DefaultEntriesTest, ALostClassFolderComesBackUnderItsName) {
  const kivtest::CreatingScope creating;
  Build(Kind::kShared);
  const SLoginNameObj lost = Entry("Lost", "Room 7");
  EXPECT_EQ(Students(lost), "folder Classes.zep/Room7/Students/");
  EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"),
            IndexBytes({{"Room12", "Room 12", ""}, {"Room7", "Room 7", ""}}));
  EXPECT_FALSE(gStoreFailed);
}

TEST_F(DefaultEntriesTest, WithoutMakersALostClassLeadsToStudentsUnderTheList) {
  Build(Kind::kShared);
  EXPECT_EQ(Students(Entry("Lost", "Room 7")), "none Classes.zep/Students");
  EXPECT_TRUE(gStoreFailed);
}

TEST_F(DefaultEntriesTest, AStoreWithoutTeachersGetsTheDefaultTeacher) {
  BuildEmpty(Kind::kTeachers);
  EXPECT_EQ(Classes(), "none Classes.zep/TDefault");
  ASSERT_NE(gCurrentTeacher, nullptr);
  EXPECT_EQ(gCurrentTeacher->folderName, "TDefault");

  SelectTeacher(nullptr);
  BuildEmpty(Kind::kTeachers);
  const kivtest::CreatingScope creating;
  EXPECT_EQ(Classes(), "folder Classes.zep/TDefault/Classes.zep/");
  EXPECT_EQ(temp.ReadFile("Classes.zep/index.kiv"), IndexBytes({{"TDefault", "TDefault", ""}}));
  EXPECT_TRUE(temp.Exists("Classes.zep/TDefault/Classes.zep/Default/Students"));
}

TEST_F(DefaultEntriesTest, TeachersWhoseFoldersAreAllGoneLeadNowhere) {
  UseSite(Kind::kTeachers);
  StoreBuilder store(temp.Path(), Kind::kTeachers);
  const std::string hill = store.AddTeacher("Ms Hill", "MsHill");
  store.Finish();
  store.RemoveFolder(hill);
  const kivtest::CreatingScope creating;
  EXPECT_EQ(Classes(), "none -");
  EXPECT_EQ(temp.List("Classes.zep"), Lines({"index.kiv", "index.lok"}));
}

}  // namespace
