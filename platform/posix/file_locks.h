// Share modes, told to the file server as locks on the whole file: a reader holds a read lock,
// whoever writes a write lock. The locks belong to the handle, not to the process, so that two
// handles of one process exclude each other like those of two. Nothing here waits.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/descriptor.h"
#include "platform/posix/folder_reader.h"

namespace kivstore {

// Each answers 0, EAGAIN if another handle stands in the way, or the system's error where the file
// system has no such locks.
int LockShared(int file);
int LockAlone(int file);

// By its ending, ".lok": a file that is there to be locked and holds nothing.
bool IsLockFile(std::string_view path);

// Whether another handle has the file open; asks only, so that reading access is enough.
bool IsHeldElsewhere(int file);

// Keeps others out of a folder that is about to be renamed, as long as it lives. A look alone would
// let a login slip in between it and the rename: so every lock file below is
// taken, and every other file asked.
class FolderHold {
 public:
  // 0; EAGAIN if a file below is open anywhere or the tree is deeper than any store's; or that
  // there are not handles enough to know.
  int Take(const char* folder);
  // The file that was in the way, with its path; empty if none was.
  const std::string& GetBlocker() const { return blocker; }

 private:
  int TakeBelow(const char* path, int base, int depth);
  int TakeEntry(int folder, const RawEntry& entry, int depth);
  int TakeFile(int folder, const char* name);

  std::vector<std::unique_ptr<Descriptor>> held;
  std::string blocker;
};

}  // namespace kivstore
