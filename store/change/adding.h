// Adding a teacher, a class or a student: one transaction under the list's lock. The entry goes
// into the index first and the folder follows; nothing is taken back, and a later listing drops an
// entry whose folder never came. Adding a name that is there is a success that changes nothing.
#pragma once

#include "foundation/containers/array.h"
#include "foundation/files/file_spec.h"
#include "foundation/login_name.h"
#include "foundation/text/string.h"

namespace kivstore {

// Only in shared site modes.
bool AddTeacher(const SString& name, SString& folderOut);
bool AddTeacher(const SLoginNameObj& teacher);
bool AddTeacherAt(SFileSpec& spec, const SString& name, SString& folderOut);
bool AddClass(const SString& name, SString& folderOut);
bool AddClassAt(SFileSpec& spec, const SString& name, SString& folderOut);
bool AddStudent(const SLoginNameObj& classEntry, const SString& first, const SString& last,
                SString& folderOut);
// The spec ends in the student's folder, unless the name was there.
bool AddStudentAt(SFileSpec& spec, const SString& first, const SString& last, SString& folderOut);

// Whether the name is free. With a list and a name that is taken the list is read anew. A lock that
// cannot be had answers true: the add itself will decide.
bool CheckStudentName(const SLoginNameObj& classEntry, const SString& first, const SString& last,
                      SString& folderOut, SPtrArray* list);

}  // namespace kivstore
