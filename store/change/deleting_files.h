// Deleting files of an entry together with their lines in its index. Only a playing tutor does.
#pragma once

#include "foundation/containers/string_array.h"
#include "foundation/files/file_spec.h"
#include "store/place/login_name.h"
#include "store/place/site.h"

namespace kivstore {

// The visible files of the entry's folder, or of a folder in it, whose names are longer than one of
// the suffixes and end in it, letter case ignored; the first that stays ends it. Then the entries
// whose extension is one of the suffixes leave the index of the entry's own folder.
void DeleteFilesBySuffix(SSite& site, const SLoginNameObj* classEntry, const SLoginNameObj* student,
                         const SStringArray& suffixes, const SString& subfolder);

// One file and its entry in the index beside it. A file that is gone is a success.
bool DeleteUserFile(SSite& site, SFileSpec& spec, bool lockIt);

}  // namespace kivstore
