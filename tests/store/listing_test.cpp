#include "store/list/listing.h"

#include "store/place/layout.h"
#include "tests/store/store_fixture.h"
#include "tests/support/fault_file_services.h"

using namespace kivstore;
using namespace kivtest;

namespace {

class ListingTest : public StoreFixture {
 protected:
  // Entries stand in the index in another order than by folder.
  StoreBuilder Build(Kind kind) {
    UseSite(kind);
    StoreBuilder store(temp.Path(), kind);
    std::string teacher;
    if (kind == Kind::kTeachers) {
      store.AddTeacher("Ms Young", "Zyoung");
      teacher = store.AddTeacher("Ms Hill", "aHill");
      SelectTeacher(&hill);
    }
    store.AddClass(teacher, "Attic", "Room9");
    const std::string folder = store.AddClass(teacher, "Room 12", "room12");
    store.AddStudent(folder, "Zoe", "", "A");
    store.AddStudent(folder, "Ann", "Lee", "c");
    store.AddStudent(folder, "Bob", "Ray", "B");
    store.Finish();
    return store;
  }
  static Lines Teachers() {
    SLoginList list;
    LoadTeacherList(list.Array());
    return Described(list.Array());
  }
  static Lines Classes(bool lockIt = true) {
    SLoginList list;
    LoadClassList(list.Array(), lockIt);
    return Described(list.Array());
  }
  Lines Students(bool reconcile = true, bool lockIt = true) const {
    SLoginList list;
    LoadStudentList(list.Array(), room, reconcile, lockIt);
    return Described(list.Array());
  }
  Lines Files(const SLoginNameObj* student, const char* extension, bool lockIt) const {
    SPtrArray list;
    SFileSpec spec;
    EntryFolder(spec, &room, student, false, false);
    if (lockIt) {
      LoadFileListAt(list, spec, extension, true);
    } else {
      LoadFileList(list, &room, student, extension, false);
    }
    Lines lines;
    for (int32_t i = 0; i < list.GetSize(); ++i) {
      const SOurFileObj& file = *FileIn(list, i);
      lines.push_back(Bytes(file.fileName + ":" + file.longName + ":" + file.extension));
    }
    DeleteFiles(list);
    return lines;
  }

  const SLoginNameObj hill = Entry("aHill", "Ms Hill");
  const SLoginNameObj room = Entry("room12", "Room 12");
  const SLoginNameObj zoe = Entry("A", "Zoe");
};

TEST_F(ListingTest, AStoreInOrderIsListedByFolderAndNotTouched) {
  for (const Kind kind : {Kind::kLocal, Kind::kShared, Kind::kTeachers}) {
    const StoreBuilder store = Build(kind);
    const auto before = store.Snapshot();
    if (kind == Kind::kTeachers) {
      EXPECT_EQ(Teachers(), Lines({"aHill:Ms Hill:", "Zyoung:Ms Young:"}));
    }
    EXPECT_EQ(Classes(), Lines({"room12:Room 12:", "Room9:Attic:"}));
    EXPECT_EQ(Students(), Lines({"A:Zoe:", "B:Bob:Ray", "c:Ann:Lee"}));
    EXPECT_EQ(Changes(before, store.Snapshot()), Lines());
    temp.Remove("Classes.zep");
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

TEST_F(ListingTest, ALockedListIsEmptyAndItsCountIsZero) {
  Build(Kind::kTeachers);
  const Holder top(Spec("Classes.zep/index.lok"));
  EXPECT_EQ(Teachers(), Lines());
  EXPECT_EQ(CountTeachers(), 0);
  EXPECT_EQ(Classes().size(), 2u);
  const Holder list(Spec("Classes.zep/aHill/Classes.zep/index.lok"));
  EXPECT_EQ(Classes(), Lines());
  EXPECT_EQ(Classes(false).size(), 2u);
  EXPECT_EQ(CountEntries(nullptr, false), 0);
  EXPECT_EQ(Students().size(), 3u);
  const Holder inside(Spec("Classes.zep/aHill/Classes.zep/room12/Students/index.lok"));
  EXPECT_EQ(Students(), Lines());
  EXPECT_EQ(Students(true, false).size(), 3u);
  EXPECT_EQ(CountEntries(&room, false), 0);
}

TEST_F(ListingTest, CountsAreTheIndexsOwn) {
  const StoreBuilder store = Build(Kind::kTeachers);
  store.RemoveFolder("Classes.zep/Zyoung");
  EXPECT_EQ(CountTeachers(), 2);
  EXPECT_EQ(CountEntries(nullptr, true), 2);
  EXPECT_EQ(CountEntries(&room, false), 3);
  EXPECT_EQ(CountEntries(&room, true), 2);
  store.RemoveFolder("Classes.zep/aHill/Classes.zep/room12/Students");
  EXPECT_EQ(CountEntries(&room, false), 0);
  EXPECT_EQ(Teachers().size(), 1u);
  EXPECT_EQ(CountTeachers(), 1);
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
  const auto repaired = store.Snapshot();
  EXPECT_EQ(Files(&zoe, "Zep", false), games);
  EXPECT_EQ(Changes(repaired, store.Snapshot()), Lines());

  const Holder other(Spec(folder + "/index.lok"));
  EXPECT_EQ(Files(&zoe, "zep", true), Lines());
  EXPECT_EQ(Files(&zoe, "zep", false), games);
}

TEST_F(ListingTest, FilesOfAClassLieAmongItsStudents) {
  Build(Kind::kLocal).WriteFile("Classes.zep/room12/Students/class.zep", "");
  EXPECT_EQ(Files(nullptr, "zep", false), Lines({"class.zep:class:zep"}));
}

// Each is a round trip to a file server; a listing's do not grow with its entries.
TEST_F(ListingTest, AListingIsALockAnIndexAndAWalk) {
  Build(Kind::kTeachers);
  FaultFileServices services(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &services);
  Students();
  EXPECT_EQ(services.CountOf("Attributes"), 4);
  EXPECT_EQ(services.CountOf("OpenAlone"), 2);
  EXPECT_EQ(services.CountOf("OpenRead"), 2);
  EXPECT_EQ(services.CountOf("Walk"), 1);
}

}  // namespace
