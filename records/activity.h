// The activities of a mission, and how many missions the course has. Missions are numbered from 1;
// element i of an array by mission belongs to mission i + 1.
#pragma once

#include <cstdint>

namespace kivstore {

// One number space for all mission operations; 3 is no activity.
enum Activity : int {
  kActivityDictationStation = 0,
  kActivityKeyFigures = 1,
  kActivityLesson = 2,
  kActivityNotebook = 4,
  kActivityTypeline = 5,
  kActivityWarpSpeed = 6,
  kActivityWindshieldTypers = 7,
};

inline constexpr int16_t kMissionCount = 25;

}  // namespace kivstore
