#include "store/change/transaction.h"

#include "foundation/site_mode.h"
#include "platform/base/bytes.h"
#include "platform/text_numbers.h"
#include "store/place/cached_text.h"
#include "store/place/layout.h"

namespace kivstore {
namespace {

bool IsIn(const SLoginNameObj& entry, const SString& folder) {
  return EqualBytesNoCase(entry.folderName.View(), folder.View());
}

// What other workstations have made of the list since it was loaded.
void TakeOthersChanges(SPtrArray& logins, const SPtrArray& stored, const SString& changed) {
  SPtrArray known, storedByFolder;
  known.Append(logins);
  SortByFolder(known);
  storedByFolder.Append(stored);
  SortByFolder(storedByFolder);
  for (int32_t i = 0; i < logins.GetSize(); ++i) {
    const int32_t at = storedByFolder.FindSorted(logins[i], CompareByFolder);
    if (at >= 0 && !IsIn(*LoginIn(logins, i), changed)) {
      logins[i] = storedByFolder[at];
    }
  }
  for (int32_t i = 0; i < stored.GetSize(); ++i) {
    if (known.FindSorted(stored[i], CompareByFolder) < 0 && !IsIn(*LoginIn(stored, i), changed)) {
      logins.Add(stored[i]);
    }
  }
}

}  // namespace

// A spec that was not placed on a folder stands somewhere on the way there: a look that now finds
// something would find the wrong folder.
bool IsFolderThere(SFileSpec& spec) {
  if (spec.IsExistingFolder() && IsSharedSite()) {
    spec.Refresh();
  }
  return spec.IsExistingFolder();
}

bool IsKnownMissing(const SFileSpec& spec) {
  constexpr int16_t kNotFound = 2;
  return !spec.Exists() && SFileSpec::GetLastError() == kNotFound;
}

void AimAtIndex(SLockFile& lock, const SFileSpec& folder, LockKind kind, bool quiet) {
  lock.Retarget(folder, CachedText<kTextIndexFile>());
  SetLockMessages(lock, kind, quiet);
}

bool LockIndex(SLockFile& lock, const SFileSpec& folder, LockKind kind, bool quiet) {
  AimAtIndex(lock, folder, kind, quiet);
  return lock.Lock();
}

void ReadWholeIndex(SFileSpec folder, SIndexObj& index) {
  index.NeedLogins();
  index.NeedFiles();
  if (folder.DownAssumed(CachedText<kTextIndexFile>().GetText())) {
    ReadIndex(folder, &index);
  }
}

void WriteLogins(const SFileSpec& folder, const SPtrArray& list, const SString& changed) {
  SIndexObj stored;
  ReadWholeIndex(folder, stored);
  SIndexObj index(&list, stored.files);
  index.ownsLogins = index.ownsFiles = false;
  index.incomplete = stored.incomplete;
  if (index.logins != nullptr && stored.logins != nullptr) {
    TakeOthersChanges(*index.logins, *stored.logins, changed);
  }
  WriteIndex(folder, index);
}

void RemoveLoginAt(SPtrArray& list, int32_t index) {
  if (index >= 0) {
    delete LoginIn(list, index);
    list.RemoveAt(index);
  }
}

}  // namespace kivstore
