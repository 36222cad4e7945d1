// Renaming an entry: the folder keeps its name; the new name goes into its longname.kiv and into
// the list's index, where the entry keeps its place. Under the locks of the list and of the entry.
//
// The entry must be in `list`, the caller's list as loaded, which is changed to match; otherwise
// the answer is false and nothing has changed. A name file or an index that cannot be written does
// not change the answer.
#pragma once

#include "foundation/files/file_spec.h"
#include "foundation/text/string.h"
#include "store/list/entries.h"
#include "store/place/site.h"

namespace kivstore {

// Only at shared sites. A teacher without a classes folder is given the default class first, and
// that leaves the teacher selected if one was selected before.
bool RenameTeacher(SSite& site, const SLoginNameObj& teacher, SLoginList& list,
                   const SString& newName);
bool RenameClass(SSite& site, const SLoginNameObj& classEntry, SLoginList& list,
                 const SString& newName);
bool RenameStudent(SSite& site, const SLoginNameObj& classEntry, const SLoginNameObj& student,
                   SLoginList& list, const SString& newFirst, const SString& newLast);

// The long name of a file in the index of the spec's folder. False with no report if any file has
// the new name already, letter case ignored. Only a playing tutor renames files.
bool RenameUserFile(SSite& site, const SFileSpec& spec, const SString& oldName,
                    const SString& newName, bool lockIt);

}  // namespace kivstore
