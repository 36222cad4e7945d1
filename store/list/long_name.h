// "longname.kiv" in an entry's folder says whom the folder belongs to: firstName and lastName, each
// its bytes and one NUL, no header. It is how a folder that has lost its line in the index finds
// its way back.
#pragma once

#include "archive/composed_file.h"
#include "foundation/files/file_spec.h"
#include "foundation/text/string.h"

namespace kivstore {

// `folder` is the entry's. False if the file could not be written to its end.
bool WriteLongName(const SFileSpec& folder, const SString& first, const SString& last);
// The file's contents, for a folder that is made with it.
void ComposeLongName(SComposedFile& contents, const SString& first, const SString& last);
// False if the file is missing or cannot be opened, and the texts are then as they were; or if
// bytes are left over, since its writer has died on the way: what it says is not to be trusted.
// `last` stays as it was where the file ends within the first text.
bool ReadLongName(const SFileSpec& file, SString& first, SString& last);

}  // namespace kivstore
