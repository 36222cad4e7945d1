#include "store/list/entry_lock.h"

#include "store/list/index_file.h"
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

bool IsListed(SFileSpec list, const SLoginNameObj& entry) {
  SIndexObj index;
  list.Up();
  ReadWholeIndex(list, index);
  return !index.torn && FindLogin(*index.logins, entry) >= 0;
}

}  // namespace

bool HoldsEntry(SSite& site, SLockFile& lock, const SFileSpec& folder, const SLoginNameObj& entry,
                ListKind list) {
  if (lock.IsStillThere() && (NamesEntry(folder, entry) || IsListed(folder, entry))) {
    return true;
  }
  lock.Unlock();
  site.NoteFailure(FailureKind::kNoEntry, folder.GetPath(), list);
  return false;
}

}  // namespace kivstore
