// What of a text of options a level takes.
#pragma once

#include <vector>

#include "hosts/kivadmin/options/option_levels.h"
#include "hosts/kivadmin/options/options_text.h"

namespace kivadmin {

struct OptionsTaken {
  std::vector<Option> taken;  // as the level has them now
  // What the level decided later and otherwise than the text; and, in the same order, the text's.
  std::vector<Option> kept;
  std::vector<Option> outdated;
  bool hasTimes = false;  // something was taken with the text's own time
};

// Lays the text over a level's options. By the time that the text gives an option:
//
//   later than the level's   value and time are taken
//   the level's own          the same value is no change; another was put there by hand since, and
//                            is decided now
//   earlier                  the level's stays
//   none                     decided now, even if the value is the same
//
// AllMissionsCompleted has no time: another value is taken. Throws HostError as
// OptionsText::ReadOver does, with the level unchanged.
OptionsTaken TakeOptions(kivstore::STeacherOptionsDob& level, OptionsText text);

// Takes the text for the level at `place`, in a dry run up to the writing. What changes nothing
// leaves the store's files alone.
OptionsTaken ImportOptions(const Session& session, const OptionsPlace& place,
                           const OptionsText& text);

}  // namespace kivadmin
