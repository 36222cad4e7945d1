#include "hosts/kivadmin/options/options_import.h"

#include <algorithm>
#include <map>
#include <set>
#include <variant>

namespace kivadmin {
namespace {

using kivstore::SStamped;
using kivstore::STeacherOptionsDob;

using FieldPointer = std::variant<SStamped<int16_t>*, SStamped<bool>*, SStamped<MissionFlags>*>;

std::map<std::string, FieldPointer> FieldsOf(STeacherOptionsDob& options) {
  std::map<std::string, FieldPointer> fields;
  ForEachOption(options, [&](const std::string& key, auto& field) { fields[key] = &field; });
  return fields;
}

// A per-game record and missions that only the text has get a place.
void MakeRoom(STeacherOptionsDob& level, const STeacherOptionsDob& text) {
  if (level.gameOptions == nullptr && text.gameOptions != nullptr) {
    level.gameOptions = level.CreateGameOptions();
  }
  level.missions.Grow(text.missions.GetCount());
}

struct Keys {
  std::set<std::string> taken;
  std::set<std::string> kept;
};

// True if it was taken with the text's time.
template <class T>
bool TakeField(const std::string& key, SStamped<T>& own, const SStamped<T>& text, Keys& keys) {
  const bool isEqual = own.value == text.value;
  if (text.stamp < own.stamp || (text.stamp == own.stamp && isEqual)) {
    if (!isEqual) {
      keys.kept.insert(key);
    }
    return false;
  }
  const bool isTimed = text.stamp > own.stamp && !text.stamp.IsFresh();
  own.value = text.value;
  own.MarkFresh();
  own.stamp = isTimed ? text.stamp : own.stamp;
  keys.taken.insert(key);
  return isTimed;
}

void TakeUntimed(STeacherOptionsDob& level, const STeacherOptionsDob& text, Keys& keys) {
  kivstore::STeacherOptionsGameDob* const own = level.GetGameOptions();
  const kivstore::STeacherOptionsGameDob* const game = text.GetGameOptions();
  if (own == nullptr || game == nullptr ||
      own->AllMissionsCompleted == game->AllMissionsCompleted) {
    return;
  }
  own->AllMissionsCompleted = game->AllMissionsCompleted;
  keys.taken.insert(kAllMissionsCompleted);
}

std::vector<Option> Listed(STeacherOptionsDob& options, const std::set<std::string>& keys) {
  std::vector<Option> list = ListOptions(options);
  std::erase_if(list, [&](const Option& option) { return !keys.contains(option.key); });
  return list;
}

// What keeps the text's time, under the lock that ChangeOptions holds: it stores what is decided
// now, and over a missing file everything.
void StoreTimes(const Session& session, STeacherOptionsDob& options, const OptionsPlace& place) {
  kivstore::SFileSpec spec = OptionsFileOf(session, place);
  if (spec.IsExistingFile()) {
    session.Need("write the options", spec, [&] { return options.SaveToFile(spec); });
  }
}

}  // namespace

OptionsTaken TakeOptions(STeacherOptionsDob& level, OptionsText text) {
  STeacherOptionsDob given;
  text.ReadOver(level, given);
  MakeRoom(level, given);
  const std::map<std::string, FieldPointer> fields = FieldsOf(level);
  OptionsTaken result;
  Keys keys;
  ForEachOption(given, [&](const std::string& key, const auto& field) {
    using Pointer = std::remove_cvref_t<decltype(field)>*;
    const auto own = fields.find(key);
    if (own != fields.end() && TakeField(key, *std::get<Pointer>(own->second), field, keys)) {
      result.hasTimes = true;
    }
  });
  TakeUntimed(level, given, keys);
  level.SetDirty(true);
  result.taken = Listed(level, keys.taken);
  result.kept = Listed(level, keys.kept);
  result.outdated = Listed(given, keys.kept);
  return result;
}

OptionsTaken ImportOptions(const Session& session, const OptionsPlace& place,
                           const OptionsText& text) {
  OptionsTaken result;
  TryOptions(session, place, [&](auto& options) { result = TakeOptions(options, text); });
  if (!result.taken.empty() && !session.IsDryRun()) {
    ChangeOptions(session, place, [&](auto& options) {
      result = TakeOptions(options, text);
      if (result.hasTimes) {
        StoreTimes(session, options, place);
      }
    });
  }
  return result;
}

}  // namespace kivadmin
