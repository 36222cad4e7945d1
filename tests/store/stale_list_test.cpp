// A workstation changes the list that it loaded a while ago; what the others have made of the index
// in the meantime stays.
#include "store/change/adding.h"
#include "store/change/deleting.h"
#include "store/change/moving.h"
#include "store/change/renaming.h"
#include "tests/store/kill_fixture.h"

using namespace kivstore;
using kivtest::IndexBytes;
using kivtest::kDen;
using kivtest::kRoom;

namespace {

class StaleList : public kivtest::KillFixture {
 protected:
  // The list as it was before another workstation renamed Ann and added Cid.
  StaleList() {
    Build();
    Load();
    SLoginList others;
    LoadStudentList(others.Array(), room, true, true);
    EXPECT_TRUE(RenameStudent(&room, others.At(0), &others.Array(), "Anna", "Leigh"));
    EXPECT_TRUE(AddStudent(room, "Cid", "", folder));
  }
  std::string Index() const { return temp.ReadFile(kRoom + "/index.kiv"); }

  SString folder;
  bool stop = false;
};

TEST_F(StaleList, ARenameTakesNoOtherNameBack) {
  EXPECT_TRUE(RenameStudent(&room, Find(students, "Bob"), &students.Array(), "Rob", ""));
  EXPECT_EQ(Index(),
            IndexBytes({{"AnnLee", "Anna", "Leigh"}, {"Bob", "Rob", ""}, {"Cid", "Cid", ""}}));
}

TEST_F(StaleList, ADeleteTakesOutItsOwnLineOnly) {
  EXPECT_TRUE(DeleteStudent(&room, Find(students, "Bob"), &students.Array(), true, stop));
  EXPECT_EQ(Index(), IndexBytes({{"AnnLee", "Anna", "Leigh"}, {"Cid", "Cid", ""}}));
}

TEST_F(StaleList, AMoveTakesOutItsOwnLineOnly) {
  EXPECT_TRUE(MoveStudent(&room, &den, Find(students, "Bob"), &students.Array(), "Bob", ""));
  EXPECT_EQ(Index(), IndexBytes({{"AnnLee", "Anna", "Leigh"}, {"Cid", "Cid", ""}}));
  EXPECT_EQ(temp.ReadFile(kDen + "/index.kiv"), IndexBytes({{"Bob", "Bob", ""}}));
}

}  // namespace
