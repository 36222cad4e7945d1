// Steps that the transactions on an entry share: adding, deleting, renaming, moving.
#pragma once

#include "foundation/containers/array.h"
#include "foundation/files/file_spec.h"
#include "foundation/login_name.h"
#include "store/list/index_file.h"
#include "store/lock/lock_file.h"

namespace kivstore {

// What a notification calls a teacher where none is named.
inline constexpr const char* kNoTeacherName = "TDefault";

// Whether the folder is there, by the disk as it is now if others may change it.
bool IsFolderThere(SFileSpec& spec);
// Right after a step down: nothing is there, and it was not the look that failed. What may be there
// is neither gone nor to be made.
bool IsKnownMissing(const SFileSpec& spec);

// Aims the lock at the folder's index.kiv and gives it its texts; `lock` is not held.
void AimAtIndex(SLockFile& lock, const SFileSpec& folder, LockKind kind, bool quiet);
bool LockIndex(SLockFile& lock, const SFileSpec& folder, LockKind kind, bool quiet);

// Both halves of the folder's index; they are empty where it has none.
void ReadWholeIndex(SFileSpec folder, SIndexObj& index);
// Writes the list into the folder's index; its file half stays. The list keeps its entries. It was
// loaded before the lock was taken: of every entry but the one in the folder `changed` the index
// knows better, and what the list does not know of stays behind it.
void WriteLogins(const SFileSpec& folder, const SPtrArray& list, const SString& changed);

// Frees the list's entry at `index`; nothing for -1.
void RemoveLoginAt(SPtrArray& list, int32_t index);

}  // namespace kivstore
