// Who is in the store. The folder on disk is the truth about which entries exist, index.kiv about
// their names, longname.kiv the fallback for a name the index has lost: every listing compares
// them, repairs the index where they differ, and writes it back only if it repaired something.
//
// A store in order gives its entries in folder-name order; a listing that repaired something gives
// display order, and so does the index it wrote.
//
// Lists are the caller's, empty at the start; the caller owns the entries. A list that cannot be
// reached, or whose lock cannot be had, stays empty.
#pragma once

#include <cstdint>

#include "foundation/containers/array.h"
#include "foundation/files/file_spec.h"
#include "foundation/login_name.h"
#include "store/list/index_file.h"

namespace kivstore {

void LoadTeacherList(SPtrArray& list);
void LoadClassList(SPtrArray& list, bool lockIt);  // of the selected teacher
// Without `reconcile` a readable index is trusted.
void LoadStudentList(SPtrArray& list, const SLoginNameObj& classEntry, bool reconcile, bool lockIt);
// SOurFileObj entries of an extension.
void LoadFileList(SPtrArray& list, const SLoginNameObj* classEntry, const SLoginNameObj* student,
                  const SString& extension, bool removable);
void LoadFileListAt(SPtrArray& list, SFileSpec spec, const SString& extension, bool lockIt);

// The list in hand, under its lock: `indexFile` stands on its index.kiv and ends on the folder.
void ReadLogins(SPtrArray& list, SFileSpec& indexFile, bool reconcile);

// First counts of the index, without a look at the folders: they can differ from a list's length. 0
// without the lock.
int32_t CountTeachers();
// Of classes, of a class's students, or with `siblings` of the list the class is in.
int32_t CountEntries(const SLoginNameObj* classEntry, bool siblings);

// `spec` stands on the list folder and stays there. A folder that cannot be read to its end, or has
// more than a list can hold, repairs nothing: what was not seen may be there.
void ReconcileLogins(const SFileSpec& spec, SIndexObj* index);
void ReconcileFiles(const SFileSpec& spec, SIndexObj* index, const SString& extension);

}  // namespace kivstore
