#include "store/change/adding.h"

#include <functional>

#include "store/change/default_entries.h"
#include "store/list/index_file.h"
#include "tests/support/school_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

class AddingTest : public SchoolFixture {
 protected:
  // A list of any length. The folders do not matter to an add.
  static std::string IndexOf(size_t count) {
    std::vector<IndexLine> lines;
    for (size_t i = 0; i < count; ++i) {
      lines.push_back({"f" + std::to_string(i), "Name", std::to_string(i)});
    }
    return IndexBytes(lines);
  }
  int32_t Count(const std::string& list) const { return ReadIndexCount(Spec(list)); }

  struct Level {
    std::string list, word, plural;
    std::function<bool()> add;
  };
  const std::vector<Level> levels = {
      {kTop, "teacher", "teachers", [this] { return AddTeacher(site, "Jo May", folder); }},
      {kHill, "class", "classes", [this] { return AddClass(site, "Jo May", folder); }},
      {kRoom, "student", "students",
       [this] { return AddStudent(site, room, "Jo", "May", folder); }}};
};

TEST_F(AddingTest, AnAddMakesLineFolderAndName) {
  const CreatingScope creating;
  EXPECT_TRUE(AddTeacher(site, "Mr Elm", folder));
  EXPECT_EQ(folder, "MrElm");
  EXPECT_TRUE(AddClass(site, "Room 12", folder));
  EXPECT_EQ(folder, "Room12");
  SFileSpec spec = Spec(kRoom);
  EXPECT_TRUE(AddStudentAt(site, spec, "Bob", "Ray", folder));
  EXPECT_EQ(folder, "BobRay");
  EXPECT_EQ(PlaceAndKind(spec), "folder " + kRoom + "/BobRay/");
  EXPECT_EQ(Changed(),
            Lines({"+Classes.zep/MrElm", "+Classes.zep/MrElm/longname.kiv", "+" + kRoom + "/BobRay",
                   "+" + kRoom + "/BobRay/longname.kiv", "*" + kRoom + "/index.kiv",
                   "+" + kHill + "/Room12", "+" + kHill + "/Room12/Students",
                   "+" + kHill + "/Room12/longname.kiv", "*" + kHill + "/index.kiv",
                   "*Classes.zep/index.kiv"}));
  EXPECT_EQ(Index(kRoom), IndexBytes({{"AnnLee", "Ann", "Lee"},
                                      {"Bob", "Bob", ""},
                                      {"Cid", "Cid", ""},
                                      {"BobRay", "Bob", "Ray"}}));
  EXPECT_EQ(temp.ReadFile(kRoom + "/BobRay/longname.kiv"), LongNameBytes("Bob", "Ray"));
  EXPECT_EQ(temp.ReadFile("Classes.zep/MrElm/longname.kiv"), LongNameBytes("Mr Elm"));
  EXPECT_EQ(Why(), "");
}

TEST_F(AddingTest, ANameThatIsThereAndATeacherOnALocalSiteTouchNothing) {
  const CreatingScope creating;
  for (const Level& level : levels) {
    temp.WriteFile(level.list + "/index.kiv", IndexOf(1000));  // the name comes first
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
    temp.WriteFile(level.list + "/index.kiv", IndexOf(1000));
    EXPECT_FALSE(level.add()) << level.list;
    EXPECT_EQ(Bytes(site.GetFailure().text),
              "Unable to add the " + level.word + " Jo May because there are already 1000 " +
                  level.plural + ".  Someone else may have added at least one.");
    EXPECT_EQ(Why(), "full " + level.plural + " " + level.list + "/");
    temp.WriteFile(level.list + "/index.kiv", IndexOf(999));
    EXPECT_TRUE(level.add()) << level.list;
    EXPECT_EQ(Count(level.list), 1000);
  }
}

TEST_F(AddingTest, AListThatIsBusyOrGoneGivesThePlainFailure) {
  for (const Level& level : levels) {
    NoteCounted();  // else that count meets the lock first
    const Holder other(Spec(level.list + "/index.lok"));
    EXPECT_FALSE(level.add()) << level.list;
    EXPECT_EQ(Bytes(site.GetFailure().text), "Unable to add the " + level.word + " Jo May.");
    EXPECT_EQ(Why(), "locked " + level.plural + " " + level.list + "/index.lok");
  }
  EXPECT_EQ(folder, "as it was");
  EXPECT_EQ(Changed(), Lines());
  SFileSpec spec = Spec(kRoom);
  store.RemoveFolder(kHill);
  EXPECT_FALSE(AddStudentAt(site, spec, "Jo", "", folder));
  EXPECT_EQ(Bytes(site.GetFailure().text), "Unable to add the student Jo.");
  EXPECT_EQ(Why(), "missing students ");
}

TEST_F(AddingTest, AFolderThatIsNotMadeLeavesTheLineForTheNextListing) {
  for (const Level& level : levels) {
    const int32_t before = Count(level.list);
    EXPECT_FALSE(level.add()) << level.list;
    EXPECT_EQ(Count(level.list), before + 1);
    EXPECT_EQ(folder, "as it was");
    EXPECT_EQ(Bytes(site.GetFailure().text),
              "Unable to add the " + level.word + " Jo May because the " + level.word +
                  " folder located in " + Bytes(Spec(level.list).GetPath()) +
                  " could not be created.  Make sure you have enough disk space and the "
                  "necessary privileges to create, read, write, modify, and delete files and "
                  "folders.");
    EXPECT_EQ(Why(), "no permission " + level.plural + " " + level.list + "/JoMay");
  }
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
