// Renaming an entry: the folder keeps its name; the new name goes into its longname.kiv and into
// the list's index, where the entry keeps its place. Under the locks of the list and of the entry.
//
// The entry must be in `list`, the caller's list as loaded, which is changed to match; otherwise
// the answer is false and nothing has changed. A name file or an index that cannot be written does
// not change the answer.
#pragma once

#include "foundation/containers/array.h"
#include "foundation/files/file_spec.h"
#include "foundation/login_name.h"
#include "foundation/text/string.h"

namespace kivstore {

// Only in shared site modes. A teacher without a classes folder is given the default class first,
// and that leaves the teacher selected if one was selected before.
bool RenameTeacher(const SLoginNameObj* teacher, SPtrArray* list, const SString& newName,
                   SString& folderOut);
// `folderOut` comes back empty: a rename makes no new folder name.
bool RenameClass(const SLoginNameObj* classEntry, SPtrArray* list, const SString& newName,
                 SString& folderOut);
bool RenameStudent(const SLoginNameObj* classEntry, const SLoginNameObj* student, SPtrArray* list,
                   const SString& newFirst, const SString& newLast);

// The long name of a file in the index of the spec's folder. False with no report if any file has
// the new name already, letter case ignored.
bool RenameUserFile(const SFileSpec& spec, const SString& oldName, const SString& newName,
                    bool lockIt);

}  // namespace kivstore
