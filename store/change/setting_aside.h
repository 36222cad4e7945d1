// Taking an entry out of its list with all that belongs to it, and putting it back: one rename
// each, instant at any size, and at every moment the entry is in its list or set aside, never in
// neither and never in both. Nobody who uses a file below it is disturbed: then nothing is changed.
//
// The place is outside every list. Where it is and what stands beside it is the caller's; a rename
// needs it on the same file system.
#pragma once

#include <functional>

#include "store/list/entries.h"
#include "store/place/site.h"

namespace kivstore {

// `list` is the folder that lists the entry; `place` is free and its folder there. False with the
// reason noted. A line that could not be taken out of the index does not show in the answer: the
// next listing drops it.
bool SetAside(SSite& site, const SFileSpec& list, ListKind kind, const SLoginNameObj& entry,
              const SFileSpec& place);

// The folder `aside` comes back into `list` under its own names, which `entry` gets with the folder
// name that it has there: its old one, or if that is taken a new one. Under the list's lock
// `isMeant` is asked whether it still is who was to come back: somebody else may have brought that
// one back, and another may lie in its place.
using IsMeant = std::function<bool(const SLoginNameObj& owner)>;
bool PutBack(SSite& site, const SFileSpec& list, ListKind kind, const SFileSpec& aside,
             const IsMeant& isMeant, SLoginNameObj& entry);

}  // namespace kivstore
