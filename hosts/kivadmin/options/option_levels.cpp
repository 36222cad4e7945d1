#include "hosts/kivadmin/options/option_levels.h"

#include <map>

#include "archive/file_version.h"
#include "hosts/common/empty_file.h"
#include "store/place/placing.h"

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

void RefuseForGood(const SFileSpec& spec, const OptionsPlace& place) {
  const std::string fault = FaultOf(spec);
  if (!fault.empty()) {
    throw HostError(kNoStore, FileOf(place) + ' ' + fault);
  }
}

// A shared file may be in somebody's hands just now.
bool LoadPatiently(const Session& session, STeacherOptionsDob& options, const SFileSpec& spec,
                   const OptionsPlace& place) {
  int16_t step = 1;
  while (!options.LoadFromFile(spec)) {
    RefuseForGood(spec, place);
    if (!session.Site().IsShared() || step > kLastStep) {
      return false;
    }
    kivstore::BackoffWait(step);
  }
  return true;
}

// Clean, and with no option decided, if there is no file or an empty one.
void ReadOptions(const Session& session, STeacherOptionsDob& options, const SFileSpec& spec,
                 const OptionsPlace& place) {
  options.Clear();
  options.SetDirty(false);
  if (spec.IsExistingFile() && !kivhost::IsEmptyFile(spec)) {
    session.Need("read " + FileOf(place), spec,
                 [&] { return LoadPatiently(session, options, spec, place); });
  }
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

std::vector<DecidedOption> LayerOptions(const Session& session, const OptionsPlace& place) {
  STeacherOptionsDob options;
  options.SetDirty(false);
  Deciders deciders;
  for (const OptionsPlace& at : LevelsDownTo(place)) {
    const SFileSpec spec = OptionsFileOf(session, at);
    if (!spec.IsExistingFile()) {
      continue;
    }
    STeacherOptionsDob level;
    ReadOptions(session, level, spec, at);
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

void TryOptions(const Session& session, const OptionsPlace& place, const OptionsChange& change) {
  STeacherOptionsDob options;
  ReadOptions(session, options, OptionsFileOf(session, place), place);
  change(options);
}

void ChangeOptions(const Session& session, const OptionsPlace& place, const OptionsChange& change) {
  if (session.IsDryRun()) {
    TryOptions(session, place, change);
    return;
  }
  SFileSpec spec = OptionsFileOf(session, place);
  kivstore::SLockFile lock(session.Site(), spec, kivstore::SString());
  session.TakeLock(lock, FileOf(place));
  if (place.student != nullptr) {
    SFileSpec folder(spec);
    folder.Up();
    session.NeedEntry(lock, folder, *place.student);
  }
  spec.Refresh();
  STeacherOptionsDob options;
  ReadOptions(session, options, spec, place);
  change(options);
  session.Need("write " + FileOf(place), spec, [&] { return options.SaveMergedToFile(spec); });
}

SFileSpec OptionsFileOf(const Session& session, const OptionsPlace& place) {
  SFileSpec spec;
  kivstore::OptionsFile(session.Site(), spec, place.classEntry, place.student);
  if (!spec.IsValid()) {
    throw HostError(kNoStore, FileOf(place) + " has no place: its folder is missing");
  }
  return spec;
}

}  // namespace kivadmin
