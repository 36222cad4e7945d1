// The small files beside the lists.
//
// "last.kiv", the files a student last used, at most one of each type: a count (4 bytes, unsigned,
// big-endian) and that many file names, each its bytes and one NUL. No lock is taken for it: the
// game save around it holds the lock of the student's folder.
#pragma once

#include "foundation/files/file_spec.h"
#include "foundation/login_name.h"
#include "foundation/text/string.h"

namespace kivstore {

// Replaces the name of the file's type, in place. A type that is not listed yet is added to an
// empty list only.
void RecordLastFile(const SLoginNameObj* classEntry, const SLoginNameObj* student,
                    const SString& fileName, const SString& extension);

// The file of that type named in last.kiv; false, with the spec on last.kiv, if there is none.
bool FindLastFile(SFileSpec& spec, const SLoginNameObj* classEntry, const SLoginNameObj* student,
                  const SString& extension, bool removable);

// Deletes the options files of all levels of the current teacher's branch, by folders and not by
// index. No lock is taken.
void DeleteStoreFiles();

}  // namespace kivstore
