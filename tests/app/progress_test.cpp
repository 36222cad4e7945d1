// Command 6: how far a student has come.
#include "tests/app/call_fixture.h"

namespace kivtest {
namespace {

using namespace kivstore;

// In seconds since 1904: later decisions win.
constexpr uint32_t kEarly = 3800000000;
constexpr uint32_t kLate = 3850000000;

class Progress : public AnnsStore {
 protected:
  Progress() : AnnsStore(Kind::kLocal) {}
  SGeneralParams& Ask() {
    EXPECT_TRUE(AskForAnn());
    return host.block;
  }
};

TEST_F(Progress, AMissionCountsInFullOnceItsKeysAreLearnedOrItsLessonDone) {
  const struct {
    int mission;
    bool learned;
    int lessonDone;  // 0: none
    int32_t current, previous;
  } rows[] = {{1, false, 0, 1, 1},
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
              {26, false, 25, 25, 25},
              {26, true, 25, 26, 25},
              {0, true, 0, 1, 1},
              {-7, false, 0, 1, 1},
              {-32768, true, 0, 1, 1},
              {32767, true, 0, 32767, 32766}};
  for (const auto& row : rows) {
    OptionsBytes options;
    options.SetMission(row.mission);
    if (row.lessonDone != 0) {
      options.SetLessonDone(row.lessonDone);
    }
    GameBytes game;
    game.learnedNewKeys = row.learned;
    store.WriteOptions(ann, options);
    store.WriteGame(ann, game);
    EXPECT_EQ(Ask().currentMission, row.current) << "mission " << row.mission;
    EXPECT_EQ(host.block.previousMission, row.previous) << "mission " << row.mission;
  }
}

TEST_F(Progress, TheNewestDecisionOfTheThreeLevelsCounts) {
  using Level = std::pair<int, uint32_t>;
  const struct {
    Level levels[3];
    int32_t vocabLevel;
  } rows[] = {
      {{{2, kEarly}, {3, kLate}, {4, kEarly}}, 3}, {{{2, kLate}, {3, kEarly}, {4, kEarly}}, 2},
      {{{2, kEarly}, {3, kEarly}, {4, kLate}}, 4}, {{{2, kEarly}, {3, kEarly}, {4, kEarly}}, 4},
      {{{2, kEarly}, {3, 0}, {-4, 0}}, 2},         {{{2, 0}, {3, 0}, {-4, 0}}, -4}};
  const std::string places[] = {classes, room, ann};
  for (const auto& row : rows) {
    for (int i = 0; i < 3; ++i) {
      const auto& [value, stamp] = row.levels[i];
      store.WriteOptions(places[i], OptionsBytes().Set("VocabLevel", value, stamp));
    }
    EXPECT_EQ(Ask().vocabLevel, row.vocabLevel);
  }
}

TEST_F(Progress, WhatIsMissingOrOfAnotherKindCountsAsNothingDone) {
  EXPECT_EQ(Ask().currentMission, 1);
  EXPECT_EQ(host.block.previousMission, 1);
  EXPECT_EQ(host.block.vocabLevel, 1);
  EXPECT_STREQ(host.block.studentName, "Ann Lee");
  store.WriteOptions(ann, OptionsBytes().SetMission(5));
  EXPECT_EQ(Ask().currentMission, 4);
  Learn(ann, 5);
  EXPECT_EQ(Ask().currentMission, 5);
  GameBytes game;
  game.learnedNewKeys = true;
  store.WriteFile(ann + "/autogame.zep", "BIN\x01" + game.Bytes().substr(4));
  EXPECT_EQ(Ask().currentMission, 4);
  game.version += 1;
  store.WriteGame(ann, game);
  EXPECT_EQ(Ask().currentMission, 4);
  OptionsBytes options;
  options.hasGameOptions = false;
  store.WriteOptions(ann, options.Set("VocabLevel", 3));
  EXPECT_EQ(Ask().currentMission, 1);
  EXPECT_EQ(host.block.vocabLevel, 3);
}

TEST_F(Progress, ANetworkedStoreIsAskedThroughItsTeacher) {
  Lay(Kind::kTeachers);
  Learn(ann, 7);
  Learn(store.AddStudent(store.AddClass(reyes, "Group"), "Mei"), 9);
  store.WriteOptions(StoreBuilder::ClassList(reyes), OptionsBytes().Set("VocabLevel", 4, kLate));
  store.Finish();
  EXPECT_TRUE(host.Teacher(2).Class(1).Student(1).Call(KIV_STUDENT_PROGRESS));
  EXPECT_STREQ(host.block.studentName, "Mei");
  EXPECT_EQ(host.block.vocabLevel, 4);
  EXPECT_EQ(host.block.currentMission, 9);
}

}  // namespace
}  // namespace kivtest
