// Steps that the transactions on an entry share: adding, deleting, renaming, moving.
//
// Which lock, which order, which file first, and what each death leaves is told in docs/protocol/,
// beside a model of it: whoever changes a step in this room changes it there.
#pragma once

#include "foundation/files/file_spec.h"
#include "store/list/entries.h"
#include "store/list/index_file.h"
#include "store/lock/lock_file.h"
#include "store/place/site.h"

namespace kivstore {

// What a notification calls a teacher where none is named.
inline constexpr const char* kNoTeacherName = "TDefault";

// Whether the folder is there, by the disk as it is now if others may change it.
bool IsFolderThere(const SSite& site, SFileSpec& spec);
// Takes the lock of a list that is to be changed, its folder looked at ahead. Between the look and
// the lock somebody may have set aside what the list is in, and the lock's file with it: behind the
// lock its path must still lead to it. If not the lock is let go and the reason noted.
bool LockList(SSite& site, SLockFile& lock, SFileSpec& folder, ListKind kind, bool quiet);
// The second half of it, of a lock that is held.
bool IsListStillThere(SSite& site, SLockFile& lock, const SFileSpec& folder, ListKind kind);
// Right after a step down: nothing is there, and it was not the look that failed. What may be there
// is neither gone nor to be made.
bool IsKnownMissing(const SFileSpec& spec);

// Where a folder is made ready: beside the list, where no listing looks. What a death has left
// there belongs to nobody; PlaceToMake clears it away.
SString ReadyPath(const SFileSpec& list, const SString& folder);
SFileSpec PlaceToMake(const SFileSpec& list, const SString& folder);

// IsListedThere, under the list's lock, for who is about to come into the list. The names of an
// index that a death has torn say nothing: it is mended first, as by any listing.
bool IsNameThere(SSite& site, const SFileSpec& list, SLoginNameObj& entry);

// Under the list's lock: the entry has a line in an index that is whole, as it must while its long
// name changes.
void EnsureLine(SSite& site, const SFileSpec& list, const SLoginNameObj& entry, ListKind kind);

// Ahead of a folder's leaving its list: until it has a line again it is known by its long name
// alone, which is written where a death has torn it. One that cannot be written is noted with the
// site.
void EnsureLongName(SSite& site, const SFileSpec& folder, const SLoginNameObj& entry,
                    ListKind kind);

// Writes the list into the folder's index; its file half stays. The list was loaded before the lock
// was taken: of every entry but the one in the folder `changed` the index knows better, and what
// the list does not know of stays behind it. What could not be written is noted with the site.
void WriteLogins(SSite& site, const SFileSpec& folder, const SLoginList& list,
                 const SString& changed, ListKind kind);

}  // namespace kivstore
