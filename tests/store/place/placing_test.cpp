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
  template <class... Way>
  std::string At(void (*place)(const SSite&, SFileSpec&, Way...),
                 std::type_identity_t<Way>... way) const {
    SFileSpec spec = stale;
    place(site, spec, way...);
    return PlaceAndKind(spec);
  }
  // Every place of one class and student, in the order of the header.
  Lines Places(const SLoginNameObj& entry, const SLoginNameObj& student) const {
    const auto classes = [](const SSite& site, SFileSpec& spec) { ClassesFolder(site, spec); };
    const auto folder = [](const SSite& site, SFileSpec& spec, const SLoginNameObj* entry,
                           const SLoginNameObj* student) {
      EntryFolder(site, spec, entry, student);
    };
    return {At(TeachersFolder),
            At(+classes),
            At(StudentsFolder, entry),
            At(SharedFolder, entry),
            At(+folder, nullptr, &student),
            At(+folder, &entry, nullptr),
            At(+folder, &entry, &student),
            At(EntryFile, &entry, &student, "a.zep"),
            At(OptionsFile, nullptr, &student),
            At(OptionsFile, &entry, nullptr),
            At(OptionsFile, &entry, &student),
            At(TopScoreFile, &entry, &student)};
  }

  const SFileSpec stale = Spec("Classes.zep");
  const SLoginNameObj hill = Entry("MsHill", "Ms Hill"), room = Entry("Room12", "Room 12");
  const SLoginNameObj ann = Entry("AnnLee", "Ann", "Lee"), nobody{};
  FaultFileServices services{*Platform().files};
  const SPlatformOverride<IFileServices> installed{Platform().files, &services};
};

TEST_F(PlacingTest, EveryPlaceIsOneLookOnEveryKindOfSite) {
  for (const Kind kind : {Kind::kLocal, Kind::kShared, Kind::kTeachers}) {
    Build(kind);
    const std::string list =
        kind == Kind::kTeachers ? "Classes.zep/MsHill/Classes.zep/" : "Classes.zep/";
    const std::string student = list + "Room12/Students/AnnLee/";
    services.ClearLog();
    EXPECT_EQ(Places(room, ann),
              Lines({"folder Classes.zep/", "folder " + list, "folder " + list + "Room12/Students/",
                     "folder " + list + "Room12/Shared/", "folder " + list,
                     "folder " + list + "Room12/", "folder " + student, "none " + student + "a.zep",
                     "file " + list + "options.kiv", "file " + list + "Room12/options.kiv",
                     "file " + student + "options.kiv", "none " + student + "topScore.kiv"}));
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
  EXPECT_TRUE(DownToClasses(spec) && DownToEntry(spec, room));
  EXPECT_EQ(PlaceAndKind(spec), "folder Classes.zep/MsHill/Classes.zep/Room12/");
  EXPECT_FALSE(DownToEntry(spec, Entry("..", "Up")));
  EXPECT_EQ(PlaceAndKind(spec), "-");
}

TEST_F(PlacingTest, AWayThatBreaksOffStaysOnTheFirstNameThatIsMissing) {
  const std::string list = "Classes.zep/MsHill/Classes.zep";
  for (const std::string& missing :
       {list + "/Room12/Students/AnnLee", list + "/Room12/Students", list + "/Room12", list,
        std::string("Classes.zep/MsHill"), std::string("Classes.zep")}) {
    Build(Kind::kTeachers);
    temp.Remove(missing);
    EXPECT_EQ(At(OptionsFile, &room, &ann), "none " + missing);
    temp.WriteFile(missing, "a file in the way");
    EXPECT_EQ(At(OptionsFile, &room, &ann), "-");
  }
}

TEST_F(PlacingTest, NobodySelectedOrNoNameLeadsNowhere) {
  Build(Kind::kTeachers);
  site.SelectTeacher(nullptr);
  Lines nowhere(12, "-");
  nowhere[0] = "folder Classes.zep/";
  EXPECT_EQ(Places(room, ann), nowhere);
  Build(Kind::kLocal);  // nobody: the students' folder
  EXPECT_EQ(Places(room, nobody)[6], "folder Classes.zep/Room12/Students/");
  EXPECT_EQ(Places(room, nobody)[7], "none Classes.zep/Room12/Students/a.zep");
}

TEST_F(PlacingTest, ARootThatIsNoFolderLeadsNowhere) {
  temp.WriteFile("plain", "");
  for (const std::string& root :
       {std::string(), temp.Path("plain"), temp.Path("none"), std::string(32000, 'x')}) {
    for (const Kind kind : {Kind::kLocal, Kind::kTeachers}) {
      UseSite(kind);
      owner.root = root;
      site.SelectTeacher(&hill);
      const std::string place = At(OptionsFile, &room, &ann);
      EXPECT_TRUE(place == "-" || place.starts_with("none ")) << place.substr(0, 40);
    }
  }
  temp.MakeFolder("r");
  owner.root = temp.Path("r");
  UseSite(Kind::kLocal);
  EXPECT_EQ(Places(room, ann)[1], "none r/Classes.zep");
}

TEST_F(PlacingTest, NoEntryLeadsOutOfItsListFolder) {
  Build(Kind::kTeachers);
  temp.MakeFolder("Students");
  for (const char* name :
       {"", ".", "..", "...", ". .", "..\\..", "../..", "Room12\\..", "/", "Room12/Students"}) {
    const SLoginNameObj hostile = Entry(name, "Hostile");
    EXPECT_EQ(At(TeacherFolder, hostile), "-") << name;
    EXPECT_EQ(At(StudentsFolder, hostile), "-") << name;
    EXPECT_EQ(Places(hostile, ann)[6], "-") << name;
    EXPECT_TRUE(*name == '\0' || Places(room, hostile)[7] == "-") << name;
    site.SelectTeacher(&hostile);
    EXPECT_EQ(Places(room, ann)[1], "-") << name;
    site.SelectTeacher(&hill);
  }
}

}  // namespace
