// Steps that the transactions on an entry share: adding, deleting, renaming, moving.
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
// Right after a step down: nothing is there, and it was not the look that failed. What may be there
// is neither gone nor to be made.
bool IsKnownMissing(const SFileSpec& spec);

// Writes the list into the folder's index; its file half stays. The list was loaded before the lock
// was taken: of every entry but the one in the folder `changed` the index knows better, and what
// the list does not know of stays behind it. What could not be written is noted with the site.
void WriteLogins(SSite& site, const SFileSpec& folder, const SLoginList& list,
                 const SString& changed, ListKind kind);

}  // namespace kivstore
