// Deleting a teacher with its classes, a class with its students, a student with its files. Each
// level works under the lock of its list and the lock of what is being deleted, from the root
// towards the leaf; a student at work holds such a lock and is not deleted. There is no undo, and
// an index is written only when the entry's folder is really gone.
//
// `list` is the caller's list of the level, as loaded; the deleted entry leaves it and is freed,
// also where it is the very entry handed in.
#pragma once

#include "store/list/entries.h"
#include "store/place/site.h"

namespace kivstore {

// Only at shared sites. When a teacher was selected, the one being deleted is selected afterwards.
bool DeleteTeacher(SSite& site, const SLoginNameObj& teacher, SLoginList& list);

// `standAlone` takes the lock of the list and writes its index; without it the operation is a step
// of the delete of the level above, whose caller holds that lock. `stop` comes back true when that
// delete is to go no further: a folder could not be removed. A member that could not be locked does
// not set it.
bool DeleteClass(SSite& site, const SLoginNameObj& classEntry, SLoginList& list, bool standAlone,
                 bool& stop);
// True for a student whose folder is gone already; the list and its index then stay as they are.
bool DeleteStudent(SSite& site, const SLoginNameObj& classEntry, const SLoginNameObj& student,
                   SLoginList& list, bool standAlone, bool& stop);

}  // namespace kivstore
