// The state of the lesson a student is in. Storage only: the tutor's playing code computes and
// writes the fields; their units and formulas are its own.
//
// `learnedNewKeys` decides in the progress of a student whether the current mission counts in full.
//
// In a file 226 bytes with 48 keys: the fields as they stand below, shorts 2 bytes, longs 4, bools
// 1, the array 2 and 4 for each key.
#pragma once

#include "records/field_record.h"
#include "records/game_options_dob.h"
#include "records/key_index.h"

namespace kivstore {

class SLessonDob : public SFieldRecord<SLessonDob, SDob> {
 public:
  SLessonDob();

  bool HasLearnedNewKeys() const { return learnedNewKeys; }
  // For a new attempt: everything to its default but learnedNewKeys; the lesson's number follows
  // the mission of `progress`, if there is one.
  void ResetKeepingKeys(const STeacherOptionsGameDob* progress);

  int16_t lesnExStage;      // stage reached within the exercises
  int16_t currentExString;  // exercise string in progress; -1: none
  bool mainString;          // it is a main one
  uint32_t bestTotalTime;
  int16_t bestTotalKeystrokes;
  int16_t bestCorrectKeystrokes;
  uint32_t aveTotalTime;
  int16_t aveTotalKeystrokes;
  int16_t aveCorrectKeystrokes;
  int16_t accRetypes;  // asked for because of accuracy
  int16_t wpmRetypes;  // because of speed
  int16_t generalRetypes;
  int16_t numLinesPassed;
  SHandleArray<int32_t> keyErrorsDuringExercises;  // by key index
  int16_t currentLessonNumber;
  bool learnedNewKeys;  // the new keys of this lesson

  static constexpr auto Fields() {
    using R = SLessonDob;
    return std::tuple(PlainField(&R::lesnExStage, "LesnExStage", 0),
                      PlainField(&R::currentExString, "CurrentExString", -1),
                      PlainField(&R::mainString, "MainString", true),
                      PlainField(&R::bestTotalTime, "BestTotalTime", 0),
                      PlainField(&R::bestTotalKeystrokes, "BestTotalKeystrokes", 0),
                      PlainField(&R::bestCorrectKeystrokes, "BestCorrectKeystrokes", 0),
                      PlainField(&R::aveTotalTime, "AveTotalTime", 0),
                      PlainField(&R::aveTotalKeystrokes, "AveTotalKeystrokes", 0),
                      PlainField(&R::aveCorrectKeystrokes, "AveCorrectKeystrokes", 0),
                      PlainField(&R::accRetypes, "Acc_Retypes", 0),
                      PlainField(&R::wpmRetypes, "WPM_Retypes", 0),
                      PlainField(&R::generalRetypes, "General_Retypes", 0),
                      PlainField(&R::numLinesPassed, "NumLinesPassed", 0),
                      PlainField(&R::keyErrorsDuringExercises, "KeyErrorsDuringExercises",
                                 ArrayDefault<int32_t>{kKeyCount, 0}),
                      PlainField(&R::currentLessonNumber, "CurrentLessonNumber", 1),
                      PlainField(&R::learnedNewKeys, "LearnedNewKeys", false));
  }
};

}  // namespace kivstore
