#include "store/adding.h"

#include "store/index_file.h"
#include "tests/store/store_fixture.h"
#include "tests/support/fault_file_services.h"

using namespace kivstore;
using kivtest::Bytes;
using kivtest::IndexBytes;
using kivtest::IndexLine;
using kivtest::Kind;
using kivtest::Lines;
using kivtest::LongNameBytes;
using kivtest::StoreBuilder;
using kivtest::Text;

namespace {

const std::string kClasses = "Classes.zep/aHill/Classes.zep";
const std::string kStudents = kClasses + "/Room/Students";

class AddingTest : public kivtest::StoreFixture {
 protected:
  StoreBuilder Build() {
    UseSite(Kind::kTeachers);
    StoreBuilder store(temp.Path(), Kind::kTeachers);
    store.AddTeacher("Ms Hill", "aHill");
    store.AddClass("Classes.zep/aHill", "Room", "Room");
    store.AddStudent(kClasses + "/Room", "Ann", "Lee", "AnnLee");
    store.Finish();
    const SLoginNameObj hill = Entry("aHill", "Ms Hill");
    SelectTeacher(&hill);
    return store;
  }
  // A list as long as may be. The folders do not matter to an add.
  static std::string FullIndex(size_t count) {
    std::vector<IndexLine> lines;
    for (size_t i = 0; i < count; ++i) {
      lines.push_back({"f" + std::to_string(i), "Name", std::to_string(i)});
    }
    return IndexBytes(lines);
  }
  std::string Count(const std::string& list) const {
    SFileSpec spec = Spec(list);
    return std::to_string(ReadIndexCount(spec));
  }

  // The levels, each with a list of one entry.
  struct Level {
    std::string list;
    std::string plain, full, word, display;
    std::function<bool(SString&)> add;
  };
  std::vector<Level> Levels() {
    const SLoginNameObj room = Entry("Room", "Room");
    return {
        {"Classes.zep", "Unable to add the teacher Jo May.",
         "Unable to add the teacher Jo May because there are already 1000 teachers.  ", "teacher",
         "Jo May", [](SString& folder) { return AddTeacher("Jo May", folder); }},
        {kClasses, "Unable to add the class Jo May.",
         "Unable to add the class Jo May because there are already 1000 classes.  ", "class",
         "Jo May", [](SString& folder) { return AddClass("Jo May", folder); }},
        {kStudents, "Unable to add the student Jo May.",
         "Unable to add the student Jo May because there are already 1000 students.  ", "student",
         "Jo May", [room](SString& folder) { return AddStudent(room, "Jo", "May", folder); }}};
  }

