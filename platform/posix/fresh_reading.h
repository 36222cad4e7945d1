// Reading what other machines have written, on a file system that they share.
//
// A lock there is the server's, but bytes, sizes and names may come from a cache of this machine,
// of the kernel or of the file system's own process, and be a second old or more: behind a lock
// that is held, somebody would read what was there before the change that the lock kept others from
// seeing, and write it back. So:
//
//   bytes   read past the kernel's cache (O_DIRECT).
//   sizes   asked of the server (AT_STATX_FORCE_SYNC) once something was read, which brings the
//           file system's own process up to date too. By an old size the kernel adds zeros to what
//           it has read, or reads nothing at all: so it is read until both agree.
//   names   the folder is read anew once one of its lock files is held. That brings names and
//           sizes of all that lies in it.
//   locks   given back before the file is closed: of a closing the server is told later, and the
//           next one to ask for the lock would be refused.
//
// None of this is done on a local file system.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>

#include "platform/posix/descriptor.h"

namespace kivstore {

// As pread(2), whatever the buffer is: one that is refused for direct reading is read without.
ssize_t ReadAt(int file, char* buffer, size_t count, int64_t position);
// The first bytes of a file on such a file system, as pread(2). -1 with EISDIR for a folder.
ssize_t ReadFresh(int file, char* buffer, size_t count);
// -1 for what is no plain file.
int64_t SizeOf(int file, bool isShared);
// Reads the folder that `path`, a store's, lies in, and takes nothing of it.
void ListFolderOf(const char* path);

// A file with a lock on it.
class LockedFile : public Descriptor {
 public:
  using Descriptor::Descriptor;
  ~LockedFile() { LetGo(); }

 private:
  void LetGo() const;
};

}  // namespace kivstore
