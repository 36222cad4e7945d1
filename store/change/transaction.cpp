#include "store/change/transaction.h"

#include <memory>
#include <utility>

#include "store/list/index_lookup.h"
#include "store/list/long_name.h"
#include "store/list/reconcile.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

bool AddCopy(SLoginList& list, const SLoginNameObj& entry) {
  return list.Add(std::unique_ptr<SLoginNameObj>(new (std::nothrow) SLoginNameObj(entry)));
}

bool CopySorted(SLoginList& sorted, const SLoginList& list) {
  for (const SLoginNameObj& entry : list) {
    if (!AddCopy(sorted, entry)) {
      return false;
    }
  }
  SortByFolder(sorted);
  return true;
}

// The list with what other workstations have made of it since it was loaded; false without memory.
bool TakeOthersChanges(SLoginList& merged, const SLoginList& list, const SLoginList& stored,
                       const SString& changed) {
  SLoginList known, storedByFolder;
  bool complete = CopySorted(known, list) && CopySorted(storedByFolder, stored);
  for (const SLoginNameObj& entry : list) {
    const int32_t at = storedByFolder.FindSorted(entry, CompareByFolder);
    const bool isStored = at >= 0 && !IsInFolder(entry, changed);
    complete = AddCopy(merged, isStored ? storedByFolder[at] : entry) && complete;
  }
  for (const SLoginNameObj& entry : stored) {
    if (known.FindSorted(entry, CompareByFolder) < 0 && !IsInFolder(entry, changed)) {
      complete = AddCopy(merged, entry) && complete;
    }
  }
  return complete;
}

void MendTornIndex(SSite& site, const SFileSpec& list) {
  SIndexObj index;
  ReadWholeIndex(list, index);
  if (index.torn) {
    ReconcileLogins(site, list, index);
  }
}

}  // namespace

// A spec that was not placed on a folder stands somewhere on the way there: a look that now finds
// something would find the wrong folder.
bool IsFolderThere(const SSite& site, SFileSpec& spec) {
  if (spec.IsExistingFolder() && site.IsShared()) {
    spec.Refresh();
  }
  return spec.IsExistingFolder();
}

bool LockList(SSite& site, SLockFile& lock, SFileSpec& folder, ListKind kind, bool quiet) {
  if (!IsFolderThere(site, folder)) {
    site.NoteFailure(FailureKind::kMissing, folder.GetPath(), kind);
    return false;
  }
  return LockIndex(lock, folder, kind, quiet) && IsListStillThere(site, lock, folder, kind);
}

bool IsListStillThere(SSite& site, SLockFile& lock, const SFileSpec& folder, ListKind kind) {
  if (lock.IsStillThere()) {
    return true;
  }
  lock.Unlock();
  site.NoteFailure(FailureKind::kMissing, folder.GetPath(), kind);
  return false;
}

bool IsKnownMissing(const SFileSpec& spec) {
  constexpr int16_t kNotFound = 2;
  return !spec.Exists() && SFileSpec::GetLastError() == kNotFound;
}

SString ReadyPath(const SFileSpec& list, const SString& folder) {
  SFileSpec beside(list);
  beside.Up();
  return beside.GetPath() + folder + ".new";
}

SFileSpec PlaceToMake(const SFileSpec& list, const SString& folder) {
  SFileSpec place(ReadyPath(list, folder));
  if (place.IsExistingFolder()) {
    place.Delete(true);
  }
  return place;
}

bool IsNameThere(SSite& site, const SFileSpec& list, SLoginNameObj& entry) {
  MendTornIndex(site, list);
  return IsListedThere(list, entry);
}

void EnsureLine(SSite& site, const SFileSpec& list, const SLoginNameObj& entry, ListKind kind) {
  MendTornIndex(site, list);
  EnsureEntry(site, list, entry.folderName, entry.firstName, entry.lastName, kNoLimit, kind);
}

void EnsureLongName(SSite& site, const SFileSpec& folder, const SLoginNameObj& entry,
                    ListKind kind) {
  SLoginNameObj owner;
  SFileSpec file(folder);
  const bool isNamed = file.DownAssumed(CachedText<kTextLongNameFile>().GetText()) &&
                       ReadLongName(file, owner.firstName, owner.lastName) &&
                       !owner.firstName.IsEmpty();
  if (!isNamed && !WriteLongName(folder, entry.firstName, entry.lastName)) {
    site.NoteShortfall(kind);
  }
}

void WriteLogins(SSite& site, const SFileSpec& folder, const SLoginList& list,
                 const SString& changed, ListKind kind) {
  SIndexObj index;
  ReadWholeIndex(folder, index);
  SLoginList merged;
  if (!TakeOthersChanges(merged, list, *index.logins, changed)) {
    site.NoteShortfall(kind);
    return;
  }
  *index.logins = std::move(merged);
  WriteIndexNoted(site, folder, index, kind);
}

}  // namespace kivstore
