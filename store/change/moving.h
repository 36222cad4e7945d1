// Moving a class to another teacher, or a student to another class: the folder goes across the
// tree, and the entry from one index to the other. Under three locks, taken in this order: source
// list, destination list, what moves.
//
// The entry must be in `list`, the caller's list of the source as loaded, and leaves it, freed;
// otherwise the answer is false. Where the destination has a folder of that name the entry gets
// another one. A destination that is full, or a student at work, answers false with nothing moved.
// Once the folder has moved the answer is true: what could not be written then is put right by the
// next listing.
#pragma once

#include "foundation/text/string.h"
#include "store/list/entries.h"
#include "store/place/site.h"

namespace kivstore {

// Ends with the source teacher selected.
bool MoveClass(SSite& site, const SLoginNameObj& sourceTeacher,
               const SLoginNameObj& destinationTeacher, SLoginNameObj& classEntry, SLoginList& list,
               const SString& name);
// Under the selected teacher.
bool MoveStudent(SSite& site, const SLoginNameObj& sourceClass,
                 const SLoginNameObj& destinationClass, SLoginNameObj& student, SLoginList& list,
                 const SString& first, const SString& last);
// Ends with the source teacher selected.
bool MoveStudentAcross(SSite& site, const SLoginNameObj& sourceTeacher,
                       const SLoginNameObj& destinationTeacher, const SLoginNameObj& sourceClass,
                       const SLoginNameObj& destinationClass, SLoginNameObj& student,
                       SLoginList& list, const SString& first, const SString& last);

}  // namespace kivstore
