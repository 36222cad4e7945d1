#include "hosts/kivadmin/options/option_levels.h"

#include <map>

#include "foundation/site_mode.h"
#include "hosts/kivadmin/session/session.h"
#include "store/lock/lock_file.h"
#include "store/place/layout.h"

namespace kivadmin {
namespace {

using kivstore::SDob;
using kivstore::SFileSpec;
using kivstore::STeacherOptionsDob;

constexpr int16_t kLastStep = 16;  // as long as a lock is waited for

const char* LevelOf(const OptionsPlace& place) {
  if (place.student != nullptr) {
    return "student";
  }
  return place.classEntry != nullptr ? "class" : "store";
}

std::string FileOf(const OptionsPlace& place) {
  return std::string("the options file of the ") + LevelOf(place);
}

// What to tell of a file that is there and did not load; empty if a later try may do better.
std::string FaultOf(const SFileSpec& spec) {
  int32_t status = SDob::kCannotOpen;
  SDob::CheckFileVersion(status, spec, kivstore::gFileVersion);
  switch (status) {
    case SDob::kFileOlder:
    case SDob::kFileNewer:
      return "is of another version";
    case SDob::kWrongMagic:
    case SDob::kVersionUnreadable:
      return "is no options file";
    default:
      return "";
  }
}

// Clean, and with no option decided, if there is no file.
void ReadOptions(STeacherOptionsDob& options, const SFileSpec& spec, const OptionsPlace& place) {
  options.Clear();
  options.SetDirty(false);
  if (!spec.IsExistingFile()) {
    return;
  }
  int16_t step = 1;
  while (!options.LoadFromFile(spec)) {
    const std::string fault = FaultOf(spec);
    if (!fault.empty()) {
      throw AdminError{kNoStore, FileOf(place) + ' ' + fault};
    }
    if (!kivstore::IsSharedSite() || step > kLastStep) {
      throw AdminError{kNoStore, FileOf(place) + " cannot be read: it is damaged or in use"};
    }
    kivstore::BackoffWait(step);
  }
}

SFileSpec PlaceFile(const OptionsPlace& place) {
  SFileSpec spec;
  kivstore::OptionsFile(spec, place.classEntry, place.student);
  if (!spec.IsValid()) {
    throw AdminError{kNoStore, FileOf(place) + " has no place: its folder is missing"};
  }
  return spec;
}

AdminError WhyNotLocked(const SFileSpec& spec, const OptionsPlace& place) {
  SFileSpec lockFile = spec;
  lockFile.Up();
  lockFile.Down("options.lok");
  return lockFile.IsExistingFile()
             ? AdminError{kRefused, FileOf(place) + " is locked by another workstation"}
             : AdminError{kNoStore, FileOf(place) + " has no lock file, and none can be made"};
}

std::vector<OptionsPlace> LevelsDownTo(const OptionsPlace& place) {
  std::vector<OptionsPlace> levels{{}};
  if (place.classEntry != nullptr) {
    levels.push_back({place.classEntry, nullptr});
  }
  if (place.student != nullptr) {
    levels.push_back(place);
  }
  return levels;
}

using Deciders = std::map<std::string, const char*>;

// Whose field the merge of `level` into `options` takes: its rule is that a tie goes to the deeper.
void NoteDeciders(STeacherOptionsDob& options, STeacherOptionsDob& level, const char* name,
                  Deciders& deciders) {
  std::map<std::string, Option> before;
  for (Option& option : ListOptions(options)) {
    before.emplace(option.key, option);
  }
  for (const Option& option : ListOptions(level)) {
    const auto old = before.find(option.key);
    const bool decided = option.stamp > kivstore::SDateTime::None();
    const bool changes = old == before.end() || option.value != old->second.value;
    if ((old == before.end() || option.stamp >= old->second.stamp) && (decided || changes)) {
      deciders[option.key] = name;
    }
  }
}

}  // namespace

std::vector<DecidedOption> LayerOptions(const OptionsPlace& place) {
  STeacherOptionsDob options;
  options.SetDirty(false);
  Deciders deciders;
  for (const OptionsPlace& at : LevelsDownTo(place)) {
    const SFileSpec spec = PlaceFile(at);
    if (!spec.IsExistingFile()) {
      continue;
    }
    STeacherOptionsDob level;
    ReadOptions(level, spec, at);
    NoteDeciders(options, level, LevelOf(at), deciders);
    options.Merge(level);
  }
  std::vector<DecidedOption> decided;
  for (Option& option : ListOptions(options)) {
    const auto found = deciders.find(option.key);
    const char* const level = found != deciders.end() ? found->second : "default";
    decided.push_back({std::move(option), level});
  }
  return decided;
}

void ChangeOptions(const OptionsPlace& place, bool dryRun,
                   const std::function<void(STeacherOptionsDob&)>& change) {
  SFileSpec spec = PlaceFile(place);
  kivstore::SLockFile lock;
  if (!dryRun) {
    lock.Retarget(spec, kivstore::SString());
    if (!lock.Lock()) {
      throw WhyNotLocked(spec, place);
    }
    spec.Refresh();
  }
  STeacherOptionsDob options;
  ReadOptions(options, spec, place);
  change(options);
  if (!dryRun && !options.SaveMergedToFile(spec)) {
    throw AdminError{kNoStore, FileOf(place) + " cannot be written"};
  }
}

}  // namespace kivadmin
