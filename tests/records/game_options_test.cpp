#include <gtest/gtest.h>

#include "records/game_options_dob.h"
#include "tests/records/memory_archive.h"

namespace kivtest {
namespace {

using namespace kivstore;
using Record = STeacherOptionsGameDob;
using DoneField = SStamped<SHandleArray<bool>> Record::*;

struct ActivityCase {
  int code;
  DoneField field;
};

const ActivityCase kActivities[] = {
    {0, &Record::DictationStationDone}, {1, &Record::KeyFiguresDone}, {2, &Record::LessonDone},
    {4, &Record::NotebookDone},         {5, &Record::TypelineDone},   {6, &Record::WarpSpeedDone},
    {7, &Record::WindshieldTypersDone},
};

TEST(MissionDone, IsKeptByActivity) {
  for (const ActivityCase& activity : kActivities) {
    Record record;
    record.SetDone(activity.code, 3, true);
    for (const ActivityCase& other : kActivities) {
      const bool same = other.code == activity.code;
      EXPECT_EQ(record.IsDone(other.code, 3), same) << activity.code;
      EXPECT_EQ((record.*other.field).stamp.IsFresh(), same) << activity.code;
    }
    EXPECT_FALSE(record.IsDone(activity.code, 4));
    EXPECT_TRUE(record.IsDirty());
  }
}

TEST(MissionDone, KnowsNoOtherActivityAndNoMissionOutside) {
  Record record;
  for (const int code : {3, 8, 9, -1}) {
    record.SetDone(code, 1, true);
    EXPECT_FALSE(record.IsDone(code, 1)) << code;
  }
  EXPECT_FALSE(record.IsDirty());
  for (const int mission : {0, -1, 26, 32768, 2147483647, -2147483647 - 1}) {
    EXPECT_FALSE(record.IsDone(2, mission)) << mission;
  }
}

TEST(MissionDone, GrowsTheArrayByTens) {
  for (const int mission : {26, 30}) {
    Record record;
    record.SetDone(2, mission, true);
    EXPECT_EQ(record.LessonDone.value.GetCount(), mission);
    EXPECT_EQ(record.LessonDone.value.GetCapacity(), 30);
    for (int i = 1; i < mission; ++i) {
      EXPECT_FALSE(record.IsDone(2, i)) << i;
    }
    EXPECT_TRUE(record.IsDone(2, mission));
    EXPECT_TRUE(record.LessonDone.stamp.IsFresh());
  }
}

TEST(MissionDone, ChangesNothingWhereItIsSoAlready) {
  Record record;
  record.SetDone(4, 3, false);
  EXPECT_FALSE(record.IsDirty());
  EXPECT_EQ(record.NotebookDone.stamp.Raw(), 0u);
}

TEST(MissionDone, ConfirmsANotedDifference) {
  Record record;
  record.NotebookDone.differs = true;
  record.SetDone(4, 3, false);
  EXPECT_TRUE(record.IsDirty());
  EXPECT_TRUE(record.NotebookDone.stamp.IsFresh());
  EXPECT_FALSE(record.HasDifferences());
}

TEST(MissionDone, StampsTheArrayForAMissionThatCannotBe) {
  for (const int mission : {0, -5, -2147483647 - 1, 32768, 2147483647}) {
    Record record;
    record.SetDone(2, mission, true);
    EXPECT_EQ(record.LessonDone.value.GetCount(), 25) << mission;
    EXPECT_TRUE(record.LessonDone.stamp.IsFresh()) << mission;
  }
}

TEST(GameOptions, MarksAnArrayAsChangedOrNot) {
  struct {
    void (Record::*mark)(bool);
    DoneField field;
  } const kMarks[] = {{&Record::MarkNotebookChanged, &Record::NotebookDone},
                      {&Record::MarkTypelineChanged, &Record::TypelineDone},
                      {&Record::MarkWindshieldTypersChanged, &Record::WindshieldTypersDone},
                      {&Record::MarkWarpSpeedChanged, &Record::WarpSpeedDone}};
  for (const auto& c : kMarks) {
    Record record;
    (record.*c.field).stamp = SDateTime(5);
    (record.*c.mark)(false);
    EXPECT_EQ((record.*c.field).stamp.Raw(), 0u);
    EXPECT_FALSE(record.IsDirty());
    (record.*c.mark)(true);
    EXPECT_TRUE((record.*c.field).stamp.IsFresh());
    EXPECT_TRUE(record.IsDirty());
  }
}

TEST(GameOptions, MergesArraysWhole) {
  Record here;
  Record there;
  here.SetDone(2, 1, true);
  here.LessonDone.stamp = SDateTime(5);
  there.SetDone(2, 2, true);
  there.LessonDone.stamp = SDateTime(6);
  here.Merge(there);
  EXPECT_FALSE(here.IsDone(2, 1));
  EXPECT_TRUE(here.IsDone(2, 2));
}

TEST(GameOptions, AlwaysTakeTheOthersCompletion) {
  Record here;
  Record there;
  here.AllMissionsCompleted = true;
  here.CurrentMissionNumber.stamp = SDateTime::Fresh();
  here.Merge(there);
  EXPECT_FALSE(here.AllMissionsCompleted);
}

TEST(GameOptions, DifferInTheLengthOfAnArray) {
  Record here;
  Record there;
  there.WarpSpeedDone.value.SetSize(24);
  here.MarkDifferences(there);
  EXPECT_TRUE(here.WarpSpeedDone.differs);
  EXPECT_FALSE(here.IsEqual(there));
}

TEST(GameOptions, OfTheFamilyHoldNothing) {
  SKivTeacherOptionsGameDob plain;
  EXPECT_EQ(BytesOf(plain), "");
  Record product;
  EXPECT_TRUE(product.IsA(plain));
  EXPECT_FALSE(plain.IsA(product));
  EXPECT_FALSE(plain.IsEqual(product));
  product.Accuracy.value = 3;
  product.Copy(plain);
  EXPECT_EQ(product.Accuracy.value, 3);
}

}  // namespace
}  // namespace kivtest
