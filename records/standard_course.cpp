#include "records/standard_course.h"

#include <algorithm>

namespace kivstore {
namespace {

using R = STOMissionDob;

// By mission: the activity it is built around.
constexpr R::SettingField kCourse[kMissionCount] = {
    &R::KeyFigures,       &R::WindshieldTypers, &R::KeyFigures,       &R::Typeline,
    &R::DictationStation, &R::WarpSpeed,        &R::Typeline,         &R::DictationStation,
    &R::WindshieldTypers, &R::DictationStation, &R::Typeline,         &R::WarpSpeed,
    &R::Typeline,         &R::DictationStation, &R::WarpSpeed,        &R::WarpSpeed,
    &R::KeyFigures,       &R::WindshieldTypers, &R::Typeline,         &R::WarpSpeed,
    &R::WindshieldTypers, &R::WarpSpeed,        &R::DictationStation, &R::KeyFigures,
    &R::KeyFigures};

constexpr int32_t kWithoutTypeline = 3;

}  // namespace

void LayStandardCourse(SMissionList& missions) {
  const int32_t count = std::min<int32_t>(missions.GetCount(), kMissionCount);
  for (int32_t i = 0; i < count; ++i) {
    STOMissionDob& mission = missions.At(i);
    if (i < kWithoutTypeline) {
      mission.Typeline.value = 0;
    }
    (mission.*kCourse[i]).value = 1;
  }
}

}  // namespace kivstore
