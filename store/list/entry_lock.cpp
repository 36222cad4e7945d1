#include "store/list/entry_lock.h"

#include "store/list/index_file.h"
#include "store/list/index_lookup.h"
#include "store/list/long_name.h"
#include "store/place/display_name.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

bool NamesEntry(SFileSpec folder, const SLoginNameObj& entry) {
  SLoginNameObj owner;
  return folder.DownAssumed(CachedText<kTextLongNameFile>().GetText()) &&
         ReadLongName(folder, owner.firstName, owner.lastName) &&
         CompareDisplayNames(owner, entry) == 0;
}

SFileSpec ListOf(SFileSpec folder) {
  folder.Up();
  return folder;
}

bool IsListed(const SFileSpec& list, const SLoginNameObj& entry) {
  SIndexObj index;
  ReadWholeIndex(list, index);
  return !index.torn && FindLogin(*index.logins, entry) >= 0;
}

}  // namespace

bool HoldsEntry(SSite& site, SLockFile& lock, const SFileSpec& folder, const SLoginNameObj& entry,
                ListKind list) {
  const SFileSpec listFolder = ListOf(folder);
  if (lock.IsStillThere() && IsSeenInList(listFolder, folder.GetFileName()) &&
      (NamesEntry(folder, entry) || IsListed(listFolder, entry))) {
    return true;
  }
  lock.Unlock();
  site.NoteFailure(FailureKind::kNoEntry, folder.GetPath(), list);
  return false;
}

}  // namespace kivstore