  SString folder;
};

TEST_F(AddingTest, AnAddMakesLineFolderAndName) {
  const kivtest::CreatingScope creating;
  StoreBuilder store = Build();
  const auto before = store.Snapshot();
  EXPECT_TRUE(AddTeacher("Mr Oak", folder));
  EXPECT_EQ(folder, "MrOak");
  EXPECT_TRUE(AddClass("Room 12", folder));
  EXPECT_EQ(folder, "Room12");
  EXPECT_TRUE(AddStudent(Entry("Room", "Room"), "Bob", "Ray", folder));
  EXPECT_EQ(folder, "BobRay");
  EXPECT_EQ(Changes(before, store.Snapshot()),
            Lines({"+Classes.zep/MrOak", "+Classes.zep/MrOak/longname.kiv",
                   "+" + kStudents + "/BobRay", "+" + kStudents + "/BobRay/longname.kiv",
                   "*" + kStudents + "/index.kiv", "+" + kClasses + "/Room12",
                   "+" + kClasses + "/Room12/Students", "+" + kClasses + "/Room12/longname.kiv",
                   "*" + kClasses + "/index.kiv", "*Classes.zep/index.kiv"}));
  EXPECT_EQ(temp.ReadFile(kStudents + "/index.kiv"),
            IndexBytes({{"AnnLee", "Ann", "Lee"}, {"BobRay", "Bob", "Ray"}}));
  EXPECT_EQ(temp.ReadFile(kStudents + "/BobRay/longname.kiv"), LongNameBytes("Bob", "Ray"));
  EXPECT_EQ(temp.ReadFile("Classes.zep/MrOak/longname.kiv"), LongNameBytes("Mr Oak"));
  EXPECT_TRUE(Dropped().empty());
}

TEST_F(AddingTest, AStudentsSpecStaysInItsFolderTheOthersGoBack) {
  const kivtest::CreatingScope creating;
  Build();
  SFileSpec spec = Spec(kStudents);
  EXPECT_TRUE(AddStudentAt(spec, "Bob", "Ray", folder));
  EXPECT_EQ(Place(spec), kStudents + "/BobRay/");
  spec = Spec(kStudents);
  EXPECT_TRUE(AddStudentAt(spec, "Bob", "Ray", folder));
  EXPECT_EQ(Place(spec), kStudents + "/");
  spec = Spec(kClasses);
  EXPECT_TRUE(AddClassAt(spec, "Attic", folder));
  EXPECT_EQ(Place(spec), kClasses + "/");
  spec = Spec("Classes.zep");
  EXPECT_TRUE(AddTeacherAt(spec, "Mr Oak", folder));
  EXPECT_EQ(Place(spec), "Classes.zep/");
}

TEST_F(AddingTest, ANameThatIsThereIsASuccessThatChangesNothing) {
  const StoreBuilder store = Build();
  const auto before = store.Snapshot();
  EXPECT_TRUE(AddStudent(Entry("Room", "Room"), "ANN", "lee", folder));
  EXPECT_EQ(folder, "ANNlee");
  EXPECT_EQ(Changes(before, store.Snapshot()), Lines());
}

TEST_F(AddingTest, ALineOfTheNameAndFolderIsNotDoubled) {
  const kivtest::CreatingScope creating;
  const StoreBuilder store = Build();
  store.WriteFile(kStudents + "/index.kiv", IndexBytes({{"bobray", "BOB", "RAY"}}));
  EXPECT_TRUE(AddStudent(Entry("Room", "Room"), "Bob", "Ray", folder));
  EXPECT_EQ(temp.ReadFile(kStudents + "/index.kiv"), IndexBytes({{"bobray", "BOB", "RAY"}}));
  EXPECT_TRUE(temp.Exists(kStudents + "/BobRay"));
}

TEST_F(AddingTest, TheThousandthIsTheLast) {
  const kivtest::CreatingScope creating;
  Build();
  for (const Level& level : Levels()) {
    temp.WriteFile(level.list + "/index.kiv", FullIndex(1000));
    Dropped().clear();
    EXPECT_FALSE(level.add(folder)) << level.list;
    ASSERT_EQ(Dropped().size(), 1u);
    EXPECT_EQ(Dropped()[0], level.full + "Someone else may have added at least one.");
    temp.WriteFile(level.list + "/index.kiv", FullIndex(999));
    EXPECT_TRUE(level.add(folder)) << level.list;
    EXPECT_EQ(Count(level.list), "1000");
  }
}

TEST_F(AddingTest, AListThatIsBusyOrGoneGivesThePlainFailure) {
  const StoreBuilder store = Build();
  const auto before = store.Snapshot();
  for (const Level& level : Levels()) {
    const Holder other(Spec(level.list + "/index.lok"));
    Dropped().clear();
    folder = "as it was";
    EXPECT_FALSE(level.add(folder)) << level.list;
    EXPECT_EQ(Dropped(), Lines({level.plain}));
    EXPECT_EQ(folder, "as it was");
  }
  EXPECT_EQ(Changes(before, store.Snapshot()), Lines());
  SFileSpec spec = Spec(kStudents);
  store.RemoveFolder(kClasses);
  Dropped().clear();
  EXPECT_FALSE(AddStudentAt(spec, "Jo", "May", folder));
  EXPECT_EQ(Dropped(), Lines({"Unable to add the student Jo May."}));
}

TEST_F(AddingTest, AFolderThatIsNotMadeLeavesTheLineForTheNextListing) {
  Build();
  for (const Level& level : Levels()) {
    Dropped().clear();
    folder = "as it was";
    EXPECT_FALSE(level.add(folder)) << level.list;
    EXPECT_EQ(Count(level.list), "2");
    EXPECT_EQ(folder, "as it was");
    EXPECT_FALSE(temp.Exists(level.list + "/JoMay"));
    ASSERT_EQ(Dropped().size(), 1u);
    const std::string opening = "Unable to add the " + level.word + " " + level.display +
                                " because the " + level.word + " folder located in " +
                                Bytes(Spec(level.list).GetPath()) + " could not be created.  ";
    EXPECT_EQ(Dropped()[0].substr(0, opening.size()), opening);
  }
}

TEST_F(AddingTest, TeachersAreAddedOnSharedSitesOnly) {
  const kivtest::CreatingScope creating;
  const StoreBuilder store = Build();
  const auto before = store.Snapshot();
  gSiteMode = kSiteLocal;
  EXPECT_FALSE(AddTeacher("Mr Oak", folder));
  EXPECT_EQ(Changes(before, store.Snapshot()), Lines());
  EXPECT_TRUE(Dropped().empty());
}

TEST_F(AddingTest, ANameIsFreeUnlessSomebodyHasAddedItSince) {
  Build();
  const SLoginNameObj room = Entry("Room", "Room");
  SLoginList list;
  list.Array().Add(new SLoginNameObj("Old", "", "Old"));
  EXPECT_TRUE(CheckStudentName(room, "Bob", "Ray", folder, &list.Array()));
  EXPECT_EQ(folder, "BobRay");
  EXPECT_TRUE(CheckStudentName(room, "Ann", "Lee", folder, nullptr));
  EXPECT_EQ(folder, "AnnLee");
  EXPECT_EQ(Described(list.Array()), Lines({"Old:Old:"}));
  {
    const Holder other(Spec(kStudents + "/index.lok"));
    EXPECT_TRUE(CheckStudentName(room, "Ann", "Lee", folder, &list.Array()));
    EXPECT_EQ(Described(list.Array()), Lines({"Old:Old:"}));
  }
  EXPECT_FALSE(CheckStudentName(room, "Ann", "Lee", folder, &list.Array()));
  EXPECT_EQ(folder, "");
  EXPECT_EQ(Described(list.Array()), Lines({"AnnLee:Ann:Lee"}));
  EXPECT_FALSE(CheckStudentName(Entry("..", "Up"), "Ann", "Lee", folder, nullptr));
}

// Whatever fails on the way, the next listing finds a whole list again.
TEST_F(AddingTest, AnAddThatBreaksOffLosesNobody) {
  const kivtest::CreatingScope creating;
  bool struck = true;
  for (int n = 1; struck && n < 200; ++n) {
    const StoreBuilder store = Build();
    kivtest::FaultFileServices services(*Platform().files);
    const SPlatformOverride<IFileServices> installed(Platform().files, &services);
    services.FailAt(n, SystemError::kOther, true);
    const bool added = AddStudent(Entry("Room", "Room"), "Bob", "Ray", folder);
    struck = services.HasStruck();
    services.FailNever();
    EXPECT_EQ(services.OpenPaths(), Lines()) << n;
    const std::string index = temp.ReadFile(kStudents + "/index.kiv");
    const bool isOld = index == IndexBytes({{"AnnLee", "Ann", "Lee"}});
    const bool isNew = index == IndexBytes({{"AnnLee", "Ann", "Lee"}, {"BobRay", "Bob", "Ray"}});
    EXPECT_TRUE(added ? isNew : isOld || isNew) << n;
    temp.Remove("Classes.zep");
  }
  EXPECT_FALSE(struck);
}

}  // namespace
