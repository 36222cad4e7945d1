// What stands behind the lock of an entry's own folder, a student's mostly.
#pragma once

#include "foundation/files/file_spec.h"
#include "store/lock/lock_file.h"
#include "store/place/site.h"

namespace kivstore {

// Whether `lock`, which is held, keeps others out of this entry's folder. Between placing the
// folder and the lock somebody may have deleted, moved or renamed it, and its name may be another's
// by now: the path must still lead to the file that is locked, and the folder must be the entry's
// by its longname.kiv or, where a rename died half way, by its line in the list. If not the lock is
// let go and the reason noted.
bool HoldsEntry(SSite& site, SLockFile& lock, const SFileSpec& folder, const SLoginNameObj& entry,
                ListKind list);

}  // namespace kivstore
