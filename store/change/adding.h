// Adding a teacher, a class or a student: one transaction under the list's lock. The entry goes
// into the index first and the folder follows; nothing is taken back, and a later listing drops an
// entry whose folder never came. Adding a name that is there is a success that changes nothing.
//
// `folderOut` receives the entry's folder name; it stays as it was where the answer is false.
#pragma once

#include <functional>

#include "foundation/files/file_spec.h"
#include "foundation/text/string.h"
#include "store/list/entries.h"
#include "store/place/site.h"

namespace kivstore {

// Puts into a new entry's folder what the caller wants in it from the start. It is called while the
// folder stands beside the list, where nobody looks: the folder appears with all of it.
using FillFolder = std::function<void(const SFileSpec& folder)>;

// To the list of the folder `spec`. Teachers only at shared sites.
bool AddTeacherAt(SSite& site, SFileSpec& spec, const SString& name, SString& folderOut,
                  const FillFolder& fill = nullptr);
bool AddClassAt(SSite& site, SFileSpec& spec, const SString& name, SString& folderOut,
                const FillFolder& fill = nullptr);
// The spec ends in the student's folder, unless the name was there.
bool AddStudentAt(SSite& site, SFileSpec& spec, const SString& first, const SString& last,
                  SString& folderOut, const FillFolder& fill = nullptr);

// Whether the name is free. With a list and a name that is taken the list is read anew. A lock that
// cannot be had answers true: the add itself will decide. Only an interface that offers a new name
// before it adds it asks.
bool CheckStudentName(SSite& site, const SLoginNameObj& classEntry, const SString& first,
                      const SString& last, SString& folderOut, SLoginList* list);

}  // namespace kivstore
