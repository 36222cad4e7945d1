// Making things for a group. A folder that a group shares is set-group, so that what is made in it
// belongs to the group too. What the creating services make there also gets what the folder lets
// the group do, whatever the umask of the process says: under 077 a new lock file would shut
// everybody but its maker out of the list.
#pragma once

#include <sys/stat.h>

namespace kivstore {

// What the folder of `path` lets its group do, as bits of the group; 0 if it is not set-group. One
// look, and none while what is made lies in the same folder.
mode_t GroupRightsBeside(const char* path);

// `mode` with these rights for the group, as far as the owner has them.
inline mode_t WithGroupRights(mode_t mode, mode_t rights) {
  return mode | (rights & (mode & S_IRWXU) >> 3);
}

// To what has just been made and is open. As far as it can; without rights no call.
void GiveToGroup(int made, mode_t rights);
// The same of a new folder, `name` in `base`.
void GiveFolderToGroup(int base, const char* name, mode_t rights);

}  // namespace kivstore
