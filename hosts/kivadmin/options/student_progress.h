// How far a student has come: in the options, which a report asks, and in the automatic game, which
// the tutor goes on from.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hosts/kivadmin/options/option_levels.h"

namespace kivadmin {

// What is unset stays as it is.
struct Progress {
  std::optional<int16_t> mission;
  std::optional<std::vector<int>> lessonsDone;  // missions in rising order
  std::optional<bool> learnedKeys;

  bool IsEmpty() const { return !mission && !lessonsDone && !learnedKeys; }
};

std::string Text(const Progress& progress);

// Decides it now for the student at `place`, in a dry run up to the writing. A student at work
// holds the lock and would write over the game: then nothing changes.
void WriteProgress(const Session& session, const OptionsPlace& place, const Progress& progress);

}  // namespace kivadmin
