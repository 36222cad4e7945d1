// The tutor's own options and the settings of its missions, on top of teacher_options_dob.h. In a
// file they follow the framework's options:
//
//   2 or 1, 8   each option and its stamp, up to AllowPause_Warp
//   2, 60 each  the missions: count, records (mission_list.h)
//   1, 8        AllowPlayandPracticeMode and its stamp
#pragma once

#include "records/mission_list.h"
#include "records/teacher_options_dob.h"

namespace kivstore {

class STeacherOptionsDob : public SFieldRecord<STeacherOptionsDob, SKivTeacherOptionsDob> {
 public:
  STeacherOptionsDob();
  STeacherOptionsDob(const STeacherOptionsDob& other);

  // Lays down the standard course, and turns AutoGameSaving and SeparateLastName on, both with the
  // fresh mark: this product decides them.
  void Clear() override;
  SKivTeacherOptionsGameDob* CreateGameOptions() const override {
    return new (std::nothrow) STeacherOptionsGameDob;
  }
  // The per-game record as the tutor's own; null if there is none or it is of another class.
  STeacherOptionsGameDob* GetGameOptions() const;

  // Of an activity (activity.h) in a mission, counted from 1. A mission beyond the end extends the
  // list with default missions first. -1, or nothing done, for an activity without a field and for
  // a mission below 1 or above 32,767.
  int16_t GetMissionSetting(int activity, int mission);
  void SetMissionSetting(int activity, int mission, int16_t value);
  // As changed now, with the value as it is.
  void TouchMissionSetting(int activity, int mission);

  SStamped<int16_t> VocabLevel;
  SStamped<bool> AllowPrinting;
  SStamped<int16_t> SpacesAfterPeriod;
  SStamped<bool> KeyVoiceOver;
  SStamped<bool> InstructionalDirections;
  SStamped<bool> FatherTimeNarration;
  SStamped<bool> BackgroundMusic;
  SStamped<bool> SoundEffects;
  SStamped<bool> RolloverButtons;
  SStamped<int16_t> TextSize;
  SStamped<bool> AllowPowerBooster;
  SStamped<int16_t> NumberErrorsPowerBooster;
  SStamped<bool> AllowAutoGoalAdj;
  SStamped<int16_t> MinAccuracyGoal;
  SStamped<int16_t> MinWPMGoal;
  SStamped<int16_t> Checkpoint;
  SStamped<bool> AllowPostTest;
  SStamped<int16_t> Teach6Key;
  SStamped<int16_t> GamebreakInterval;
  SStamped<bool> BackgroundAnimationOn;
  SStamped<int16_t> LeftRightGame;
  SStamped<bool> CurrentKeyProvided;
  SStamped<bool> AllowPause_DS;
  SStamped<bool> AllowRepeatLine;
  SStamped<bool> AllowCorrectionDuringTest_DS;
  SStamped<bool> AllowCorrectionDuringTest_Warp;
  SStamped<bool> AllowTimeLimit;
  SStamped<int16_t> TimeLimitWarp;
  SStamped<int16_t> WarpspeedView;
  SStamped<bool> ShowTimer;
  SStamped<bool> AllowPause_Warp;
  SMissionList missions;
  SStamped<bool> AllowPlayandPracticeMode;

  static constexpr auto Fields() {
    using R = STeacherOptionsDob;
    return std::tuple(
        StampedField(&R::VocabLevel, "VocabLevel", 1),
        StampedField(&R::AllowPrinting, "AllowPrinting", true),
        StampedField(&R::SpacesAfterPeriod, "SpacesAfterPeriod", 1),
        StampedField(&R::KeyVoiceOver, "KeyVoiceOver", true),
        StampedField(&R::InstructionalDirections, "InstructionalDirections", true),
        StampedField(&R::FatherTimeNarration, "FatherTimeNarration", true),
        StampedField(&R::BackgroundMusic, "BackgroundMusic", true),
        StampedField(&R::SoundEffects, "SoundEffects", true),
        StampedField(&R::RolloverButtons, "RolloverButtons", false),
        StampedField(&R::TextSize, "TextSize", 2),
        StampedField(&R::AllowPowerBooster, "AllowPowerBooster", true),
        StampedField(&R::NumberErrorsPowerBooster, "NumberErrorsPowerBooster", 12),
        StampedField(&R::AllowAutoGoalAdj, "AllowAutoGoalAdj", true),
        StampedField(&R::MinAccuracyGoal, "MinAccuracyGoal", 50),
        StampedField(&R::MinWPMGoal, "MinWPMGoal", 1),
        StampedField(&R::Checkpoint, "Checkpoint", 0),
        StampedField(&R::AllowPostTest, "AllowPostTest", true),
        StampedField(&R::Teach6Key, "Teach6Key", 1),
        StampedField(&R::GamebreakInterval, "GamebreakInterval", 5),
        StampedField(&R::BackgroundAnimationOn, "BackgroundAnimationOn", true),
        StampedField(&R::LeftRightGame, "LeftRightGame", 0),
        StampedField(&R::CurrentKeyProvided, "CurrentKeyProvided", true),
        StampedField(&R::AllowPause_DS, "AllowPause_DS", true),
        StampedField(&R::AllowRepeatLine, "AllowRepeatLine", true),
        StampedField(&R::AllowCorrectionDuringTest_DS, "AllowCorrectionDuringTest_DS", true),
        StampedField(&R::AllowCorrectionDuringTest_Warp, "AllowCorrectionDuringTest_Warp", true),
        StampedField(&R::AllowTimeLimit, "AllowTimeLimit", false),
        StampedField(&R::TimeLimitWarp, "TimeLimitWarp", 2),
        StampedField(&R::WarpspeedView, "WarpspeedView", 1),
        StampedField(&R::ShowTimer, "ShowTimer", true),
        StampedField(&R::AllowPause_Warp, "AllowPause_Warp", true), ChildField(&R::missions),
        StampedField(&R::AllowPlayandPracticeMode, "AllowPlayandPracticeMode", true));
  }

 private:
  // Null for a mission below 1 or above 32,767, or without memory.
  STOMissionDob* MissionAt(int mission);
};

}  // namespace kivstore
