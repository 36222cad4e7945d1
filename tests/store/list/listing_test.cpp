#include "store/list/listing.h"

#include "store/place/placing.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/site_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

class ListingTest : public SiteFixture {
 protected:
  // Entries stand in the index in another order than by folder.
  StoreBuilder Build(Kind kind) {
    UseSite(kind);
    temp.Remove("Classes.zep");
    StoreBuilder store(temp.Path(), kind);
    std::string teacher;
    if (kind == Kind::kTeachers) {
      store.AddTeacher("Ms Young", "Zyoung");
      teacher = store.AddTeacher("Ms Hill", "aHill");
      site.SelectTeacher(&hill);
    }
    store.AddClass(teacher, "Attic", "Room9");
    const std::string folder = store.AddClass(teacher, "Room 12", "room12");
    store.AddStudent(folder, "Zoe", "", "A");
    store.AddStudent(folder, "Ann", "Lee", "c");
    store.AddStudent(folder, "Bob", "Ray", "B");
    store.Finish();
    return store;
  }
  Lines Teachers() {
    SLoginList list;
    LoadTeacherList(site, list);
    return Described(list);
  }
  Lines Classes(bool lockIt = true) {
    SLoginList list;
    LoadClassList(site, list, lockIt);
    return Described(list);
  }
  Lines Students(bool reconcile = true, bool lockIt = true) {
    SLoginList list;
    LoadStudentList(site, list, room, reconcile, lockIt);
    return Described(list);
  }
  Lines Files(const SLoginNameObj* student, const char* extension, bool lockIt) {
    SFileList list;
    SFileSpec spec;
    EntryFolder(site, spec, &room, student);
    if (lockIt) {
      LoadFileListAt(site, list, spec, extension, true);
    } else {
      LoadFileList(site, list, &room, student, extension);
    }
    Lines lines;
    for (const SOurFileObj& file : list) {
      lines.push_back(Bytes(file.fileName + ":" + file.longName + ":" + file.extension));
    }
    return lines;
  }

  const SLoginNameObj hill = Entry("aHill", "Ms Hill");
  const SLoginNameObj room = Entry("room12", "Room 12");
  const SLoginNameObj zoe = Entry("A", "Zoe");
};

TEST_F(ListingTest, AStoreInOrderIsListedByFolderAndNotTouched) {
  for (const Kind kind : {Kind::kLocal, Kind::kShared, Kind::kTeachers}) {
    Build(kind);
    const auto before = Snapshot();
    if (kind == Kind::kTeachers) {
      EXPECT_EQ(Teachers(), Lines({"aHill:Ms Hill:", "Zyoung:Ms Young:"}));
    }
    EXPECT_EQ(Classes(), Lines({"room12:Room 12:", "Room9:Attic:"}));
    EXPECT_EQ(Students(), Lines({"A:Zoe:", "B:Bob:Ray", "c:Ann:Lee"}));
    EXPECT_EQ(Changes(before, Snapshot()), Lines());
  }
}

TEST_F(ListingTest, AReadableIndexIsTrustedWhereNobodyAsksForMore) {
  const StoreBuilder store = Build(Kind::kShared);
  store.RemoveFolder("Classes.zep/room12/Students/B");
  FaultFileServices services(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &services);
  EXPECT_EQ(Students(false), Lines({"A:Zoe:", "c:Ann:Lee", "B:Bob:Ray"}));
  EXPECT_EQ(services.CountOf("Walk"), 0);
  store.RemoveFile("Classes.zep/room12/Students/index.kiv");
  EXPECT_EQ(Students(false), Lines({"c:Ann:Lee", "A:Zoe:"}));
}

