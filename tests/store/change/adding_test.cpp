#include "store/change/adding.h"

#include <functional>

#include "store/change/default_entries.h"
#include "store/change/deleting.h"
#include "store/list/index_file.h"
#include "tests/support/school_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

class AddingTest : public SchoolFixture {
 protected:
  // A list of any length. The folders do not matter to an add.
  void Fill(const std::string& list, size_t count) const {
    const std::vector<IndexLine> lines(count, IndexLine{"f", "Name", ""});
    temp.WriteFile(list + "/index.kiv", IndexBytes(lines));
  }

  struct Level {
    std::string list, word, plural;
    std::function<bool()> add;

    std::string Unable() const { return "Unable to add the " + word + " Jo May"; }
  };
  // Where the folder is made ready.
  static std::string BesideOf(const std::string& list) {
    return list.substr(0, list.rfind('/') + 1);
  }
  const std::vector<Level> levels = {
      {kTop, "teacher", "teachers", [this] { return AddTeacher(site, "Jo May", folder); }},
      {kHill, "class", "classes", [this] { return AddClass(site, "Jo May", folder); }},
      {kRoom, "student", "students",
       [this] { return AddStudent(site, room, "Jo", "May", folder); }}};
};

TEST_F(AddingTest, ANameThatIsThereAndATeacherOnALocalSiteTouchNothing) {
  const CreatingScope creating;
  SFileSpec spec = Spec(kRoom);
  EXPECT_TRUE(AddStudentAt(site, spec, "Bob", "Ray", folder));
  EXPECT_EQ(PlaceAndKind(spec), "folder " + kRoom + "/BobRay/");
  for (const Level& level : levels) {
    Fill(level.list, 1000);  // the name comes first
    temp.WriteFile(level.list + "/JoMay/longname.kiv", LongNameBytes("JO", "may"));
    const auto before = Snapshot();
    folder.Empty();
    EXPECT_TRUE(level.add()) << level.list;
    EXPECT_EQ(folder, "JoMay");
    EXPECT_EQ(Changes(before, Snapshot()), Lines());
  }
  site.SetSiteMode(kSiteLocal);
  EXPECT_EQ(WhyNot(AddTeacher(site, "Mr Elm", folder)), "");
  EXPECT_FALSE(temp.Exists("Classes.zep/MrElm"));
}

TEST_F(AddingTest, TheThousandthIsTheLast) {
  const CreatingScope creating;
  for (const Level& level : levels) {
    Fill(level.list, 1000);
    EXPECT_FALSE(level.add()) << level.list;
    EXPECT_EQ(Told(), level.Unable() + " because there are already 1000 " + level.plural +
                          ".  Someone else may have added at least one.|full " + level.plural +
                          " " + level.list + "/");
    Fill(level.list, 999);
    EXPECT_TRUE(level.add()) << level.list;
    EXPECT_EQ(folder, "JoMay");
    EXPECT_EQ(ReadIndexCount(Spec(level.list)), 1000);
  }
}

TEST_F(AddingTest, AListThatIsBusyOrGoneGivesThePlainFailure) {
  for (const Level& level : levels) {
    NoteCounted();  // else that count meets the lock first
    const Holder other(Spec(level.list + "/index.lok"));
    EXPECT_FALSE(level.add()) << level.list;
    EXPECT_EQ(Told(),
              level.Unable() + ".|locked " + level.plural + " " + level.list + "/index.lok");
  }
  EXPECT_EQ(folder, "as it was");
  EXPECT_EQ(Changed(), Lines());
  SFileSpec spec = Spec(kRoom);
  store.RemoveFolder(kHill);
  EXPECT_FALSE(AddStudentAt(site, spec, "Jo", "", folder));
  EXPECT_EQ(Told(), "Unable to add the student Jo.|missing students ");
}

TEST_F(AddingTest, AFolderThatIsNotMadeLeavesTheLineForTheNextListing) {
  for (const Level& level : levels) {
    const int32_t before = ReadIndexCount(Spec(level.list));
    EXPECT_FALSE(level.add()) << level.list;
    EXPECT_EQ(ReadIndexCount(Spec(level.list)), before + 1);
    EXPECT_EQ(folder, "as it was");
    EXPECT_EQ(Told(), level.Unable() + " because the " + level.word + " folder located in " +
                          Bytes(Spec(level.list).GetPath()) +
                          " could not be created.  Make sure you have enough disk space and the "
                          "necessary privileges to create, read, write, modify, and delete files "
                          "and folders.|no permission " +
                          level.plural + " " + (level.list == kTop ? "" : BesideOf(level.list)) +
                          "JoMay.new");
  }
}

// Somebody of that name is listed, under a folder name of another spelling.
TEST_F(AddingTest, WhoIsListedUnderThatNameIsTheAnswer) {
  const CreatingScope creating;
  const auto add = [&](const char* first, const char* last) {
    EXPECT_TRUE(AddStudent(site, room, first, last, folder));
    return Bytes(folder);
  };
  EXPECT_EQ(add("An", "nLee"), "AnnLee0");
  EXPECT_TRUE(DeleteStudent(site, room, ann, students, true, stop));
  EXPECT_EQ(add("AN", "NLee"), "AnnLee0");
  // A line that a death has left goes with the folder name to who gets the folder.
  temp.WriteFile(kRoom + "/index.kiv", IndexBytes({{"EveRay", "Ev", "Eray"}}));
  EXPECT_EQ(add("Eve", "Ray"), "EveRay");
  EXPECT_EQ(Index(kRoom), IndexBytes({{"EveRay", "Eve", "Ray"}}));
}

TEST_F(AddingTest, ANameIsFreeUnlessSomebodyHasAddedItSince) {
  SLoginList list;
  list.Add(std::make_unique<SLoginNameObj>("Old", "", "Old"));
  EXPECT_TRUE(CheckStudentName(site, room, "Bob", "Ray", folder, &list));
  EXPECT_EQ(folder, "BobRay");
  EXPECT_TRUE(CheckStudentName(site, room, "Ann", "Lee", folder, nullptr));
  EXPECT_EQ(folder, "AnnLee");
  {
    const Holder other(Spec(kRoom + "/index.lok"));
    EXPECT_TRUE(CheckStudentName(site, room, "Ann", "Lee", folder, &list));
  }
  EXPECT_EQ(Described(list), Lines({"Old:Old:"}));
  EXPECT_FALSE(CheckStudentName(site, room, "Ann", "Lee", folder, &list));
  EXPECT_EQ(folder, "");
  EXPECT_EQ(Described(list), Lines({"AnnLee:Ann:Lee", "Bob:Bob:", "Cid:Cid:"}));
  store.RemoveFolder(kRoom);
  EXPECT_FALSE(CheckStudentName(site, room, "Jo", "", folder, nullptr));
}

}  // namespace
