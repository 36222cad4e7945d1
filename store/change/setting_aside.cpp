#include "store/change/setting_aside.h"

#include "store/change/transaction.h"
#include "store/list/index_lookup.h"
#include "store/list/long_name.h"
#include "store/list/name_derivation.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

bool Fail(SSite& site, ListKind kind, FailureKind why, const SFileSpec& where) {
  site.NoteFailure(why, where.GetPath(), kind);
  return false;
}

// The name that the folder comes back under; empty if somebody of its name is there.
SString FreeName(const SFileSpec& list, const SFileSpec& aside, const SLoginNameObj& entry) {
  SFileSpec place(list);
  bool isThere = false;
  const SString derived = DeriveFolderName(place, entry.firstName, entry.lastName, isThere);
  if (isThere) {
    return {};
  }
  return place.Down(aside.GetFileName()) && !place.Exists() ? aside.GetFileName() : derived;
}

}  // namespace

bool SetAside(SSite& site, const SFileSpec& list, ListKind kind, const SLoginNameObj& entry,
              const SFileSpec& place) {
  SFileSpec spec(list);
  SLockFile lock(site);
  if (!LockList(site, lock, spec, kind, true)) {
    return false;
  }
  const SFileSpec listFolder(spec);
  if (!IsEntryOf(listFolder, entry) || !DownToEntry(spec, entry) || !spec.IsExistingFolder()) {
    return Fail(site, kind, FailureKind::kNoEntry, spec);
  }
  EnsureLongName(site, spec, entry, kind);
  if (!spec.RenameTo(place)) {
    site.NoteFileFailure(kind);
    return false;
  }
  site.ForgetCountedClasses();
  RemoveLine(site, listFolder, entry.folderName, kind);
  return true;
}

bool PutBack(SSite& site, const SFileSpec& list, ListKind kind, const SFileSpec& aside,
             const IsMeant& isMeant, SLoginNameObj& entry) {
  SFileSpec spec(list);
  SLockFile lock(site);
  if (!LockList(site, lock, spec, kind, true)) {
    return false;
  }
  SFileSpec name(aside);
  if (!name.Refresh()) {
    return Fail(site, kind, FailureKind::kNoEntry, aside);
  }
  if (!name.Down(CachedText<kTextLongNameFile>()) ||
      !ReadLongName(name, entry.firstName, entry.lastName) || entry.firstName.IsEmpty()) {
    return Fail(site, kind, FailureKind::kDamaged, name);
  }
  if (!isMeant(entry)) {
    return Fail(site, kind, FailureKind::kNoEntry, aside);
  }
  entry.folderName = FreeName(spec, aside, entry);
  if (entry.folderName.IsEmpty() || IsNameThere(site, spec, entry)) {
    return Fail(site, kind, FailureKind::kNameTaken, spec);
  }
  // The line first: a folder never appears under somebody else's.
  if (!EnsureEntry(site, spec, entry.folderName, entry.firstName, entry.lastName,
                   kind == ListKind::kStudents ? kMaxStudents : kMaxClasses, kind)) {
    return Fail(site, kind, FailureKind::kFull, spec);
  }
  SFileSpec folder(aside);
  SFileSpec place(spec);
  place.Down(entry.folderName);
  if (!folder.RenameTo(place)) {
    site.NoteFileFailure(kind);
    return false;
  }
  return true;
}

}  // namespace kivstore
