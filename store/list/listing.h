// Who is in the store. The folder on disk is the truth about which entries exist: every listing
// holds the index against it and repairs the index where they differ (reconcile.h).
//
// A store in order gives its entries in folder-name order; a listing that repaired something gives
// display order, and so does the index it wrote.
//
// What was in the caller's list goes; a list that cannot be reached leaves it as it was, and one
// whose lock cannot be had too. Either notes the reason, and so does one whose index or folder
// could not be read to its end, which then holds what could be.
#pragma once

#include <cstdint>

#include "foundation/files/file_spec.h"
#include "store/list/entries.h"
#include "store/place/site.h"

namespace kivstore {

void LoadTeacherList(SSite& site, SLoginList& list);
// Of the selected teacher. Without `lockIt` the caller holds the lock, or accepts reading beside a
// writer.
void LoadClassList(SSite& site, SLoginList& list, bool lockIt);
// Without `reconcile` a readable index is trusted.
void LoadStudentList(SSite& site, SLoginList& list, const SLoginNameObj& classEntry, bool reconcile,
                     bool lockIt);
// The list in hand: `folder` stands on the list's folder.
void LoadLoginsAt(SSite& site, SLoginList& list, const SFileSpec& folder, ListKind kind,
                  bool reconcile, bool lockIt);

// As LoadLoginsAt with a lock, for a list that must not be empty: false, with nothing listed and
// nothing repaired, if the lock cannot be had or the index counts no entry.
bool LoadCountedLogins(SSite& site, SLoginList& list, const SFileSpec& folder, ListKind kind);

// File entries of an extension, of the folder of a student, a class's students or a class list.
void LoadFileList(SSite& site, SFileList& list, const SLoginNameObj* classEntry,
                  const SLoginNameObj* student, const SString& extension);
void LoadFileListAt(SSite& site, SFileList& list, SFileSpec spec, const SString& extension,
                    bool lockIt);

// First counts of the index, without a look at the folders: they can differ from a list's length. 0
// without the lock.
int32_t CountTeachers(SSite& site);
// Of classes, or of a class's students.
int32_t CountEntries(SSite& site, const SLoginNameObj* classEntry);

}  // namespace kivstore
