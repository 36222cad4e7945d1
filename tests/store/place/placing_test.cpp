#include "store/place/placing.h"

#include "tests/support/fault_file_services.h"
#include "tests/support/site_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

// Whatever is placed: nothing is asked of the disk but what is there.
class PlacingTest : public SiteFixture {
 protected:
  ~PlacingTest() override {
    for (const FileCall& call : services.Log()) {
      EXPECT_EQ(call.operation, "Attributes") << call.path;
    }
    EXPECT_FALSE(site.GetFailure());
    EXPECT_EQ(owner.heard, Lines());
  }
  // One teacher (where the kind has them), one class, one student.
  void Build(Kind kind) {
    UseSite(kind);
    temp.Remove("Classes.zep");
    StoreBuilder store(temp.Path(), kind);
    const bool tier = kind == Kind::kTeachers;
    const std::string teacher = tier ? store.AddTeacher("Ms Hill", "MsHill") : "";
    const std::string room12 = store.AddClass(teacher, "Room 12", "Room12");
    const std::string annLee = store.AddStudent(room12, "Ann", "Lee", "AnnLee");
    for (const std::string& place : {StoreBuilder::ClassList(teacher), room12, annLee}) {
      store.WriteOptions(place, OptionsBytes());
    }
    store.Finish();
    site.SelectTeacher(tier ? &hill : nullptr);
  }
  // Every place of one class and student, in the order of the header.
  Lines Places(const SLoginNameObj& entry, const SLoginNameObj& student) {
    Lines places;
    SFileSpec spec;
    const auto note = [&] { places.push_back(PlaceAndKind(spec)); };
    TeachersFolder(site, spec), note();
    ClassesFolder(site, spec), note();
    StudentsFolder(site, spec, entry), note();
    SharedFolder(site, spec, entry), note();
    EntryFolder(site, spec, nullptr, &student), note();
    EntryFolder(site, spec, &entry, nullptr), note();
    EntryFolder(site, spec, &entry, &student), note();
    EntryFile(site, spec, &entry, &student, "a.zep"), note();
    OptionsFile(site, spec, nullptr, &student), note();
    OptionsFile(site, spec, &entry, nullptr), note();
    OptionsFile(site, spec, &entry, &student), note();
    TopScoreFile(site, spec, &entry, &student), note();
    return places;
  }

  const SLoginNameObj hill = Entry("MsHill", "Ms Hill"), room = Entry("Room12", "Room 12");
  const SLoginNameObj ann = Entry("AnnLee", "Ann", "Lee"), nobody;
  FaultFileServices services{*Platform().files};
  const SPlatformOverride<IFileServices> installed{Platform().files, &services};
};

TEST_F(PlacingTest, EveryPlaceIsOneLookOnEveryKindOfSite) {
  for (const Kind kind : {Kind::kLocal, Kind::kShared, Kind::kTeachers}) {
    Build(kind);
    const std::string list =
        kind == Kind::kTeachers ? "Classes.zep/MsHill/Classes.zep/" : "Classes.zep/";
    const std::string student = list + "Room12/Students/AnnLee/";
    const Lines expected = {"folder Classes.zep/",
                            "folder " + list,
                            "folder " + list + "Room12/Students/",
                            "folder " + list + "Room12/Shared/",
                            "folder " + list,
                            "folder " + list + "Room12/",
                            "folder " + student,
                            "none " + student + "a.zep",
                            "file " + list + "options.kiv",
                            "file " + list + "Room12/options.kiv",
                            "file " + student + "options.kiv",
                            "none " + student + "topScore.kiv"};
    services.ClearLog();
    EXPECT_EQ(Places(room, ann), expected);
    EXPECT_EQ(services.Count(), 12);
    for (const char* const ending : {"/", "\\", "//", "\\\\", "/Classes.zep/.."}) {
      owner.root = temp.Path() + ending;
      SFileSpec spec;
      ClassesFolder(site, spec);
      EXPECT_TRUE(spec.IsExistingFolder() && spec.Down("Room12") && spec.Exists()) << ending;
    }
    owner.root = temp.Path();
  }
  SFileSpec spec;
  TeacherFolder(site, spec, hill);
  EXPECT_EQ(PlaceAndKind(spec), "folder Classes.zep/MsHill/");
  EXPECT_TRUE(DownToClasses(spec));
  EXPECT_EQ(PlaceAndKind(spec), "folder Classes.zep/MsHill/Classes.zep/");
  EXPECT_TRUE(DownToEntry(spec, room));
  EXPECT_EQ(PlaceAndKind(spec), "folder Classes.zep/MsHill/Classes.zep/Room12/");
  EXPECT_FALSE(DownToEntry(spec, Entry("..", "Up")));
  EXPECT_EQ(PlaceAndKind(spec), "-");
}

