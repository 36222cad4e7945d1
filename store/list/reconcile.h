// Holding an index against its folder, and putting it right. The folder on disk is the truth about
// which entries exist, index.kiv about their names, longname.kiv the fallback for a name the index
// has lost. The index is written only if something was repaired.
//
// Under the list's lock, which the caller holds. `spec` stands on the list folder and stays there.
// A folder that cannot be read to its end, or has more than a list can hold, repairs nothing: what
// was not seen may be there. Where other machines share the file system the index is read once more
// before it is written, and must be what it was. A half that the index lacks is none to repair.
#pragma once

#include "foundation/files/file_spec.h"
#include "store/list/index_object.h"
#include "store/place/site.h"

namespace kivstore {

// Leaves the logins in folder-name order, or in display order after a repair. False if the folder
// could not be held against them.
bool ReconcileLogins(SSite& site, const SFileSpec& spec, SIndexObj& index);
// For the files of one extension; those of others follow them.
void ReconcileFiles(const SFileSpec& spec, SIndexObj& index, const SString& extension);

}  // namespace kivstore
