#include "records/tutor_options_dob.h"

#include "records/standard_course.h"

namespace kivstore {
namespace {

constexpr int16_t kNoSetting = -1;

}  // namespace

STeacherOptionsDob::STeacherOptionsDob() : SFieldRecord(Uncleared()) {
  Clear();
}

STeacherOptionsDob::STeacherOptionsDob(const STeacherOptionsDob& other)
    : SFieldRecord(Uncleared()) {
  CopyFields(other);
}

void STeacherOptionsDob::Clear() {
  SFieldRecord::Clear();
  LayStandardCourse(missions);
  SetOption(&SKivTeacherOptionsDob::AutoGameSaving, true);
  SetOption(&SKivTeacherOptionsDob::SeparateLastName, true);
}

STeacherOptionsGameDob* STeacherOptionsDob::GetGameOptions() const {
  return gameOptions != nullptr && AsRecord<STeacherOptionsGameDob>(*gameOptions) != nullptr
             ? static_cast<STeacherOptionsGameDob*>(gameOptions)
             : nullptr;
}

STOMissionDob* STeacherOptionsDob::MissionAt(int mission) {
  const bool there = mission >= 1 && missions.Grow(mission);
  return there ? &missions.At(mission - 1) : nullptr;
}

int16_t STeacherOptionsDob::GetMissionSetting(int activity, int mission) {
  const STOMissionDob* const settings = MissionAt(mission);
  const STOMissionDob::SettingField field = STOMissionDob::FieldOf(activity);
  return settings != nullptr && field != nullptr ? (settings->*field).value : kNoSetting;
}

void STeacherOptionsDob::SetMissionSetting(int activity, int mission, int16_t value) {
  STOMissionDob* const settings = MissionAt(mission);
  const STOMissionDob::SettingField field = STOMissionDob::FieldOf(activity);
  if (settings != nullptr && field != nullptr) {
    settings->SetOption(field, value);
  }
}

void STeacherOptionsDob::TouchMissionSetting(int activity, int mission) {
  STOMissionDob* const settings = MissionAt(mission);
  const STOMissionDob::SettingField field = STOMissionDob::FieldOf(activity);
  if (settings == nullptr || field == nullptr) {
    return;
  }
  (settings->*field).MarkFresh();
  settings->SetDirty(true);
}

}  // namespace kivstore
