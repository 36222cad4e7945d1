#include "records/lesson_dob.h"

#include "foundation/application.h"
#include "records/tutor_options_dob.h"

namespace kivstore {
namespace {

// Null without an application, options, or a per-game record in them.
const STeacherOptionsGameDob* CurrentGameOptions() {
  if (gApp == nullptr || gApp->options == nullptr || gApp->options->gameOptions == nullptr) {
    return nullptr;
  }
  return AsRecord<STeacherOptionsGameDob>(*gApp->options->gameOptions);
}

}  // namespace

SLessonDob::SLessonDob() {
  ResetFields();
  SetDirty(false);
}

void SLessonDob::ResetKeepingKeys() {
  const bool hadLearned = learnedNewKeys;
  Clear();
  const STeacherOptionsGameDob* const progress = CurrentGameOptions();
  if (progress != nullptr && currentLessonNumber != progress->CurrentMissionNumber.value) {
    currentLessonNumber = progress->CurrentMissionNumber.value;
    SetDirty(true);
  }
  if (learnedNewKeys != hadLearned) {
    learnedNewKeys = hadLearned;
    SetDirty(true);
  }
}

}  // namespace kivstore
