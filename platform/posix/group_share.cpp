#define _FILE_OFFSET_BITS 64
#include "platform/posix/group_share.h"

#include <fcntl.h>

#include <string_view>

#include "platform/posix/descriptor.h"

namespace kivstore {
namespace {

// The folder that was looked at last, with its separator behind; empty at first.
char gLastFolder[4096] = "";
mode_t gLastRights = 0;

mode_t RightsIn(const char* folder) {
  struct stat facts;
  const bool isShared = stat(folder, &facts) == 0 && (facts.st_mode & S_ISGID) != 0;
  return isShared ? facts.st_mode & S_IRWXG : 0;
}

}  // namespace

mode_t GroupRightsBeside(const char* path) {
  const std::string_view whole(path);
  const size_t end = whole.find_last_not_of('/');
  const size_t start = end == whole.npos ? whole.npos : whole.rfind('/', end);
  const std::string_view folder =
      start == whole.npos ? std::string_view("./") : whole.substr(0, start + 1);
  if (folder.size() >= sizeof gLastFolder) {
    return 0;  // no path is as long
  }
  if (folder != gLastFolder) {
    gLastFolder[folder.copy(gLastFolder, folder.size())] = '\0';
    gLastRights = RightsIn(gLastFolder);
  }
  return gLastRights;
}

void GiveToGroup(int made, mode_t rights) {
  struct stat facts;
  if (rights == 0 || fstat(made, &facts) != 0) {
    return;
  }
  const mode_t wanted = WithGroupRights(facts.st_mode, rights);
  if (wanted != facts.st_mode) {
    (void)fchmod(made, wanted & 07777);
  }
}

void GiveFolderToGroup(int base, const char* name, mode_t rights) {
  if (rights != 0) {
    const Descriptor folder(openat(base, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    GiveToGroup(folder.Get(), rights);
  }
}

}  // namespace kivstore
