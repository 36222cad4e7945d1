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

#include "foundation/containers/array.h"
#include "foundation/login_name.h"
#include "foundation/text/string.h"

namespace kivstore {

// Ends with the source teacher selected.
bool MoveClass(const SLoginNameObj* sourceTeacher, const SLoginNameObj* destinationTeacher,
               SLoginNameObj* classEntry, SPtrArray* list, const SString& name);
// Under the selected teacher.
bool MoveStudent(const SLoginNameObj* sourceClass, const SLoginNameObj* destinationClass,
                 SLoginNameObj* student, SPtrArray* list, const SString& first,
                 const SString& last);
// Ends with the source teacher selected.
bool MoveStudentAcross(const SLoginNameObj* sourceTeacher, const SLoginNameObj* destinationTeacher,
                       const SLoginNameObj* sourceClass, const SLoginNameObj* destinationClass,
                       SLoginNameObj* student, SPtrArray* list, const SString& first,
                       const SString& last);

}  // namespace kivstore
