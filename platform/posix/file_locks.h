// Share modes, told to the file server as locks on the whole file: a reader holds a read lock,
// whoever writes a write lock. The locks belong to the handle, not to the process, so that two
// handles of one process exclude each other like those of two. Behind the locks stand leases
// (write_lease.h), which programs meet that ask for no locks. Nothing here waits.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/folder_reader.h"
#include "platform/posix/fresh_reading.h"

namespace kivstore {

// Each answers 0, EAGAIN if another handle stands in the way, or the system's error where the file
// system has no such locks. A lease that cannot be had is no failure.
int LockShared(int file);  // without a lease: readers are many
int LockAlone(int file);
int LockToCopy(int file);  // as LockShared, and nobody may write meanwhile; open for reading only

// By its ending, ".lok": a file that is there to be locked and holds nothing.
bool IsLockFile(std::string_view path);

// Whether another handle holds the file, or a program that asks for no locks writes it; the file is
// open for reading only. Where a lease can be had it is held from this look on.
bool IsHeldElsewhere(int file);

// Keeps others out of a folder that is about to be renamed, as long as it lives. A look alone would
// let a login slip in between it and the rename: so every lock file below is taken, and every other
// file asked.
class FolderHold {
 public:
  // 0; EAGAIN if a file below is open anywhere or the tree is deeper than any store's; or that
  // there are not handles enough to know.
  int Take(const char* folder);
  void LetGo() { held.clear(); }
  bool IsEmpty() const { return held.empty(); }
  // The file that was in the way, with its path; empty if none was.
  const std::string& GetBlocker() const { return blocker; }

 private:
  struct Entry {
    std::string name;
    unsigned char type;
  };
  using Entries = std::vector<Entry>;

  int TakeBelow(const char* path, int base, int depth);
  int TakeLocks(FolderReader& folder, Entries& others);
  int TakeEntry(int folder, const Entry& entry, int depth);
  int TakeLock(int folder, const char* name);
  int LookAt(int folder, const char* name);
  int NoteBlocker(int failure, const std::string& name);

  std::vector<std::unique_ptr<LockedFile>> held;
  std::string blocker;
};

}  // namespace kivstore
