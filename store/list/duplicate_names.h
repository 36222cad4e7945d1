// Entries of one name in a list: all but one get another letter or digit at the end of the name, so
// that each can be told apart.
#pragma once

#include "foundation/files/file_spec.h"
#include "store/list/entries.h"
#include "store/place/site.h"

namespace kivstore {

// `logins` are sorted by CompareByDisplayName and stay so; `folder` is the list folder. The new
// name goes into the entry's own longname.kiv, where its lock can be had.
void VaryDuplicateNames(SSite& site, const SFileSpec& folder, SLoginList& logins);

}  // namespace kivstore
