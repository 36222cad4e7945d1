// Which mission a student has reached, from what the options and the saved game tell.
#pragma once

#include <cstdint>

#include "records/game_options_dob.h"

namespace kivstore {

struct SMissions {
  int32_t current;   // at least 1
  int32_t previous;  // at least 1
};

// A student who has entered a mission without having learned any of its keys in the saved game and
// without having finished its lesson counts one mission lower. Options without a per-game record
// are those of a student at the very start.
SMissions MissionsOf(const STeacherOptionsGameDob* progress, bool learnedNewKeys);

}  // namespace kivstore
