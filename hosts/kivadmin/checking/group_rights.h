// The rights by which the members of a group work in one store, on a system that has them: every
// folder set-group and open to the group (2770), every file open to it as to its owner (0660), none
// of it by lists of access. On Windows rights belong to the folder of the server, and nothing here
// does anything.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

// What has such rights: files and folders, with all that is below them.
struct StoreParts {
  std::string root;  // of the data root only the folder itself, and these in it, are the store's
  std::vector<std::string> names;
};
StoreParts PartsOf(const Session& session);

// Throws HostError (wrong usage) if there is none of that name, or no groups here.
uint32_t NeedGroup(const std::string& name);

// Gives the store to the group. `marks`: folders get the mark of a file server too, by which what a
// workstation hides is looked for (platform/posix/dos_mark.h). What other users own, and what lies
// behind links, stays as it is; throws at the end if anything could not be given.
void GiveToGroup(const StoreParts& store, uint32_t group, bool marks);

// What shuts others of its group out of a store whose root or whose first part is set-group, and
// the command that mends it; nothing where neither is.
struct RightsTrouble {
  std::string path;
  std::string what;
};
std::vector<RightsTrouble> FindRightsTroubles(const StoreParts& store);

}  // namespace kivadmin
