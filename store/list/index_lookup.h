// What a folder's index says of one entry or one file, and new lines for it. Nothing here locks.
#pragma once

#include "foundation/files/file_spec.h"
#include "store/list/index_file.h"
#include "store/place/site.h"

namespace kivstore {

// Adds a login to the folder's index, unless one of that name and folder is there. False if the
// index holds `limit` entries or more, also for an entry that is there; kNoLimit for no test.
bool EnsureEntry(const SFileSpec& spec, const SString& folderName, const SString& first,
                 const SString& last, int16_t limit);

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
