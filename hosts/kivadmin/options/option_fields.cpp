#include "hosts/kivadmin/options/option_fields.h"

#include "hosts/common/charset.h"
#include "hosts/common/host_error.h"
#include "hosts/common/nearest.h"

namespace kivadmin {
namespace {

using kivhost::HostError;
using kivhost::kWrongUsage;

constexpr Limits kAnyNumber{0, INT16_MAX};

[[noreturn]] void RefuseValue(const std::string& key, const std::string& value,
                              const std::string& wanted) {
  throw HostError(kWrongUsage, key + "=" + value + ": " + wanted);
}

std::string RangeText(Limits limits) {
  return "a number from " + std::to_string(limits.lowest) + " to " + std::to_string(limits.highest);
}

OptionValue ValueOf(bool value) {
  return value;
}
OptionValue ValueOf(int16_t value) {
  return value;
}
OptionValue ValueOf(const MissionFlags& flags) {
  return MissionsIn(flags);
}

void Parse(const std::string& key, const std::string& text, bool& value) {
  const auto parsed = ParseYesNo(text);
  if (!parsed) {
    RefuseValue(key, text, "yes or no is wanted");
  }
  value = *parsed;
}

void Parse(const std::string& key, const std::string& text, int16_t& value) {
  const Limits limits = LimitsOf(key);
  const auto parsed = ParseNumber(text, limits);
  if (!parsed) {
    RefuseValue(key, text, RangeText(limits) + " is wanted");
  }
  value = *parsed;
}

void Parse(const std::string& key, const std::string& text, MissionFlags& value) {
  const auto parsed = ParseMissions(text);
  if (!parsed) {
    RefuseValue(key, text, "missions from 1 to 25 are wanted, as in 1-4,7, or none");
  }
  value = FlagsOf(*parsed);
}

// The option without a stamp: no merge tells its age, the last record always counts.
bool SetUnstamped(kivstore::STeacherOptionsDob& options, const std::string& key,
                  const std::string& text) {
  kivstore::STeacherOptionsGameDob* const game = options.GetGameOptions();
  if (game == nullptr || !kivhost::EqualNoCase(key, kAllMissionsCompleted)) {
    return false;
  }
  Parse(kAllMissionsCompleted, text, game->AllMissionsCompleted);
  game->SetDirty(true);
  return true;
}

}  // namespace

std::vector<Option> ListOptions(kivstore::STeacherOptionsDob& options) {
  std::vector<Option> list;
  bool inGame = false;
  const auto closeGame = [&] {
    if (inGame) {
      list.push_back({kAllMissionsCompleted, options.GetGameOptions()->AllMissionsCompleted,
                      kivstore::SDateTime::None()});
    }
    inGame = false;
  };
  ForEachOption(options, [&](const std::string& key, const auto& field) {
    const bool ofGame = key.starts_with(kGamePrefix);
    if (!ofGame) {
      closeGame();
    }
    inGame = ofGame;
    list.push_back({key, ValueOf(field.value), field.stamp});
  });
  closeGame();
  return list;
}

void SetOption(kivstore::STeacherOptionsDob& options, const std::string& key,
               const std::string& value) {
  bool known = SetUnstamped(options, key, value);
  std::vector<std::string> names{kAllMissionsCompleted};
  ForEachOption(options, [&](const std::string& name, auto& field) {
    names.push_back(name);
    if (known || !kivhost::EqualNoCase(name, key)) {
      return;
    }
    known = true;
    Parse(name, value, field.value);
    field.MarkFresh();
    options.SetDirty(true);
  });
  if (!known) {
    const std::string closest = kivhost::Nearest(key, names);
    throw HostError(kWrongUsage,
                    key + ": there is no such option" +
                        (closest.empty() ? "" : "; did you mean \"" + closest + "\"?"));
  }
}

std::string ValueText(const OptionValue& value) {
  if (const auto* const missions = std::get_if<std::vector<int>>(&value)) {
    return MissionsText(*missions);
  }
  if (const bool* const flag = std::get_if<bool>(&value)) {
    return *flag ? "yes" : "no";
  }
  return std::to_string(std::get<int16_t>(value));
}

std::string TypeText(const Option& option) {
  if (std::holds_alternative<bool>(option.value)) {
    return "yes or no";
  }
  return std::holds_alternative<int16_t>(option.value)
             ? RangeText(LimitsOf(option.key))
             : "missions from 1 to 25, as in 1-4,7, or none";
}

// The course has 25 missions, and a mission's activity is out (0), the one it is built around (1)
// or one among others (2). What other numbers mean is the playing code's.
Limits LimitsOf(const std::string& key) {
  if (key == std::string(kGamePrefix) + "CurrentMissionNumber") {
    return {1, kivstore::kMissionCount};
  }
  return key.starts_with("Missions.") ? Limits{0, 2} : kAnyNumber;
}

std::vector<int> MissionsIn(const MissionFlags& flags) {
  std::vector<int> missions;
  for (int32_t i = 0; i < flags.GetCount(); ++i) {
    if (flags.At(i)) {
      missions.push_back(i + 1);
    }
  }
  return missions;
}

MissionFlags FlagsOf(const std::vector<int>& missions) {
  MissionFlags flags(false);
  flags.ResetTo(kivstore::kMissionCount);
  for (const int mission : missions) {
    flags.SetAt(mission - 1, true);
  }
  return flags;
}

}  // namespace kivadmin