// The caller's list stays as it was; the reason is noted.
TEST_F(ListingTest, AListThatIsLockedOrGoneIsNotGivenAndItsCountIsZero) {
  const StoreBuilder store = Build(Kind::kTeachers);
  const std::string list = "Classes.zep/aHill/Classes.zep/";
  {
    const Holder top(Spec("Classes.zep/index.lok"));
    EXPECT_EQ(Teachers(), Lines());
    EXPECT_EQ(Why(), "locked teachers Classes.zep/index.lok");
    EXPECT_EQ(CountTeachers(site), 0);
    EXPECT_EQ(Why(), "locked classes Classes.zep/index.lok");
    EXPECT_EQ(Classes().size(), 2u);
    const Holder classes(Spec(list + "index.lok"));
    EXPECT_EQ(Classes(), Lines());
    EXPECT_EQ(Why(), "locked classes " + list + "index.lok");
    EXPECT_EQ(Classes(false).size(), 2u);
    EXPECT_EQ(CountEntries(site, nullptr), 0);
    EXPECT_EQ(Students().size(), 3u);
    const Holder inside(Spec(list + "room12/Students/index.lok"));
    Why();
    SLoginList before;
    before.Add(std::make_unique<SLoginNameObj>(zoe));
    LoadStudentList(site, before, room, true, true);
    EXPECT_EQ(Described(before), Lines({"A:Zoe:"}));
    EXPECT_EQ(Why(), "locked students " + list + "room12/Students/index.lok");
    EXPECT_EQ(Students(true, false).size(), 3u);
    EXPECT_EQ(CountEntries(site, &room), 0);
  }
  Why();
  store.RemoveFolder(list + "room12");
  EXPECT_EQ(Students(), Lines());
  EXPECT_EQ(Why(), "missing students " + list + "room12");
}

TEST_F(ListingTest, CountsAreTheIndexsOwn) {
  const StoreBuilder store = Build(Kind::kTeachers);
  store.RemoveFolder("Classes.zep/Zyoung");
  EXPECT_EQ(CountTeachers(site), 2);
  EXPECT_EQ(CountEntries(site, nullptr), 2);
  EXPECT_EQ(CountEntries(site, &room), 3);
  store.RemoveFolder("Classes.zep/aHill/Classes.zep/room12/Students");
  EXPECT_EQ(CountEntries(site, &room), 0);
  EXPECT_EQ(Teachers().size(), 1u);
  EXPECT_EQ(CountTeachers(site), 1);
}

TEST_F(ListingTest, FilesAreThoseOfOneExtension) {
  StoreBuilder store = Build(Kind::kShared);
  const std::string folder = "Classes.zep/room12/Students/A";
  store.AddFileLine(folder, {"gone.zep", "Gone", "zep"});
  store.AddFileLine(folder, {"note.txt", "Note", "txt"});
  store.AddFileLine(folder, {"B.ZEP", "My game", "ZEP"});
  store.Finish();
  for (const char* file : {"b.zep", "auto.game.zep", "other.txt", "zep", ".zep"}) {
    store.WriteFile(folder + "/" + file, "");
  }
  const Lines games = {"auto.game.zep:auto.game:zep", "B.ZEP:My game:ZEP"};
  EXPECT_EQ(Files(&zoe, "zep", true), games);
  EXPECT_EQ(temp.ReadFile(folder + "/index.kiv"),
            IndexBytes({}, {{"auto.game.zep", "auto.game", "zep"},
                            {"B.ZEP", "My game", "ZEP"},
                            {"note.txt", "Note", "txt"}}));
  {
    FaultFileServices services(*Platform().files);
    const SPlatformOverride<IFileServices> installed(Platform().files, &services);
    EXPECT_EQ(Files(&zoe, "Zep", false), games);
    EXPECT_EQ(services.CountOf("Write"), 0);
  }
  const Holder other(Spec(folder + "/index.lok"));
  EXPECT_EQ(Files(&zoe, "zep", true), Lines());
  EXPECT_EQ(Why(), "locked files " + folder + "/index.lok");
  EXPECT_EQ(Files(&zoe, "zep", false), games);
  // Those of a class lie among its students; a name of three characters is none.
  store.WriteFile("Classes.zep/room12/Students/class.zep", "");
  store.WriteFile("Classes.zep/room12/Students/a.z", "");
  EXPECT_EQ(Files(nullptr, "zep", false), Lines({"class.zep:class:zep"}));
  EXPECT_EQ(Files(nullptr, "z", false), Lines());
}

// Each is a round trip to a file server; a listing's do not grow with its entries.
TEST_F(ListingTest, AListingIsALookALockAnIndexAndAWalk) {
  Build(Kind::kTeachers);
  FaultFileServices services(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &services);
  Students();
  EXPECT_EQ(services.CountOf("Attributes"), 1);
  EXPECT_EQ(services.CountOf("OpenAlone"), 1);
  EXPECT_EQ(services.CountOf("OpenRead"), 1);
  EXPECT_EQ(services.CountOf("Walk"), 1);
}

}  // namespace
