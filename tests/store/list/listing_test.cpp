#include "store/list/listing.h"

#include "store/list/entries.h"
#include "store/place/placing.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/site_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

TEST(Entries, OfEqualNamesTheDefaultEntryComesFirst) {
  const SLoginNameObj ann("Ann", "", "Ann"), byDefault("Default", "", "DEFAULT"),
      lower("default", "", "Defaul0"), other("Default", "", "Other");
  EXPECT_LT(CompareByDisplayName(ann, byDefault), 0);
  EXPECT_LT(CompareByDisplayName(byDefault, lower), 0);
  EXPECT_GT(CompareByDisplayName(lower, byDefault), 0);
  EXPECT_EQ(CompareByDisplayName(lower, other), 0);
}

TEST(Entries, SortByFolderIgnoringCasePastEightLettersWithEqualsInOrder) {
  SLoginList logins;
  for (const char* const folder :
       {"room2", "Room", "averylongname", "AVERYLONG", "b", "B", "\xE9", ""}) {
    logins.Add(std::make_unique<SLoginNameObj>(Text(std::to_string(logins.GetSize())), "", folder));
  }
  SortByFolder(logins);
  std::string folders;
  for (const SLoginNameObj& entry : logins) {
    folders += Bytes(entry.folderName + ":" + entry.firstName) + " ";
  }
  EXPECT_EQ(folders, ":7 AVERYLONG:3 averylongname:2 b:4 B:5 Room:1 room2:0 \xE9:6 ");
  EXPECT_EQ(FindLogin(logins, {"1", "", "ROOM"}), 5);
  EXPECT_EQ(FindLogin(logins, {"1", "", "Room2"}), -1);
  EXPECT_EQ(FindLogin(logins, {"0", "", "Room"}), -1);
}

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
  // Or why not.
  Lines Told(const SLoginList& list) {
    const std::string why = Why();
    return why.empty() ? Described(list) : Lines{why};
  }
  Lines Teachers() {
    SLoginList list;
    LoadTeacherList(site, list);
    return Told(list);
  }
  Lines Classes(bool lockIt = true) {
    SLoginList list;
    LoadClassList(site, list, lockIt);
    return Told(list);
  }
  Lines Students(bool reconcile = true, bool lockIt = true) {
    SLoginList list;
    list.Add(std::make_unique<SLoginNameObj>(zoe));
    LoadStudentList(site, list, room, reconcile, lockIt);
    EXPECT_TRUE(!site.GetFailure() || list.GetSize() == 1);  // it stays as it was
    return Told(list);
  }
  Lines Files(const SLoginNameObj* student, const char* extension, bool lockIt) {
    SFileList list;
    SFileSpec spec;
    EntryFolder(site, spec, &room, student);
    lockIt ? LoadFileListAt(site, list, spec, extension, true)
           : LoadFileList(site, list, &room, student, extension);
    Lines lines;
    for (const SOurFileObj& file : list) {
      lines.push_back(Bytes(file.fileName + ":" + file.longName + ":" + file.extension));
    }
    return lines;
  }
  std::string Counts() {
    return std::to_string(CountTeachers(site)) + " " + std::to_string(CountEntries(site, nullptr)) +
           " " + std::to_string(CountEntries(site, &room));
  }

  const SLoginNameObj hill = Entry("aHill", "Ms Hill");
  const SLoginNameObj room = Entry("room12", "Room 12");
  const SLoginNameObj zoe = Entry("A", "Zoe");
  const Lines allClasses = {"room12:Room 12:", "Room9:Attic:"};
  const Lines allStudents = {"A:Zoe:", "B:Bob:Ray", "c:Ann:Lee"};
};

// Each operation is a round trip to a file server; a listing's do not grow with its entries.
TEST_F(ListingTest, AStoreInOrderIsListedByFolderAndNotTouched) {
  for (const Kind kind : {Kind::kLocal, Kind::kShared, Kind::kTeachers}) {
    Build(kind);
    const auto before = Snapshot();
    if (kind == Kind::kTeachers) {
      EXPECT_EQ(Teachers(), Lines({"aHill:Ms Hill:", "Zyoung:Ms Young:"}));
    }
    EXPECT_EQ(Classes(), allClasses);
    FaultFileServices services(*Platform().files);
    const SPlatformOverride<IFileServices> installed(Platform().files, &services);
    EXPECT_EQ(Students(), allStudents);
    EXPECT_EQ(services.CountOf("Attributes"), 1);
    EXPECT_EQ(services.CountOf("OpenAlone"), kind == Kind::kLocal ? 0 : 1);
    EXPECT_EQ(services.CountOf("OpenRead"), 1);
    EXPECT_EQ(services.CountOf("Walk"), 1);
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

TEST_F(ListingTest, AListThatIsLockedOrGoneIsNotGivenAndItsCountIsZero) {
  const StoreBuilder store = Build(Kind::kTeachers);
  const std::string list = "Classes.zep/aHill/Classes.zep/";
  {
    const Holder top(Spec("Classes.zep/index.lok"));
    EXPECT_EQ(Teachers(), Lines{"locked teachers Classes.zep/index.lok"});
    EXPECT_EQ(CountTeachers(site), 0);
    EXPECT_EQ(Why(), "locked classes Classes.zep/index.lok");
    EXPECT_EQ(Classes(), allClasses);
    const Holder classes(Spec(list + "index.lok"));
    EXPECT_EQ(Classes(), Lines{"locked classes " + list + "index.lok"});
    EXPECT_EQ(Classes(false), allClasses);
    EXPECT_EQ(Students(), allStudents);
    const Holder inside(Spec(list + "room12/Students/index.lok"));
    EXPECT_EQ(Students(), Lines{"locked students " + list + "room12/Students/index.lok"});
    EXPECT_EQ(Students(true, false), allStudents);
    EXPECT_EQ(Counts(), "0 0 0");
    Why();
  }
  store.RemoveFolder(list + "room12");
  EXPECT_EQ(Students(), Lines{"missing students " + list + "room12"});
}

TEST_F(ListingTest, CountsAreTheIndexsOwn) {
  const StoreBuilder store = Build(Kind::kTeachers);
  store.RemoveFolder("Classes.zep/Zyoung");
  EXPECT_EQ(Counts(), "2 2 3");
  store.RemoveFolder("Classes.zep/aHill/Classes.zep/room12/Students");
  EXPECT_EQ(Teachers(), Lines{"aHill:Ms Hill:"});
  EXPECT_EQ(Counts(), "1 2 0");
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
  const Holder other(Spec(folder + "/index.lok"));
  EXPECT_EQ(Files(&zoe, "zep", true), Lines());
  EXPECT_EQ(Why(), "locked files " + folder + "/index.lok");
  // Those of a class lie among its students; a name of three characters is none.
  store.WriteFile("Classes.zep/room12/Students/class.zep", "");
  store.WriteFile("Classes.zep/room12/Students/a.z", "");
  FaultFileServices services(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &services);
  EXPECT_EQ(Files(&zoe, "Zep", false), games);
  EXPECT_EQ(services.CountOf("Write"), 0);
  EXPECT_EQ(Files(nullptr, "zep", false), Lines({"class.zep:class:zep"}));
  EXPECT_EQ(Files(nullptr, "z", false), Lines());
}

}  // namespace
