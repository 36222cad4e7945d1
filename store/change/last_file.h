// "last.kiv", the files a student last used, at most one of each type: a count (4 bytes, unsigned,
// big-endian) and that many file names, each its bytes and one NUL. No lock is taken for it: the
// game save around it holds the lock of the student's folder. Only a playing tutor keeps one.
#pragma once

#include "foundation/files/file_spec.h"
#include "foundation/text/string.h"
#include "store/place/login_name.h"
#include "store/place/site.h"

namespace kivstore {

// Replaces the name of the file's type, in place. A type that is not listed yet is added to an
// empty list only.
void RecordLastFile(SSite& site, const SLoginNameObj* classEntry, const SLoginNameObj* student,
                    const SString& fileName, const SString& extension);

// The file of that type named in last.kiv; false, with the spec on last.kiv, if there is none.
// `removable` places the answer where removable data lies.
bool FindLastFile(SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
                  const SLoginNameObj* student, const SString& extension, bool removable);

}  // namespace kivstore
