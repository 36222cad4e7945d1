// Share modes, told to the file server as locks on the whole file: a reader holds a read lock,
// whoever writes a write lock. The locks belong to the handle, not to the process, so that two
// handles of one process exclude each other like those of two. Nothing here waits.
#pragma once

namespace kivstore {

// Each answers 0, EAGAIN if another handle stands in the way, or the system's error where the file
// system has no such locks.
int LockShared(int file);
int LockAlone(int file);

// Whether another handle has the file open; asks only, so that reading access is enough.
bool IsHeldElsewhere(int file);

// A folder, with all the folders in it, of which no file is open anywhere.
bool HoldsOpenFile(const char* folder);

}  // namespace kivstore
