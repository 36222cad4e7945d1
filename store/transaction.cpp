#include "store/transaction.h"

#include "foundation/site_mode.h"
#include "store/cached_text.h"
#include "store/layout.h"

namespace kivstore {

bool IsFolderThere(SFileSpec& spec) {
  if (IsSharedSite()) {
    spec.Refresh();
  }
  return spec.IsExistingFolder();
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
