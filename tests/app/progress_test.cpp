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
    int mission, learned, lessonDone;
    int32_t current, previous;
  } rows[] = {{1, 0, 2, 1, 1},
              {1, 1, 2, 1, 1},
              {1, 0, 1, 1, 1},
              {2, 0, 1, 1, 1},
              {2, 1, 1, 2, 1},
              {5, 0, 25, 4, 4},
              {5, 1, 1, 5, 4},
              {5, 0, 5, 5, 4},
              {5, 0, 4, 4, 4},
              {5, 0, 6, 4, 4},
              {25, 0, 25, 25, 24},
              {26, 0, 25, 25, 25},
              {0, 1, 1, 1, 1},
              {-7, 0, 1, 1, 1},
              {-32768, 1, 1, 1, 1},
              {26, 1, 25, 26, 25},
              {32767, 1, 1, 32767, 32766}};
  for (const auto& row : rows) {
    Learn(ann, row.mission, row.learned != 0);
    store.WriteOptions(ann, OptionsBytes().SetMission(row.mission).SetLessonDone(row.lessonDone));
    EXPECT_EQ(Ask().currentMission, row.current) << "mission " << row.mission;
    EXPECT_EQ(host.block.previousMission, row.previous) << "mission " << row.mission;
  }
}

TEST_F(Progress, TheNewestDecisionOfTheThreeLevelsCounts) {
  // The times of the store's, the class's and the student's, and which counts.
  const std::tuple<uint32_t, uint32_t, uint32_t, int32_t> rows[] = {
      {kEarly, kLate, kEarly, 3},   {kLate, kEarly, kEarly, 2}, {kEarly, kEarly, kLate, -4},
      {kEarly, kEarly, kEarly, -4}, {kEarly, 0, 0, 2},          {0, 0, 0, -4}};
  for (const auto& [ofStore, ofClass, ofStudent, vocabLevel] : rows) {
    store.WriteOptions(classes, OptionsBytes().Set("VocabLevel", 2, ofStore));
    store.WriteOptions(room, OptionsBytes().Set("VocabLevel", 3, ofClass));
    store.WriteOptions(ann, OptionsBytes().Set("VocabLevel", -4, ofStudent));
    EXPECT_EQ(Ask().vocabLevel, vocabLevel);
  }
}

TEST_F(Progress, WhatIsMissingOrOfAnotherKindCountsAsNothingDone) {
  EXPECT_EQ(Ask().currentMission, 1);
  EXPECT_EQ(host.block.previousMission, 1);
  EXPECT_EQ(host.block.vocabLevel, 1);
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
