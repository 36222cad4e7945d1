// What a folder's index says of one entry or one file, and new lines for it. Nothing here locks.
#pragma once

#include "foundation/files/file_spec.h"
#include "store/list/index_file.h"
#include "store/place/site.h"

namespace kivstore {

// Adds a login to the folder's index, unless one of that name and folder is there, and takes out
// any other line of that folder name: a folder never appears under somebody else's line. False if
// the index holds `limit` entries or more, also for an entry that is there; kNoLimit for no test.
// An index that could not be written does not show in the answer; the site notes it.
bool EnsureEntry(SSite& site, const SFileSpec& spec, const SString& folderName,
                 const SString& first, const SString& last, int16_t limit, ListKind list);
// Takes every line of that folder name out of the folder's index.
void RemoveLine(SSite& site, const SFileSpec& spec, const SString& folderName, ListKind list);
// Whether the list really has a folder of that name. Where other machines share the file system a
// look at a path may find what was there a moment ago; a walk through the list does not. Elsewhere
// the look that follows tells, and this is true at no cost.
bool IsSeenInList(const SFileSpec& list, const SString& folderName);
// Whether the folder is the entry's: by its line in the list's index or, where there is none, by
// its longname.kiv. A folder that neither names is taken to be.
bool IsEntryOf(const SFileSpec& list, const SLoginNameObj& entry);
// Whether the list has that display name with a folder that is there, whose name `entry` gets then.
bool IsListedThere(const SFileSpec& list, SLoginNameObj& entry);
// WriteIndex; what could not be written is noted with the site.
bool WriteIndexNoted(SSite& site, const SFileSpec& spec, SIndexObj& index, ListKind list);

// File entries by their long name, byte for byte, in the folder `spec` or the folder of the file
// `spec`. An empty extension takes any.
bool FindEntryByLongName(const SFileSpec& spec, const SString& longName, const SString& extension);
SString FindFileOfLongName(const SFileSpec& spec, const SString& longName,
                           const SString& extension);
SString FindLongNameOfFile(const SFileSpec& file, const SString& extension);
// Appends without looking for an existing one.
bool AddEntry(const SFileSpec& spec, const SString& longName, const SString& fileName,
              const SString& extension);
// In the index of the entry's folder, or of a class's students.
bool AddEntryFor(const SSite& site, const SLoginNameObj* classEntry, const SLoginNameObj* student,
                 const SString& longName, const SString& fileName, const SString& extension);

}  // namespace kivstore
