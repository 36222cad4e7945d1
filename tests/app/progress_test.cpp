// Command 6: how far a student has come.
#include "tests/app/call_fixture.h"

namespace kivtest {
namespace {

using namespace kivstore;

// In seconds since 1904: later decisions win.
constexpr uint32_t kEarly = 3800000000;
constexpr uint32_t kLate = 3850000000;

class Progress : public ProcessState {
 protected:
  Progress() {
    room = store.AddClass("", "Room 12", "R12");
    ann = store.AddStudent(room, "Ann", "Lee", "AnnLee");
    store.Finish();
  }
  Host& Ask(int32_t classNumber = 1, int32_t student = 1) {
    EXPECT_TRUE(host.Class(classNumber).Student(student).Call(KIV_STUDENT_PROGRESS));
    return host;
  }

  TempFolder folder;
  StoreBuilder store{folder.Path(), Kind::kLocal};
  std::string room, ann;
  Host host{folder.Path(), kLocalMode};
};

TEST_F(Progress, AMissionCountsInFullOnceItsKeysAreLearnedOrItsLessonDone) {
  struct Row {
    int mission;
    bool learned;
    int lessonDone;  // 0: none
    int32_t current, previous;
  };
  const Row rows[] = {
      {1, false, 0, 1, 1},
      {1, true, 0, 1, 1},
      {1, false, 1, 1, 1},
      {2, false, 0, 1, 1},
      {2, true, 0, 2, 1},
      {5, false, 0, 4, 4},
      {5, true, 0, 5, 4},
      {5, false, 5, 5, 4},
      {5, false, 4, 4, 4},
      {5, false, 6, 4, 4},
      {25, false, 25, 25, 24},
      {25, true, 25, 25, 24},
      {26, false, 25, 25, 25},
      {26, true, 25, 26, 25},
      {0, true, 0, 1, 1},
      {-7, false, 0, 1, 1},
      {32767, true, 0, 32767, 32766},
      {-32768, true, 0, 1, 1},
  };
  for (const Row& row : rows) {
    OptionsBytes options;
    options.SetMission(row.mission);
    if (row.lessonDone != 0) {
      options.SetLessonDone(row.lessonDone);
    }
    GameBytes game;
    game.learnedNewKeys = row.learned;
    store.WriteOptions(ann, options);
    store.WriteGame(ann, game);
    Ask();
    EXPECT_EQ(host.block.currentMission, row.current) << "mission " << row.mission;
    EXPECT_EQ(host.block.previousMission, row.previous) << "mission " << row.mission;
  }
}

TEST_F(Progress, AStudentWithNothingSavedIsAtTheBeginning) {
  Ask();
  EXPECT_STREQ(host.block.studentName, "Ann Lee");
  EXPECT_EQ(host.block.studentIndex, 0);
  EXPECT_EQ(host.block.currentMission, 1);
  EXPECT_EQ(host.block.previousMission, 1);
  EXPECT_EQ(host.block.vocabLevel, 1);
}

TEST_F(Progress, TheNewestDecisionOfTheThreeLevelsCounts) {
  struct Level {
    int value;
    uint32_t stamp;
  };
  struct Row {
    Level top, ofClass, ofStudent;
    int32_t vocabLevel;
  };
  const Row rows[] = {
      {{2, kEarly}, {3, kLate}, {4, kEarly}, 3},
      {{2, kLate}, {3, kEarly}, {4, kEarly}, 2},
      {{2, kEarly}, {3, kEarly}, {4, kLate}, 4},
      {{2, 0}, {3, 0}, {4, 0}, 4},
      {{2, kEarly}, {3, kEarly}, {4, kEarly}, 4},
      {{2, kEarly}, {3, 0}, {-4, 0}, 2},
      {{2, 0}, {3, 0}, {-4, 0}, -4},
  };
  for (const Row& row : rows) {
    const auto write = [&](const std::string& place, const Level& level) {
      store.WriteOptions(place, OptionsBytes().Set("VocabLevel", level.value, level.stamp));
    };
    write(StoreBuilder::Top(), row.top);
    write(room, row.ofClass);
    write(ann, row.ofStudent);
    Ask();
    EXPECT_EQ(host.block.vocabLevel, row.vocabLevel);
  }
}

TEST_F(Progress, OptionsAreReadAfreshByEveryCall) {
  store.WriteOptions(ann, OptionsBytes().SetMission(9));
  Ask();
  EXPECT_EQ(host.block.currentMission, 8);
  store.RemoveFile(ann + "/options.kiv");
  Ask();
  EXPECT_EQ(host.block.currentMission, 1);
}

TEST_F(Progress, OptionsWithoutAGameRecordAreThoseOfABeginner) {
  OptionsBytes options;
  options.hasGameOptions = false;
  options.Set("VocabLevel", 3);
  store.WriteOptions(ann, options);
  Ask();
  EXPECT_EQ(host.block.currentMission, 1);
  EXPECT_EQ(host.block.previousMission, 1);
  EXPECT_EQ(host.block.vocabLevel, 3);
}

TEST_F(Progress, AGameOfAnotherVersionOrKindCountsAsNone) {
  store.WriteOptions(ann, OptionsBytes().SetMission(5));
  GameBytes game;
  game.learnedNewKeys = true;
  store.WriteGame(ann, game);
  EXPECT_EQ(Ask().block.currentMission, 5);
  game.version = 0x00010001;
  store.WriteGame(ann, game);
  EXPECT_EQ(Ask().block.currentMission, 4);
  store.WriteFile(ann + "/autogame.zep", "BIN\x01" + game.Bytes().substr(4));
  EXPECT_EQ(Ask().block.currentMission, 4);
}

TEST_F(Progress, ANetworkedStoreIsAskedThroughItsTeacher) {
  TempFolder network;
  StoreBuilder shared(network.Path(), Kind::kTeachers);
  for (const char* const name : {"Ms Hill", "Ms Zeta"}) {
    const std::string teacher = shared.AddTeacher(name);
    const std::string group = shared.AddClass(teacher, "Group");
    const std::string student = shared.AddStudent(group, "Of", name);
    shared.WriteOptions(shared.ClassList(teacher), OptionsBytes().Set("VocabLevel", name[3]));
    shared.WriteOptions(student, OptionsBytes().Set("VocabLevel", name[3]).SetMission(name[4]));
    GameBytes game;
    game.learnedNewKeys = true;
    shared.WriteGame(student, game);
  }
  shared.Finish();
  Host asked(network.Path(), kNetworkedMode);
  EXPECT_TRUE(asked.Teacher(2).Class(1).Student(1).Call(KIV_STUDENT_PROGRESS));
  EXPECT_STREQ(asked.block.studentName, "Of Ms Zeta");
  EXPECT_EQ(asked.block.vocabLevel, 'Z');
  EXPECT_EQ(asked.block.currentMission, 'e');
}

TEST_F(Progress, AStudentBeyondTheClassLeavesTheHostsValues) {
  host.block.currentMission = host.block.studentIndex = 77;
  EXPECT_FALSE(host.Class(1).Student(2).Call(KIV_STUDENT_PROGRESS));
  EXPECT_FALSE(host.Class(2).Student(1).Call(KIV_STUDENT_PROGRESS));
  EXPECT_EQ(host.block.currentMission, 77);
  EXPECT_EQ(host.block.studentIndex, 77);
  EXPECT_STREQ(host.block.studentName, "");
}

}  // namespace
}  // namespace kivtest
