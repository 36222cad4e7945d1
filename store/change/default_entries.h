// A store is never shown empty: what the system's rules add to it on its first use, and what they
// put back that is lost. Placing does nothing of this (store/place/placing.h); these are called
// where the rules say so, ahead of a listing, a count or a file of an entry. Where the file
// services make nothing the rules run to their failure, which is noted.
//
// Each answers whether the list can be used now.
#pragma once

#include "foundation/text/string.h"
#include "store/list/entries.h"
#include "store/place/site.h"

namespace kivstore {

// The teachers folder is made if it is missing. Without a teacher level, PrepareClassList.
bool PrepareTeacherList(SSite& site);
// With a teacher level and nobody selected the first teacher is; a store without teachers gets the
// default teacher. Then the classes folder is made if it is missing, and an empty list gets the
// default class. A list that this call has counted already is not looked at again.
bool PrepareClassList(SSite& site, bool removable = false);
// And a lost class folder, or its students' folder, is put back. The class may get another folder
// name by that, which `classEntry` then tells.
bool PrepareStudentList(SSite& site, SLoginNameObj& classEntry);

// Adding to a list prepared like that (store/change/adding.h).
bool AddTeacher(SSite& site, const SString& name, SString& folderOut);
bool AddClass(SSite& site, const SString& name, SString& folderOut);
bool AddStudent(SSite& site, const SLoginNameObj& classEntry, const SString& first,
                const SString& last, SString& folderOut);

}  // namespace kivstore
