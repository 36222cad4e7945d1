#include "app/missions.h"

#include <algorithm>

#include "records/activity.h"

namespace kivstore {
namespace {

constexpr int32_t kFirstMission = 1;

}  // namespace

SMissions MissionsOf(const STeacherOptionsGameDob* progress, bool learnedNewKeys) {
  const int32_t entered =
      progress != nullptr ? progress->CurrentMissionNumber.value : kFirstMission;
  const bool lessonDone = progress != nullptr && progress->IsDone(kActivityLesson, entered);
  const int32_t current = learnedNewKeys || lessonDone ? entered : entered - 1;
  return {std::max(current, kFirstMission), std::max(entered - 1, kFirstMission)};
}

}  // namespace kivstore
