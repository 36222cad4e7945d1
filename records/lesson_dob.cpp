#include "records/lesson_dob.h"

namespace kivstore {

SLessonDob::SLessonDob() {
  ResetFields();
  SetDirty(false);
}

void SLessonDob::ResetKeepingKeys(const STeacherOptionsGameDob* progress) {
  const bool hadLearned = learnedNewKeys;
  Clear();
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
