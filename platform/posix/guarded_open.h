// Opening below the data root without being led out of it.
//
// Whoever may write in a store can plant a symbolic link in it. Below the root that data_root.h
// keeps a link is followed only if it belongs to root or to the user of this process, as the last
// name or on the way to it: an administrator's link to another disk goes on working, anybody else's
// is in the way. The links that its target goes through are held to the same. What lies outside the
// root is opened as the system opens it.
//
// Where there is no link that is one call, like any opening: openat2 refuses to follow links, on
// the whole path or, if a link leads to the root, from a handle of it, and only when it refuses
// there too are the names walked one by one. A kernel that lacks openat2, or a sandbox that forbids
// it, has them walked always, three calls for each name on the way.
#pragma once

#include <sys/stat.h>

#include <string>

#include "platform/file_services.h"
#include "platform/posix/descriptor.h"

namespace kivstore {

// Failures of our own among the system's error numbers, and beyond them.
inline constexpr int kForeignLinkFailure = 0x10001;
inline constexpr int kNoPlainFileFailure = 0x10002;

// 0 or the failure. `flags` are those of open; O_CLOEXEC is added.
int OpenGuarded(const char* path, int flags, Descriptor& opened, mode_t mode = 0);

// What an lstat has told of `path`: kForeignLinkFailure if it is a link that is not followed, else
// 0.
int CheckLink(const char* path, const struct stat& facts);

// The folder that an entry is in, for the calls that change the entry: they act from its handle on
// the last name, so that nobody can put a link into the way between. Below a folder of the root
// that costs two calls, opening and closing.
class GuardedFolder {
 public:
  // 0 or the failure.
  int Open(const char* path);
  int Get() const { return base; }
  const char* Name() const { return name.c_str(); }
  // 0 or the system's error; a link is not followed.
  int Look(struct stat& facts) const;
  // Gives this entry the other's place, which must be free. 0 or the system's error.
  int MoveTo(const GuardedFolder& place) const;

 private:
  int base = -1;
  Descriptor folder;
  std::string name;
};

// The link that stopped the last operation.
ForeignLink LastForeignLink();

}  // namespace kivstore