TEST_F(PlacingTest, AWayThatBreaksOffStaysOnTheFirstNameThatIsMissing) {
  const std::string list = "Classes.zep/MsHill/Classes.zep/";
  const struct {
    std::string missing;
    std::string file;  // stands in its place
  } cases[] = {{list + "Room12/Students/AnnLee", ""},
               {list + "Room12/Students", ""},
               {list + "Room12/Students", "file"},
               {list + "Room12", ""},
               {"Classes.zep/MsHill/Classes.zep", ""},
               {"Classes.zep/MsHill", ""},
               {"Classes.zep", ""},
               {"Classes.zep", "file"}};
  for (const auto& c : cases) {
    Build(Kind::kTeachers);
    temp.Remove(c.missing);
    if (!c.file.empty()) {
      temp.WriteFile(c.missing, "a file in the way");
    }
    SFileSpec spec;
    OptionsFile(site, spec, &room, &ann);
    EXPECT_EQ(PlaceAndKind(spec), c.file.empty() ? "none " + c.missing : "-");
  }
}

TEST_F(PlacingTest, NobodySelectedOrNoNameLeadsNowhere) {
  Build(Kind::kTeachers);
  site.SelectTeacher(nullptr);
  EXPECT_EQ(Places(room, ann), [] {
    Lines lines(12, "-");
    lines[0] = "folder Classes.zep/";
    return lines;
  }());
  Build(Kind::kLocal);
  SFileSpec spec;
  EntryFolder(site, spec, &room, &nobody);  // nobody: the students' folder
  EXPECT_EQ(PlaceAndKind(spec), "folder Classes.zep/Room12/Students/");
  EntryFile(site, spec, &room, &nobody, "last.kiv");
  EXPECT_EQ(PlaceAndKind(spec), "none Classes.zep/Room12/Students/last.kiv");
}

TEST_F(PlacingTest, ARootThatIsNoFolderLeadsNowhere) {
  temp.WriteFile("plain", "");
  for (const std::string& root :
       {std::string(), temp.Path("plain"), temp.Path("none"), std::string(32000, 'x')}) {
    for (const Kind kind : {Kind::kLocal, Kind::kTeachers}) {
      UseSite(kind);
      owner.root = root;
      site.SelectTeacher(&hill);
      SFileSpec spec;
      OptionsFile(site, spec, &room, &ann);
      EXPECT_FALSE(spec.IsExistingFile() || spec.IsExistingFolder()) << root.substr(0, 40);
    }
  }
  temp.MakeFolder("r");
  owner.root = temp.Path("r");
  UseSite(Kind::kLocal);
  SFileSpec spec;
  ClassesFolder(site, spec);
  EXPECT_EQ(PlaceAndKind(spec), "none r/Classes.zep");
}

TEST_F(PlacingTest, NoEntryLeadsOutOfItsListFolder) {
  Build(Kind::kTeachers);
  temp.MakeFolder("Students");
  for (const char* name :
       {"", ".", "..", "...", ". .", "..\\..", "../..", "Room12\\..", "/", "Room12/Students"}) {
    const SLoginNameObj hostile = Entry(name, "Hostile");
    SFileSpec spec = Spec("Classes.zep");
    TeacherFolder(site, spec, hostile);
    EXPECT_EQ(PlaceAndKind(spec), "-") << name;
    StudentsFolder(site, spec, hostile);
    EXPECT_EQ(PlaceAndKind(spec), "-") << name;
    EntryFolder(site, spec, &hostile, &ann);
    EXPECT_EQ(PlaceAndKind(spec), "-") << name;
    if (*name != '\0') {
      EntryFile(site, spec, &room, &hostile, "options.kiv");
      EXPECT_EQ(PlaceAndKind(spec), "-") << name;
    }
    site.SelectTeacher(&hostile);
    ClassesFolder(site, spec);
    EXPECT_EQ(PlaceAndKind(spec), "-") << name;
    site.SelectTeacher(&hill);
  }
}

}  // namespace
