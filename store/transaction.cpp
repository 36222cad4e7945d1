#include "store/transaction.h"

#include "foundation/site_mode.h"
#include "store/cached_text.h"
#include "store/layout.h"

namespace kivstore {

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

void WriteLogins(const SFileSpec& folder, const SPtrArray& list) {
  SIndexObj index(&list, nullptr);
  index.ownsLogins = false;
  WriteIndex(folder, index);
}

void RemoveLoginAt(SPtrArray& list, int32_t index) {
  if (index >= 0) {
    delete LoginIn(list, index);
    list.RemoveAt(index);
  }
}

}  // namespace kivstore
