#include "hosts/kivadmin/checking/store_check.h"

#include <algorithm>
#include <map>
#include <set>

#include "archive/file_version.h"
#include "foundation/files/file.h"
#include "foundation/files/file_finder.h"
#include "game/game_dob.h"
#include "hosts/common/empty_file.h"
#include "hosts/common/failure_text.h"
#include "hosts/kivadmin/checking/group_rights.h"
#include "hosts/kivadmin/checking/mount_facts.h"
#include "hosts/kivadmin/session/action_log.h"
#include "records/tutor_options_dob.h"
#include "store/list/index_file.h"
#include "store/list/long_name.h"
#include "store/place/display_name.h"
#include "store/place/store_names.h"

namespace kivadmin {

using namespace kivstore;
using kivhost::IsEmptyFile;

namespace {

SFileSpec Below(SFileSpec folder, const SString& name) {
  folder.Down(name);
  return folder;
}

// What the store compares names by.
std::string Folded(const SString& text) {
  SString folded(text);
  folded.MakeUpper();
  return std::string(folded.View());
}

constexpr const char* kEmpty = "is empty";

// Empty if it cannot be read.
std::string BytesOf(const SFileSpec& spec) {
  SFile file;
  if (!file.Open(SFile::kRead, spec)) {
    return {};
  }
  std::string bytes(static_cast<size_t>(std::max(file.Size(), 0)), '\0');
  bytes.resize(static_cast<size_t>(
      std::max(file.Read(static_cast<int32_t>(bytes.size()), bytes.data()), 0)));
  return bytes;
}

const char* VersionTrouble(int32_t status) {
  switch (status) {
    case SDob::kCannotOpen:
      return "cannot be opened";
    case SDob::kFileOlder:
      return "is of an older version";
    case SDob::kFileNewer:
      return "is of a newer version";
    default:
      return "is no options file";
  }
}

}  // namespace

std::vector<Finding> StoreCheck::Run() {
  findings.clear();
  CheckForeignEntries();
  CheckMount();
  CheckRights();
  if (session.HasTeachers()) {
    CheckList(session.TopFolder(), &StoreCheck::CheckTeacher);
  } else {
    CheckClassList(session.TopFolder());
  }
  return std::move(findings);
}

// In whatever the programs use below the data root; there may be more beside it.
void StoreCheck::CheckForeignEntries() {
  const SFileSpec root = session.DataRoot();
  LookForForeign(session.TopFolder(), 0);
  LookForForeign(Below(root, "Deleted"), 0);
  for (const char* const name : {"kivstore.conf", kActionLog, kActionLogLock}) {
    LookAtLink(Below(root, name));
  }
}

void StoreCheck::LookForForeign(const SFileSpec& folder, int depth) {
  constexpr int kMostDepth = 16;  // deeper than any store
  LookAtLink(folder);
  if (!folder.IsExistingFolder() || depth > kMostDepth) {
    return;
  }
  SFileFinder finder(folder, SFileFinder::kEverything);
  for (FolderEntry entry; finder.NextEntry(entry);) {
    SFileSpec spec;
    spec.SetFromEntry(folder.GetPath(), entry);
    if (entry.attributes.link) {
      spec.Refresh();
    }
    if (entry.attributes.special) {
      ReportForeign("file", spec, "is a pipe, a socket or a device, and no file of a store");
    } else if (entry.attributes.folder || entry.attributes.link) {
      LookForForeign(spec, depth + 1);
    }
  }
}

// Right after the look at it.
void StoreCheck::LookAtLink(const SFileSpec& spec) {
  const SFileFailure& last = SFileSpec::LastFailure();
  if (spec.Exists() && SFileSpec::GetLastError() != 0 && last.error == SystemError::kForeignLink) {
    ReportForeign("link", spec, "is " + kivhost::WhatText(FailureOfLastFile(ListKind::kFiles)));
  }
}

void StoreCheck::ReportForeign(const char* kind, const SFileSpec& where, const std::string& what) {
  Report(kind, where, what);
  foreign.insert(session.Show(where));
}

size_t StoreCheck::CountClasses(const Session& session) {
  const SFileSpec top = session.TopFolder();
  size_t count = 0;
  if (!session.HasTeachers()) {
    return static_cast<size_t>(ReadIndexCount(top));
  }
  SFileFinder finder(top, SFileFinder::kVisibleFolders);
  for (SFileSpec teacher; finder.Next(teacher);) {
    count += static_cast<size_t>(ReadIndexCount(Below(teacher, ClassesName())));
  }
  return count;
}

// Locks that no other machine sees are none.
void StoreCheck::CheckMount() {
  const auto mount = MountOf(session.Show(session.TopFolder()));
  const std::string change = mount && session.HasLocks() ? LocksNotShared(*mount) : "";
  if (!change.empty()) {
    Report("mount", session.TopFolder(),
           "other machines do not see locks that are taken through this mount (" + mount->type +
               " at " + mount->place + "): " + change);
  }
}

// Of a store that a group shares.
void StoreCheck::CheckRights() {
  for (const RightsTrouble& trouble : FindRightsTroubles(PartsOf(session))) {
    if (!IsBehindForeign(trouble.path)) {
      findings.push_back({"rights", trouble.path, trouble.what, false});
    }
  }
}

void StoreCheck::CheckTeacher(const SFileSpec& folder) {
  CheckLock(folder, "index.lok");
  CheckClassList(Below(folder, ClassesName()));
}

void StoreCheck::CheckClassList(const SFileSpec& folder) {
  CheckList(folder, &StoreCheck::CheckClass);
  if (folder.IsExistingFolder()) {
    CheckLock(folder, "options.lok");
    CheckOptions(folder);
  }
}

void StoreCheck::CheckClass(const SFileSpec& folder) {
  CheckLock(folder, "index.lok");
  CheckLock(folder, "options.lok");
  CheckOptions(folder);
  CheckList(Below(folder, CachedText<kTextStudents>()), &StoreCheck::CheckStudent);
  classDone();
}

void StoreCheck::CheckStudent(const SFileSpec& folder) {
  CheckLock(folder, "index.lok");
  CheckLock(folder, "options.lok");
  CheckOptions(folder);
  CheckGames(folder);
}

void StoreCheck::CheckList(const SFileSpec& folder, CheckEntry checkEntry) {
  if (!folder.IsExistingFolder()) {
    Report("folder", folder, "the folder is missing");
    return;
  }
  CheckLock(folder, "index.lok");
  SIndexObj index;
  index.NeedLogins();
  if (ReadLogins(folder, index)) {
    CheckNames(folder, index);
    CompareWithFolders(folder, index, checkEntry);
  }
}

// Without its lock file a list is looked at as it is.
bool StoreCheck::ReadLogins(const SFileSpec& folder, SIndexObj& index) {
  SLockFile lock(session.Site());
  try {
    session.TakeIndexLock(lock, folder, ListKind::kClasses);
  } catch (const HostError& error) {
    Report("busy", folder, std::string("not looked at: ") + error.what());
    return false;
  }
  SFileSpec file = Below(folder, CachedText<kTextIndexFile>());
  if (!file.Exists()) {
    Report("index", folder, "index.kiv is missing");
    return true;
  }
  const SFileSpec shown(file);
  const bool isRead = ReadIndex(file, index) && !index.incomplete;
  if (!isRead) {
    Report("index", shown, "cannot be read to its end");
  } else if (IsEmptyFile(shown)) {
    Report("index", shown, kEmpty);
  } else if (index.torn) {
    Report("index", shown, "was cut short while it was written");
  }
  return true;
}

void StoreCheck::CompareWithFolders(const SFileSpec& folder, const SIndexObj& index,
                                    CheckEntry checkEntry) {
  std::map<std::string, SFileSpec> onDisk;
  SFileFinder finder(folder, SFileFinder::kVisibleFolders);
  for (SFileSpec entry; finder.Next(entry);) {
    onDisk.emplace(Folded(entry.GetFileName()), entry);
  }
  if (finder.HasFailed()) {
    Report("folder", folder, "the folder cannot be read to its end");
    return;
  }
  std::set<std::string> listed;
  for (const SLoginNameObj& entry : *index.logins) {
    const std::string name = Folded(entry.folderName);
    const std::string who = session.Show(entry) + " (" + session.Show(entry.folderName) + ")";
    if (!onDisk.contains(name)) {
      Report("index", folder, "the index lists " + who + ", whose folder is not there");
    } else if (!listed.insert(name).second) {
      Report("index", folder, "the index lists the folder of " + who + " twice");
    } else {
      CheckLongName(onDisk.at(name), entry);
    }
  }
  for (const auto& [name, entry] : onDisk) {
    if (listed.contains(name) || CheckUnlisted(entry)) {
      (this->*checkEntry)(entry);
    }
  }
}

// Whether it is somebody's.
bool StoreCheck::CheckUnlisted(const SFileSpec& folder) {
  SLoginNameObj owner;
  SFileSpec file(folder);
  const bool isNamed = file.Down(CachedText<kTextLongNameFile>()) && file.Exists() &&
                       ReadLongName(file, owner.firstName, owner.lastName) &&
                       !owner.firstName.IsEmpty();
  if (isNamed) {
    Report("index", folder, "the index lacks the folder of " + session.Show(owner));
  } else {
    Report("nameless", folder,
           "nobody can name this folder: no index lists it, and it has no name");
  }
  return isNamed;
}

void StoreCheck::CheckLongName(const SFileSpec& folder, const SLoginNameObj& entry) {
  const SFileSpec file = Below(folder, CachedText<kTextLongNameFile>());
  SLoginNameObj owner;
  if (IsBehindForeign(session.Show(file))) {
    return;
  }
  if (!ReadLongName(file, owner.firstName, owner.lastName) || owner.firstName.IsEmpty()) {
    Report("longname", folder, "longname.kiv is missing, empty or cut short");
  } else if (CompareDisplayNames(owner, entry) != 0) {
    Report("longname", folder,
           "the index calls it " + session.Show(entry) + ", longname.kiv " + session.Show(owner));
  }
}

// Two folders with one game, which holds its owner's name and times: one student, listed twice.
void StoreCheck::CheckTwin(const SFileSpec& game) {
  const std::string bytes = BytesOf(game);
  const auto [first, isNew] =
      games.emplace(std::pair(bytes.size(), std::hash<std::string>()(bytes)), game);
  if (!isNew && !bytes.empty()) {
    Report("twin", game, "is the same game as " + session.Show(first->second));
  }
}

void StoreCheck::CheckNames(const SFileSpec& folder, const SIndexObj& index) {
  std::map<std::string, int> names;
  for (const SLoginNameObj& entry : *index.logins) {
    if (++names[Folded(DisplayName(entry))] == 2) {
      Report("name", folder, "more than one entry is called " + session.Show(entry));
    }
  }
}

void StoreCheck::CheckLock(const SFileSpec& folder, const char* name) {
  if (session.HasLocks() && !Below(folder, name).Exists()) {
    Report("lock", folder, std::string(name) + " is missing");
  }
}

void StoreCheck::CheckOptions(const SFileSpec& folder) {
  const SFileSpec file = Below(folder, CachedText<kTextOptionsFile>());
  if (!file.IsExistingFile()) {
    return;
  }
  if (IsEmptyFile(file)) {
    Report("options", file, kEmpty);
    return;
  }
  int32_t status = SDob::kCannotOpen;
  if (!SDob::CheckFileVersion(status, file, gFileVersion)) {
    Report("options", file, VersionTrouble(status));
  } else if (STeacherOptionsDob options; !options.LoadFromFile(file)) {
    Report("options", file, "cannot be read to its end");
  }
}

void StoreCheck::CheckGames(const SFileSpec& folder) {
  SFileFinder finder(folder, SFileFinder::kVisibleFiles, ".zep");
  for (SFileSpec file; finder.Next(file);) {
    if (IsEmptyFile(file)) {
      Report("game", file, kEmpty);
    } else if (!SGameDob::IsGameFile(file)) {
      Report("game", file, "is no game file, or of another version");
    } else if (SGameDob game; !game.LoadGame(file)) {
      Report("game", file, "cannot be read to its end");
    } else {
      CheckTwin(file);
    }
  }
}

bool StoreCheck::IsBehindForeign(const std::string& path) const {
  return std::any_of(foreign.begin(), foreign.end(), [&](const std::string& one) {
    return path.starts_with(one) && (path.size() == one.size() || path[one.size()] == '/');
  });
}

void StoreCheck::Report(const char* kind, const SFileSpec& where, const std::string& what) {
  const std::string path = session.Show(where);
  if (!IsBehindForeign(path)) {
    findings.push_back({kind, path, what, false});
  }
}

}  // namespace kivadmin
