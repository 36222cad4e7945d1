// The small files beside the lists. Only a playing tutor makes and clears them.
#pragma once

#include "foundation/files/file_spec.h"
#include "store/place/login_name.h"
#include "store/place/site.h"

namespace kivstore {

// Places the spec on the level's topScore.kiv and makes it if it is missing. What stands in it is
// the tutor's own.
void MakeTopScoreFile(SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
                      const SLoginNameObj* student);

// Deletes the options files of all levels of the selected teacher's branch, by folders and not by
// index. No lock is taken.
void DeleteStoreFiles(SSite& site);

}  // namespace kivstore
