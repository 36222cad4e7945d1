// Many students for one class, as an import brings them: under one hold of the list's lock the
// index is read, held against its folder, and written once for all who were added.
//
// Here the folders come first, each whole with its long name, and their lines follow together. A
// death in between loses nobody: the next listing asks the folders that have no line. Before the
// first folder every line without one is out of the index, so that none appears under another's
// name.
#pragma once

#include <span>

#include "foundation/files/file_spec.h"
#include "foundation/text/string.h"
#include "platform/file_services.h"
#include "store/place/site.h"

namespace kivstore {

struct SNewcomer {
  enum Outcome { kWaiting, kAdded, kThere, kFull };

  SString first, last;
  Outcome outcome = kWaiting;
  SString folderName = {};  // once added or there
};

// Takes those who wait, in their order, for at most five seconds, so that others who want the list
// get it in between: it is called again while somebody waits. `besides` is what each new folder
// gets beside its long name. False, with the reason noted, where the list cannot be worked on or a
// folder could not be made: whoever waits then is not added.
bool AddStudentsAt(SSite& site, const SFileSpec& list, std::span<SNewcomer> newcomers,
                   std::span<const NewFile> besides);

}  // namespace kivstore
