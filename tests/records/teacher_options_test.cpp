// What the teacher options do beyond their fields: missions, the per-game record, foreign records.
#include <gtest/gtest.h>

#include "records/tutor_options_dob.h"
#include "tests/records/failing_memory.h"
#include "tests/records/memory_archive.h"

namespace kivtest {
namespace {

using namespace kivstore;

TEST(MissionSettings, ExtendTheListAndRefuseWhatCannotBe) {
  STeacherOptionsDob record;
  EXPECT_EQ(record.GetMissionSetting(2, 1), -1);
  EXPECT_EQ(record.GetMissionSetting(3, 1), -1);
  EXPECT_EQ(record.GetMissionSetting(8, 1), -1);
  for (const int mission : {0, -1, 32768, 2147483647, -2147483647 - 1}) {
    EXPECT_EQ(record.GetMissionSetting(4, mission), -1) << mission;
    record.SetMissionSetting(4, mission, 1);
    record.TouchMissionSetting(4, mission);
  }
  EXPECT_EQ(record.missions.GetCount(), 25);
  EXPECT_EQ(record.GetMissionSetting(5, 40), 2);
  EXPECT_EQ(record.missions.GetCount(), 40);
}

TEST(MissionSettings, FollowTheSetterRule) {
  STeacherOptionsDob record;
  record.SetDirty(false);
  record.SetMissionSetting(4, 7, 2);
  EXPECT_FALSE(record.IsDirty());
  record.SetMissionSetting(4, 7, 0);
  EXPECT_EQ(record.GetMissionSetting(4, 7), 0);
  EXPECT_TRUE(record.missions.At(6).IsDirty());
  EXPECT_TRUE(record.missions.At(6).Notebook.stamp.IsFresh());
  EXPECT_TRUE(record.IsDirty());
  EXPECT_TRUE(record.GetModified().IsFresh());
}

TEST(MissionSettings, AreTouchedWithoutAChangeOfValue) {
  STeacherOptionsDob record;
  record.SetDirty(false);
  record.missions.At(6).Typeline.differs = true;
  record.TouchMissionSetting(5, 7);
  EXPECT_EQ(record.GetMissionSetting(5, 7), 1);
  EXPECT_TRUE(record.missions.At(6).Typeline.stamp.IsFresh());
  EXPECT_FALSE(record.HasDifferences());
  EXPECT_TRUE(record.IsDirty());
}

TEST(MissionList, MergesTheCommonLengthAndTakesTheExcess) {
  STeacherOptionsDob longer;
  longer.SetMissionSetting(4, 30, 9);
  STeacherOptionsDob shorter;
  shorter.Merge(longer);
  ASSERT_EQ(shorter.missions.GetCount(), 30);
  EXPECT_EQ(shorter.GetMissionSetting(4, 30), 9);
  STeacherOptionsDob usual;
  longer.Merge(usual);
  EXPECT_EQ(longer.missions.GetCount(), 30);
  usual.Copy(longer);
  EXPECT_TRUE(usual.IsEqual(longer));
  longer.Copy(STeacherOptionsDob());
  EXPECT_EQ(longer.missions.GetCount(), 25);
}

TEST(MissionList, KeepsItsLengthWithoutMemory) {
  SMissionList missions;
  missions.Clear();
  FailingMemory memory;
  memory.exhausted = true;
  EXPECT_FALSE(missions.Grow(33));
  EXPECT_FALSE(missions.SetCount(26));
  EXPECT_EQ(missions.GetCount(), 25);
  EXPECT_EQ(missions.At(24).KeyFigures.value, 2);
}

TEST(MissionList, TakesAnyCountThatTheFileBacks) {
  for (const size_t count : {0, 1, 24, 30, 300}) {
    OptionsBytes bytes;
    bytes.missions.assign(count, MissionBytes());
    if (count > 0) {
      bytes.missions.back().WarpSpeed = 11;
    }
    STeacherOptionsDob record;
    ASSERT_TRUE(Fill(record, bytes.Bytes().substr(8))) << count;
    ASSERT_EQ(record.missions.GetCount(), static_cast<int>(count));
    if (count > 0) {
      EXPECT_EQ(record.GetMissionSetting(6, static_cast<int>(count)), 11);
    }
  }
}

TEST(MissionList, BelievesNoCountThatTheFileDoesNotBack) {
  OptionsBytes options;
  std::string bytes = options.Bytes().substr(8);
  const size_t missions = bytes.size() - 25 * 60 - 9;
  ASSERT_EQ(bytes.substr(missions - 2, 2), std::string("\0\x19", 2));
  bytes.replace(missions - 2, 2, "\xFF\xFF");
  STeacherOptionsDob record;
  EXPECT_FALSE(Fill(record, bytes));
  EXPECT_LE(record.missions.GetCount(), 27);
  EXPECT_EQ(record.GetMissionSetting(5, 4), 1);
}

TEST(GameOptionsOfTheTeacher, FollowTheOthersPresence) {
  STeacherOptionsDob with;
  STeacherOptionsDob without;
  delete without.gameOptions;
  without.gameOptions = nullptr;
  EXPECT_FALSE(with.IsEqual(without));
  with.GetGameOptions()->Speed.value = 33;
  without.Merge(with);
  ASSERT_NE(without.GetGameOptions(), nullptr);
  EXPECT_EQ(without.GetGameOptions()->Speed.value, 33);
  EXPECT_TRUE(with.IsEqual(without));

  delete without.gameOptions;
  without.gameOptions = nullptr;
  with.Merge(without);
  EXPECT_EQ(with.gameOptions, nullptr);
  with.SetDirty(false);
  EXPECT_FALSE(with.IsDirty());
  EXPECT_EQ(with.GetModified().Raw(), 0u);
  with.Clear();
  EXPECT_NE(with.GetGameOptions(), nullptr);
}

TEST(GameOptionsOfTheTeacher, AreLeftOutOfTheFileWithTheirPlaceKept) {
  OptionsBytes bytes;
  bytes.hasGameOptions = false;
  bytes.Set("StudentsHavePassword", 1);
  STeacherOptionsDob record;
  ASSERT_TRUE(Fill(record, bytes.Bytes().substr(8)));
  EXPECT_TRUE(record.StudentsHavePassword.value);
  delete record.gameOptions;
  record.gameOptions = nullptr;
  STeacherOptionsDob usual;
  EXPECT_EQ(BytesOf(record).size() + 276, BytesOf(usual).size());
}

TEST(GameOptionsOfTheTeacher, CountAsAChild) {
  STeacherOptionsDob record;
  record.SetDirty(false);
  record.GetGameOptions()->SetOption(&STeacherOptionsGameDob::Accuracy, 95);
  EXPECT_TRUE(record.IsDirty());
  STeacherOptionsDob usual;
  record.MarkDifferences(usual);
  EXPECT_TRUE(record.GetGameOptions()->Accuracy.differs);
  EXPECT_TRUE(record.HasDifferences());
  record.SetDirty(false);
  EXPECT_FALSE(record.IsDirty());
  EXPECT_EQ(record.GetGameOptions()->Accuracy.stamp.Raw(), 0u);
}

// A framework record has the framework's options in common with the tutor's, and nothing more.
TEST(TeacherOptions, ShareTheFrameworksPartWithAFrameworkRecord) {
  STeacherOptionsDob tutor;
  SKivTeacherOptionsDob framework;
  framework.SoundOn = {9, SDateTime(5)};
  tutor.VocabLevel.value = 4;
  tutor.Merge(framework);
  EXPECT_EQ(tutor.SoundOn.value, 9);
  EXPECT_EQ(tutor.VocabLevel.value, 4);
  framework.SoundOn.value = 8;
  tutor.Copy(framework);
  EXPECT_EQ(tutor.SoundOn.value, 8);
  EXPECT_EQ(tutor.VocabLevel.value, 4);
  tutor.MarkDifferences(framework);
  EXPECT_FALSE(tutor.HasDifferences());
  EXPECT_FALSE(framework.IsEqual(tutor));
  tutor.SoundOn.value = 7;
  framework.Copy(tutor);
  EXPECT_EQ(framework.SoundOn.value, 7);
  EXPECT_TRUE(tutor.IsA(framework));
  EXPECT_FALSE(framework.IsA(tutor));
}

TEST(TeacherOptions, AreCopiedByConstruction) {
  STeacherOptionsDob record;
  record.SetMissionSetting(4, 28, 5);
  record.GetGameOptions()->Speed.value = 44;
  const STeacherOptionsDob copy(record);
  EXPECT_TRUE(copy.IsEqual(record));
  record.SetMissionSetting(4, 28, 6);
  EXPECT_FALSE(copy.IsEqual(record));
  const SKivTeacherOptionsDob base(static_cast<const SKivTeacherOptionsDob&>(record));
  EXPECT_NE(base.gameOptions, record.gameOptions);
}

}  // namespace
}  // namespace kivtest
