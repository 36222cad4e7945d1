// Both chains of roster commands, on each kind of store; and how far a student has come.
#include "platform/platform.h"
#include "tests/app/call_fixture.h"
#include "tests/support/fault_file_services.h"

namespace kivtest {
namespace {

using namespace kivstore;

class Commands : public AnnsStore {
 protected:
  explicit Commands(Kind kind = Kind::kTeachers) : AnnsStore(kind) {}
  void FillCaches() {
    host.Call(KIV_CACHE_TEACHERS);
    EXPECT_TRUE(host.Teacher(1).Call(KIV_CACHE_CLASSES));
    EXPECT_TRUE(host.Class(1).Call(KIV_CACHE_STUDENTS));
  }
};

class BothChains : public Commands, public testing::WithParamInterface<Kind> {
 protected:
  BothChains() : Commands(GetParam()) {}
};

INSTANTIATE_TEST_SUITE_P(Kinds, BothChains,
                         testing::Values(Kind::kLocal, Kind::kShared, Kind::kTeachers));

TEST_P(BothChains, ThePlainChainWalksTheWholeRosterAndChangesNothing) {
  const auto before = store.Snapshot();
  EXPECT_EQ(host.Answer(KIV_ANY_ENTRIES), "yes 0 0 0 |0 |0 ");
  EXPECT_EQ(host.Answer(KIV_COUNT_TEACHERS), "yes 2 0 0 |0 |0 ");  // or the classes at the top
  EXPECT_EQ(host.Teacher(1).Answer(KIV_COUNT_CLASSES), "yes 2 2 0 |0 |0 ");
  EXPECT_EQ(host.Class(1).Answer(KIV_CLASS_NAME), "yes 2 2 0 |0 Room 12|0 ");
  EXPECT_EQ(host.Answer(KIV_COUNT_STUDENTS), "yes 2 2 3 |0 Room 12|0 ");
  int number = 0;
  for (const std::string student : {"0 Abe Young", "1 Ann Lee", "2 Mei"}) {
    EXPECT_EQ(host.Student(++number).Answer(KIV_STUDENT_PROGRESS),
              "yes 2 2 3 |0 Room 12|" + student);
  }
  EXPECT_EQ(host.Class(2).Answer(KIV_COUNT_STUDENTS), "yes 2 2 0 |1 Room 12|2 Mei");
  EXPECT_EQ(store.Snapshot(), before);
}

TEST_P(BothChains, TheCachedChainReadsEachListOnceAndChangesNothing) {
  const auto before = store.Snapshot();
  const bool networked = host.block.mode != kLocalMode;
  const std::string done = networked ? "yes 2" : "no 0", top = networked ? "yes 2" : "yes 0";
  const std::string lists = networked ? " 2 3 Ms Hill|" : " 2 3 |";
  EXPECT_EQ(host.Answer(KIV_CACHE_TEACHERS), done + " 0 0 |0 |0 ");
  EXPECT_EQ(host.Teacher(1).Answer(KIV_CACHE_CLASSES), top + " 2 0 |0 |0 ");
  EXPECT_EQ(host.Class(1).Answer(KIV_CACHE_STUDENTS), top + " 2 3 |0 |0 ");
  EXPECT_EQ(store.Snapshot(), before);

  folder.Remove("Classes.zep");
  FaultFileServices watched(*Platform().files);
  const SPlatformOverride<IFileServices> installed(Platform().files, &watched);
  EXPECT_EQ(host.Answer(KIV_CACHED_TEACHER_NAME), done + lists + "0 |0 ");
  EXPECT_EQ(host.ListedClass(2).Answer(KIV_CACHED_CLASS_NAME), top + lists + "1 Room 14|0 ");
  EXPECT_EQ(host.Class(1).Student(3).Answer(KIV_CACHED_STUDENT_NAME),
            top + lists + "0 Room 14|2 Mei");
  EXPECT_TRUE(watched.Log().empty());
}

TEST_P(BothChains, AnIndexOutsideItsListIsAnEntryThatIsNotThere) {
  FillCaches();
  auto& block = host.block;
  block.currentMission = block.studentIndex = block.studentCount = block.classCount = 77;
  const auto fail = [&](int32_t number, std::initializer_list<int> commands) {
    for (const int command : commands) {
      EXPECT_FALSE(host.Call(command)) << number << " command " << command;
    }
  };
  for (const int32_t number : {4, 0, -1, INT32_MIN, INT32_MAX, 0x10001}) {
    host.Teacher(1).Class(1).Student(number);
    fail(number, {KIV_STUDENT_PROGRESS, KIV_CACHED_STUDENT_NAME});
    host.Student(1).block.classListIndex = number;
    fail(number, {KIV_CLASS_NAME, KIV_CACHED_CLASS_NAME});
    host.block.classIndex = number != 0 ? number : 2;  // the first of all is 0
    fail(number, {KIV_COUNT_STUDENTS, KIV_STUDENT_PROGRESS, KIV_CACHED_STUDENT_NAME});
    host.Teacher(number).Class(1);
    fail(number, {KIV_TEACHER_NAME, KIV_CACHED_TEACHER_NAME});
    if (host.block.mode == kNetworkedMode) {
      fail(number, {KIV_COUNT_CLASSES, KIV_CLASS_NAME, KIV_COUNT_STUDENTS, KIV_STUDENT_PROGRESS});
    }
  }
  // What a failing command does not reach keeps the host's values.
  EXPECT_EQ(block.className + std::string(block.studentName), "");
  EXPECT_EQ(
      std::tuple(block.currentMission, block.studentIndex, block.studentCount, block.classCount),
      std::tuple(77, 77, 77, 77));
}

TEST_F(Commands, ACountOfZeroFailsForClassesButNotForStudents) {
  store.RemoveFile(StoreBuilder::ClassList(reyes) + "/index.lok");
  store.RemoveFile(students + "/index.lok");
  host.block.classCount = host.block.studentCount = 77;
  EXPECT_EQ(host.Teacher(2).Answer(KIV_COUNT_CLASSES), "no 0 0 77 |0 |0 ");
  EXPECT_EQ(host.Teacher(1).Class(1).Answer(KIV_COUNT_STUDENTS), "yes 0 0 0 |0 |0 ");
}

TEST_F(Commands, TheCachesKeepTheirTagsAndRefuseAnotherTeacherOrClass) {
  FillCaches();
  EXPECT_FALSE(host.Teacher(2).Call(KIV_CACHED_CLASS_NAME));
  EXPECT_FALSE(host.Student(1).Call(KIV_CACHED_STUDENT_NAME));
  EXPECT_FALSE(host.Teacher(1).Class(2).Call(KIV_CACHED_STUDENT_NAME));
  EXPECT_TRUE(host.Class(1).Call(KIV_CACHED_STUDENT_NAME));
  // Reading the teachers again leaves the lower lists valid.
  EXPECT_TRUE(host.Call(KIV_CACHE_TEACHERS));
  EXPECT_TRUE(host.Call(KIV_CACHED_STUDENT_NAME));
  // The students' tag is set before their teacher is looked up.
  LibraryState().caches.teachers.RemoveAll();
  EXPECT_FALSE(host.Class(2).Call(KIV_CACHE_STUDENTS));
  EXPECT_EQ(LibraryState().caches.studentCacheClass, 1);
  // A teacher beyond the cache empties the classes; the old tag then finds nothing.
  EXPECT_TRUE(host.Call(KIV_CACHE_TEACHERS));
  EXPECT_FALSE(host.Teacher(3).Call(KIV_CACHE_CLASSES));
  EXPECT_FALSE(host.Teacher(1).Call(KIV_CACHED_CLASS_NAME));
}

TEST_F(Commands, InALocalStoreTheTeacherNumberIsOnlyATag) {
  Lay(Kind::kLocal);
  EXPECT_TRUE(host.Teacher(-5).Call(KIV_CACHE_CLASSES));
  EXPECT_TRUE(host.Class(1).Call(KIV_CACHED_CLASS_NAME));
  EXPECT_FALSE(host.Teacher(1).Call(KIV_CACHED_CLASS_NAME));
  // The tag has 16 bits: a larger number never fits it again.
  EXPECT_TRUE(host.Teacher(0x10001).Call(KIV_CACHE_CLASSES));
  EXPECT_FALSE(host.Call(KIV_CACHED_CLASS_NAME));
  EXPECT_TRUE(host.Teacher(1).Call(KIV_CACHED_CLASS_NAME));
}

TEST_F(Commands, AfterANetworkedCallALocalOneSeesTheFirstTeachersClasses) {
  EXPECT_EQ(host.Teacher(2).Answer(KIV_TEACHER_NAME), "yes 0 0 0 Mr Reyes|0 |0 ");
  host.block.mode = kLocalMode;
  EXPECT_EQ(host.Answer(KIV_COUNT_CLASSES), "yes 0 2 0 Mr Reyes|0 |0 ");
  EXPECT_EQ(host.ListedClass(2).Answer(KIV_CLASS_NAME), "yes 0 2 0 Mr Reyes|1 Room 14|0 ");
}

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
  } rows[] = {{1, 0, 2, 1, 1},         {1, 1, 2, 1, 1},  {1, 0, 1, 1, 1},      {2, 0, 1, 1, 1},
              {2, 1, 1, 2, 1},         {5, 0, 25, 4, 4}, {5, 1, 1, 5, 4},      {5, 0, 5, 5, 4},
              {5, 0, 4, 4, 4},         {5, 0, 6, 4, 4},  {25, 0, 25, 25, 24},  {26, 0, 25, 25, 25},
              {0, 1, 1, 1, 1},         {-7, 0, 1, 1, 1}, {-32768, 1, 1, 1, 1}, {26, 1, 25, 26, 25},
              {9999, 1, 1, 9999, 9998}};
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
