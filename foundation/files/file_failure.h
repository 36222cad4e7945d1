// Where the last file operation that failed was refused, and why.
//
// An operation of SFileSpec, SFile or SFileFinder that answers false because the system said no
// notes it here; one that goes well notes nothing and leaves what stands here. So whoever is told
// false looks at once. Set notes only a failure that is not simply that nothing is there.
#pragma once

#include <cstdint>

#include "foundation/text/string.h"
#include "platform/file_services.h"

namespace kivstore {

struct SFileFailure {
  // In the store's form; of a tree, the innermost file or folder that was refused. A failed copy
  // names the target if that had no room or could not be written, else the source.
  SString path;
  SystemError error = SystemError::kNone;
  uint32_t linkOwner = 0;  // with kForeignLink, where `path` is the link
  uint32_t number = 0;     // one more with each failure: tells a new one from one that was known
};

const SFileFailure& LastFileFailure();

// Answers false, so that a failing operation can end with it.
bool NoteFileFailure(const SString& path, SystemError error);

}  // namespace kivstore
