// What the options do beyond the laws of all records: missions, activities, the per-game record.
#include <gtest/gtest.h>

#include <map>

#include "records/error_dob.h"
#include "records/lesson_dob.h"
#include "records/tutor_options_dob.h"
#include "tests/records/record_model.h"
#include "tests/support/failing_memory.h"

namespace kivtest {
namespace {

using namespace kivstore;
using Record = STeacherOptionsGameDob;
using DoneField = SStamped<SHandleArray<bool>> Record::*;

constexpr int kNoMissions[] = {0, -5, INT32_MIN, 32768, INT32_MAX};

const std::map<int, DoneField> kActivities = {
    {0, &Record::DictationStationDone}, {1, &Record::KeyFiguresDone}, {2, &Record::LessonDone},
    {4, &Record::NotebookDone},         {5, &Record::TypelineDone},   {6, &Record::WarpSpeedDone},
    {7, &Record::WindshieldTypersDone},
};

TEST(MissionDone, IsKeptByActivityAndMission) {
  Record record;
  std::map<std::pair<int, int>, bool> model;
  Draw draw(1);
  for (int round = 0; round < 500; ++round) {
    const int code = draw.Between(-1, 8), mission = draw.Between(-2, 45);
    const bool done = draw.OneIn(2), noted = draw.OneIn(4);
    record.SetDirty(false);
    if (!kActivities.contains(code)) {
      record.SetDone(code, mission, done);
      EXPECT_FALSE(record.IsDirty() || record.IsDone(code, mission)) << code;
      continue;
    }
    auto& field = record.*kActivities.at(code);
    field.differs = noted;
    const bool isThere = mission >= 1 && mission <= field.value.GetCount();
    const bool changes = !isThere || model[{code, mission}] != done || noted;
    record.SetDone(code, mission, done);
    model[{code, mission}] = done && mission >= 1;
    EXPECT_EQ(record.IsDirty(), changes) << code << ' ' << mission;
    EXPECT_EQ(field.stamp.IsFresh(), changes);
    EXPECT_FALSE(field.differs);
    for (const auto& [place, isDone] : model) {
      ASSERT_EQ(record.IsDone(place.first, place.second), isDone) << place.first;
    }
  }
}

TEST(MissionDone, IsMarkedWholeWhereThereIsNoMission) {
  for (const int mission : kNoMissions) {
    Record record;
    record.SetDone(2, mission, true);
    EXPECT_FALSE(record.IsDone(2, mission)) << mission;
    EXPECT_EQ(record.LessonDone.value.GetCount(), 25) << mission;
    EXPECT_TRUE(record.LessonDone.stamp.IsFresh()) << mission;
  }
  const std::pair<void (Record::*)(bool), DoneField> kMarks[] = {
      {&Record::MarkNotebookChanged, &Record::NotebookDone},
      {&Record::MarkTypelineChanged, &Record::TypelineDone},
      {&Record::MarkWindshieldTypersChanged, &Record::WindshieldTypersDone},
      {&Record::MarkWarpSpeedChanged, &Record::WarpSpeedDone}};
  for (const auto& [mark, field] : kMarks) {
    Record record;
    (record.*field).stamp = SDateTime(5);
    for (const bool fresh : {false, true}) {
      (record.*mark)(fresh);
      EXPECT_EQ((record.*field).stamp.Raw(), fresh ? kFresh : 0);
      EXPECT_EQ(record.IsDirty(), fresh);
    }
  }
}

TEST(MissionSettings, AreThoseOfEachActivity) {
  const std::map<int, STOMissionDob::SettingField> kSettings = {
      {0, &STOMissionDob::DictationStation}, {1, &STOMissionDob::KeyFigures},
      {4, &STOMissionDob::Notebook},         {5, &STOMissionDob::Typeline},
      {6, &STOMissionDob::WarpSpeed},        {7, &STOMissionDob::WindshieldTypers}};
  STeacherOptionsDob record;
  for (int code = -1; code <= 8; ++code) {
    const auto value = static_cast<int16_t>(100 + code);
    const auto setting = kSettings.find(code);
    const bool exists = setting != kSettings.end();
    for (const bool changes : {exists, false}) {
      record.SetDirty(false);
      record.SetMissionSetting(code, 25, value);
      EXPECT_EQ(record.IsDirty(), changes) << code;
      EXPECT_EQ(record.GetMissionSetting(code, 25), exists ? value : -1);
    }
    record.missions.At(24).Notebook.differs = true;
    record.TouchMissionSetting(code, 25);
    EXPECT_EQ(record.missions.At(24).IsDirty(), exists) << code;
    EXPECT_EQ(record.HasDifferences(), code != 4) << code;
    if (exists) {
      EXPECT_TRUE((record.missions.At(24).*setting->second).stamp.IsFresh()) << code;
      EXPECT_EQ((record.missions.At(24).*setting->second).value, value);
    }
  }
  for (const int mission : kNoMissions) {
    EXPECT_EQ(record.GetMissionSetting(4, mission), -1) << mission;
    record.SetMissionSetting(4, mission, 1);
    record.TouchMissionSetting(4, mission);
  }
  EXPECT_EQ(record.missions.GetCount(), 25);
  EXPECT_EQ(record.GetMissionSetting(5, 40), 2);
  EXPECT_EQ(record.missions.GetCount(), 40);
}

TEST(MissionList, GrowsInStepsAndKeepsItsLengthWithoutMemory) {
  constexpr int kSteps[][2] = {{25, 28}, {26, 28}, {40, 40}, {47, 50}, {100, 108}, {32767, 32768}};
  for (const auto& [count, capacity] : kSteps) {
    FailingMemory memory;
    SMissionList missions;
    const int most = std::min(capacity, SMissionList::kMaxMissions);
    EXPECT_FALSE(missions.Grow(32768) || missions.SetCount(32768) || missions.SetCount(-1));
    EXPECT_TRUE(missions.Grow(count));
    EXPECT_EQ(missions.GetCount(), count);
    EXPECT_EQ(memory.largest, capacity * static_cast<int64_t>(sizeof(STOMissionDob))) << count;
    memory.exhausted = true;
    EXPECT_TRUE(missions.Grow(most) && missions.Grow(2));
    EXPECT_FALSE(missions.Grow(most + 1) || missions.SetCount(most + 1));
    EXPECT_EQ(missions.GetCount(), most);
    memory.exhausted = false;
    EXPECT_TRUE(missions.SetCount(0) && missions.SetCount(1));
    EXPECT_EQ(missions.At(0).KeyFigures.value, 2);
  }
}

TEST(MissionList, BelievesNoCountThatTheFileDoesNotBack) {
  STeacherOptionsDob record;
  for (const size_t count : {0, 1, 24, 25, 30, 300}) {
    OptionsBytes options;
    options.missions.resize(count);
    ASSERT_TRUE(Fill(record, BytesOf(options.Fields())));
    EXPECT_EQ(BytesOf(record), BytesOf(options.Fields()));
    EXPECT_EQ(record.IsEqual(STeacherOptionsDob()), count == 25);
  }
  std::string bytes = BytesOf(OptionsBytes().Fields());
  EXPECT_FALSE(Fill(record, bytes.replace(bytes.size() - 25 * 60 - 9 - 2, 2, "\xFF\xFF")));
  EXPECT_LE(record.missions.GetCount(), 27);
  EXPECT_EQ(record.GetMissionSetting(5, 5), 2);
  // A text may lack 256 missions in a row, whatever else it lacks.
  const PrefFile pref;
  OptionsBytes options;
  options.missions.resize(300);
  RecordFields fields = options.Fields();
  fields.erase(fields.begin());
  EXPECT_FALSE(record.LoadFromPref(pref.Write(TextOf(fields, "O")), "O"));
  EXPECT_EQ(record.missions.GetCount(), 300);
  for (const int place : {256, 257}) {
    const std::string text = std::to_string(place) + "_Typeline=8\r\n";
    EXPECT_FALSE(record.LoadFromPref(pref.Write("[O_Missions]\r\nCount=65535\r\n" + text), "O"));
    EXPECT_LE(record.missions.GetCount(), 520);
    EXPECT_EQ(record.GetMissionSetting(5, place + 1), place == 256 ? 8 : 2);
  }
}

void Drop(STeacherOptionsDob& options) {
  delete options.gameOptions;
  options.gameOptions = nullptr;
}

TEST(GameOptionsOfTheTeacher, FollowTheOthersPresence) {
  STeacherOptionsDob with, without;
  Drop(without);
  EXPECT_FALSE(with.IsEqual(without) || without.IsEqual(with));
  with.GetGameOptions()->Speed.value = 33;
  without.MarkDifferences(with);
  with.MarkDifferences(without);
  EXPECT_FALSE(without.HasDifferences() || with.HasDifferences());
  without.Merge(with);
  EXPECT_TRUE(with.IsEqual(without));
  EXPECT_EQ(without.GetGameOptions()->Speed.value, 33);
  Drop(without);
  without.ClearStamps();
  with.Merge(without);
  EXPECT_EQ(with.gameOptions, nullptr);
  with.SetDirty(false);
  EXPECT_FALSE(with.IsDirty());
  EXPECT_EQ(with.GetModified().Raw(), 0u);
  EXPECT_TRUE(with.IsEqual(without));
  with.Clear();
  EXPECT_NE(with.GetGameOptions(), nullptr);
  with.Copy(without);
  EXPECT_EQ(with.GetGameOptions(), nullptr);
}

TEST(GameOptionsOfTheTeacher, AreLeftOutOfBothFormsWithTheirPlaceKept) {
  OptionsBytes bytes;
  bytes.hasGameOptions = false;
  const RecordFields fields = bytes.Set("StudentsHavePassword", 1).Fields();
  STeacherOptionsDob record, read, usual;
  ASSERT_TRUE(Fill(record, BytesOf(fields)));
  Drop(record);
  EXPECT_EQ(Differing(record, fields), "");
  const PrefFile pref;
  const SFileSpec spec = pref.Write("");
  ASSERT_TRUE(record.SaveToPref(spec, "O"));
  EXPECT_EQ(pref.Text(), TextOf(fields, "O"));
  ASSERT_TRUE(record.DeleteFromPref(spec, "O"));
  EXPECT_EQ(pref.Text().find('='), std::string::npos);
  ASSERT_TRUE(usual.SaveToPref(spec, "O"));
  Drop(read);
  EXPECT_TRUE(read.LoadFromPref(spec, "O"));
  EXPECT_NE(read.GetGameOptions(), nullptr);
}

TEST(Records, AreDirtyWithAChild) {
  STeacherOptionsDob options;
  options.SetDirty(false);
  EXPECT_FALSE(options.IsDirty());
  options.GetGameOptions()->SetOption(&STeacherOptionsGameDob::Accuracy, 95);
  EXPECT_TRUE(options.IsDirty());
  SDBErrorDob numbered;
  numbered.errorDob.SetDirty(true);
  EXPECT_TRUE(numbered.IsDirty() && numbered.GetModified().IsFresh());
  numbered.SetDirty(false);
  EXPECT_FALSE(numbered.errorDob.IsDirty());
}

// A record of the family has only the family's fields in common with the product's.
TEST(Records, ShareTheirFamilysPart) {
  STeacherOptionsDob tutor;
  SKivTeacherOptionsDob framework;
  framework.SoundOn = {9, SDateTime(5)};
  tutor.VocabLevel.value = 4;
  tutor.Merge(framework);
  EXPECT_EQ(tutor.SoundOn.value, 9);
  framework.SoundOn.value = 8;
  tutor.Copy(framework);
  EXPECT_EQ(tutor.SoundOn.value, 8);
  EXPECT_EQ(tutor.VocabLevel.value, 4);
  tutor.MarkDifferences(framework);
  EXPECT_FALSE(tutor.HasDifferences());
  tutor.SoundOn.value = 7;
  framework.Copy(tutor);
  EXPECT_EQ(framework.SoundOn.value, 7);
  EXPECT_TRUE(tutor.IsA(framework));
  EXPECT_FALSE(framework.IsA(tutor) || framework.IsEqual(tutor));
  SKivTeacherOptionsGameDob plain;
  Record product;
  product.Copy(plain);
  EXPECT_TRUE(product.IsEqual(Record()) && product.IsA(plain));
  EXPECT_FALSE(plain.IsA(product) || plain.IsEqual(product));
}

TEST(Records, AreCopiedByConstruction) {
  STeacherOptionsDob record;
  record.SetMissionSetting(4, 28, 5);
  record.GetGameOptions()->Speed.value = 44;
  const STeacherOptionsDob copy(record);
  EXPECT_TRUE(copy.IsEqual(record));
  record.SetMissionSetting(4, 28, 6);
  EXPECT_FALSE(copy.IsEqual(record));
  const SKivTeacherOptionsDob base(static_cast<const SKivTeacherOptionsDob&>(record));
  EXPECT_NE(base.gameOptions, record.gameOptions);
  EXPECT_TRUE(base.gameOptions->IsEqual(*record.gameOptions));
}

// The product's own decide two of the framework's options afresh.
TEST(Records, BeginCleanButForTheOptions) {
  STeacherOptionsDob tutor;
  SKivTeacherOptionsDob framework;
  EXPECT_TRUE(tutor.IsDirty() && framework.IsDirty());
  EXPECT_FALSE(Record().IsDirty() || STOMissionDob().IsDirty() || SLessonDob().IsDirty() ||
               SDErrorDob().IsDirty() || SDBErrorDob().IsDirty());
  std::string fresh;
  tutor.ForEachField([&](const std::string& key, auto& field) {
    fresh += field.stamp.IsFresh() ? key + " " : "";
  });
  EXPECT_EQ(fresh, "SeparateLastName AutoGameSaving ");
  EXPECT_EQ(framework.gameOptions->GetClassId(), SKivTeacherOptionsGameDob::StaticClassId());
}

}  // namespace
}  // namespace kivtest
