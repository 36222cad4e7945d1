// The tutor's game record: what a game file holds of a student's progress. It stores, copies and
// transfers; the tutor's playing code fills it.
//
// In a file, behind the fields of kiv_game_dob.h:
//
//   388         errorDob (error_dob.h)
//   2 + 2n      graphData: count, values; n is 25
//   226         lessonDob (lesson_dob.h)
//   2, 1        handSkinTone, displayFinalPayoff
//
// Nothing here has a stamp: a merge takes these fields from the other record whole.
#pragma once

#include "game/kiv_game_dob.h"
#include "records/activity.h"
#include "records/error_dob.h"
#include "records/lesson_dob.h"

namespace kivstore {

class SGameDob : public SFieldRecord<SGameDob, SKivGameDob> {
 public:
  explicit SGameDob(IGameHost* host = nullptr);

  uint32_t GetVersion() const override { return gFileVersion; }
  const SString& GetStartScreen() const override;
  virtual uint32_t GetFileKey() const { return kFileTypeGame; }

  void SetFileSpec(const SFileSpec& spec) { fileSpec = spec; }
  // The keystroke counts and the lesson, for a new attempt.
  void ResetProgress();
  void InitGraphData();  // 25 values, those that are there kept
  void ReleaseGraphData();

  SDErrorDob errorDob;
  SHandleArray<int16_t> graphData{-1};  // -1: no value
  SLessonDob lessonDob;
  int16_t handSkinTone = -1;  // of the hands shown; -1: none chosen
  bool displayFinalPayoff = true;

  static constexpr auto Fields() {
    using R = SGameDob;
    return std::tuple(
        ChildField(&R::errorDob, "ErrorDob"),
        PlainField(&R::graphData, "StudGraphData", ArrayDefault<int16_t>{kMissionCount, -1}),
        ChildField(&R::lessonDob, "LessonDob"), PlainField(&R::handSkinTone, "HandSkinTone", -1),
        PlainField(&R::displayFinalPayoff, "DisplayFinalPayoff", true));
  }
};

}  // namespace kivstore
