#include "store/change/adding.h"

#include "store/list/index_file.h"
#include "tests/store/school_fixture.h"

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
  int32_t Count(const std::string& list) const {
    SFileSpec spec = Spec(list);
    return ReadIndexCount(spec);
  }

  struct Level {
    std::string list, word, plural;
    std::function<bool(SString&)> add;
  };
  const std::vector<Level> levels = {
      {"Classes.zep", "teacher", "teachers", [](SString& to) { return AddTeacher("Jo May", to); }},
      {kHill, "class", "classes", [](SString& to) { return AddClass("Jo May", to); }},
      {kRoom, "student", "students",
       [this](SString& to) { return AddStudent(room, "Jo", "May", to); }}};
};

TEST_F(AddingTest, AnAddMakesLineFolderAndName) {
  const CreatingScope creating;
  EXPECT_TRUE(AddTeacher("Mr Elm", folder));
  EXPECT_EQ(folder, "MrElm");
  EXPECT_TRUE(AddClass("Room 12", folder));
  EXPECT_EQ(folder, "Room12");
  EXPECT_TRUE(AddStudent(room, "Bob", "Ray", folder));
  EXPECT_EQ(folder, "BobRay");
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
  EXPECT_TRUE(Dropped().empty());
}

TEST_F(AddingTest, ANameThatIsThereAndATeacherOnALocalSiteTouchNothing) {
  const CreatingScope creating;
  EXPECT_TRUE(AddStudent(room, "ANN", "lee", folder));
  EXPECT_EQ(folder, "ANNlee");
  gSiteMode = kSiteLocal;
  EXPECT_FALSE(AddTeacher("Mr Elm", folder));
  EXPECT_EQ(Changed(), Lines());
  EXPECT_TRUE(Dropped().empty());
}

TEST_F(AddingTest, TheThousandthIsTheLast) {
  const CreatingScope creating;
  for (const Level& level : levels) {
    temp.WriteFile(level.list + "/index.kiv", IndexOf(1000));
    Dropped().clear();
    EXPECT_FALSE(level.add(folder)) << level.list;
    EXPECT_EQ(Dropped(),
              Lines({"Unable to add the " + level.word + " Jo May because there are already 1000 " +
                     level.plural + ".  Someone else may have added at least one."}));
    temp.WriteFile(level.list + "/index.kiv", IndexOf(999));
    EXPECT_TRUE(level.add(folder)) << level.list;
    EXPECT_EQ(Count(level.list), 1000);
  }
}

TEST_F(AddingTest, AListThatIsBusyOrGoneGivesThePlainFailure) {
  for (const Level& level : levels) {
    const Holder other(Spec(level.list + "/index.lok"));
    Dropped().clear();
    EXPECT_FALSE(level.add(folder)) << level.list;
    EXPECT_EQ(Dropped(), Lines({"Unable to add the " + level.word + " Jo May."}));
  }
  EXPECT_EQ(folder, "as it was");
  EXPECT_EQ(Changed(), Lines());
  SFileSpec spec = Spec(kRoom);
  store.RemoveFolder(kHill);
  EXPECT_FALSE(AddStudentAt(spec, "Jo", "", folder));
  EXPECT_EQ(Dropped().back(), "Unable to add the student Jo.");
}

TEST_F(AddingTest, AFolderThatIsNotMadeLeavesTheLineForTheNextListing) {
  for (const Level& level : levels) {
    const int32_t before = Count(level.list);
    Dropped().clear();
    EXPECT_FALSE(level.add(folder)) << level.list;
    EXPECT_EQ(Count(level.list), before + 1);
    EXPECT_EQ(folder, "as it was");
    EXPECT_EQ(Dropped(),
              Lines({"Unable to add the " + level.word + " Jo May because the " + level.word +
                     " folder located in " + Bytes(Spec(level.list).GetPath()) +
                     " could not be created.  Make sure you have enough disk space and the "
                     "necessary privileges to create, read, write, modify, and delete files and "
                     "folders."}));
  }
}

TEST_F(AddingTest, ANameIsFreeUnlessSomebodyHasAddedItSince) {
  SLoginList list;
  list.Array().Add(new SLoginNameObj("Old", "", "Old"));
  EXPECT_TRUE(CheckStudentName(room, "Bob", "Ray", folder, &list.Array()));
  EXPECT_EQ(folder, "BobRay");
  EXPECT_TRUE(CheckStudentName(room, "Ann", "Lee", folder, nullptr));
  EXPECT_EQ(folder, "AnnLee");
  {
    const Holder other(Spec(kRoom + "/index.lok"));
    EXPECT_TRUE(CheckStudentName(room, "Ann", "Lee", folder, &list.Array()));
  }
  EXPECT_EQ(Described(list.Array()), Lines({"Old:Old:"}));
  EXPECT_FALSE(CheckStudentName(room, "Ann", "Lee", folder, &list.Array()));
  EXPECT_EQ(folder, "");
  EXPECT_EQ(Described(list.Array()), Lines({"AnnLee:Ann:Lee", "Bob:Bob:", "Cid:Cid:"}));
}

}  // namespace
