// The options as an administrator sees them: one flat list of keys.
//
//   SoundOn                        the framework's and the tutor's own
//   TOGameDob.LessonDone           the per-game options; a list of missions
//   Missions.4.Typeline            an activity of a mission, counted from 1
#pragma once

#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "hosts/kivadmin/options/option_text.h"
#include "records/tutor_options_dob.h"

namespace kivadmin {

using MissionFlags = kivstore::STeacherOptionsGameDob::BoolArray;

inline constexpr const char* kGamePrefix = "TOGameDob.";
inline constexpr const char* kAllMissionsCompleted = "TOGameDob.AllMissionsCompleted";

// function(key, SStamped<T>&) for every option with a stamp. The one that has none,
// kAllMissionsCompleted, is not among them.
template <class Function>
void ForEachOption(kivstore::STeacherOptionsDob& options, Function function) {
  const auto below = [&](const std::string& prefix) {
    return [&function, prefix](const char* key, auto& field) { function(prefix + key, field); };
  };
  options.ForEachField(below(""));
  if (kivstore::STeacherOptionsGameDob* const game = options.GetGameOptions()) {
    game->ForEachField(below(kGamePrefix));
  }
  for (int32_t i = 0; i < options.missions.GetCount(); ++i) {
    options.missions.At(i).ForEachField(below("Missions." + std::to_string(i + 1) + '.'));
  }
}

// Yes or no, a number, or mission numbers.
using OptionValue = std::variant<bool, int16_t, std::vector<int>>;

struct Option {
  std::string key;
  OptionValue value;
  kivstore::SDateTime stamp;
};

// All options of a record, in the order of the transfer, the missions last.
std::vector<Option> ListOptions(kivstore::STeacherOptionsDob& options);

// Changes one option by its key, letter case ignored, as decided now even if the value is the same.
// Throws HostError, with nothing changed, for an unknown key and for a value that the option does
// not take.
void SetOption(kivstore::STeacherOptionsDob& options, const std::string& key,
               const std::string& value);

// A value as a table and a command line have it.
std::string ValueText(const OptionValue& value);

// What a number option takes.
Limits LimitsOf(const std::string& key);
// What an option takes, in words: "yes or no", "a number from 0 to 2".
std::string TypeText(const Option& option);

std::vector<int> MissionsIn(const MissionFlags& flags);
MissionFlags FlagsOf(const std::vector<int>& missions);

}  // namespace kivadmin
