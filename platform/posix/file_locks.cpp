#define _FILE_OFFSET_BITS 64
#include "platform/posix/file_locks.h"

#include <dirent.h>
#include <fcntl.h>

#include <cerrno>

#include "platform/posix/folder_reader.h"

namespace kivstore {
namespace {

constexpr int kMaxDepth = 256;

struct flock WholeFile(short type) {
  struct flock lock {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  return lock;
}

int Lock(int file, short type) {
  struct flock lock = WholeFile(type);
  if (fcntl(file, F_OFD_SETLK, &lock) == 0) {
    return 0;
  }
  return errno == EACCES || errno == EBUSY ? EAGAIN : errno;
}

bool IsOpenFile(int folder, const char* name) {
  const Descriptor file(openat(folder, name, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW));
  return file.IsOpen() && IsHeldElsewhere(file.Get());
}

// A tree deeper than any store counts as held: it is not walked to its end.
bool HoldsOpenFileAt(const char* path, int base, int depth) {
  if (depth > kMaxDepth) {
    return true;
  }
  FolderReader folder;
  if (folder.Open(path, base, O_NOFOLLOW) != 0) {
    return false;
  }
  RawEntry entry;
  while (folder.Next(entry)) {
    if (entry.IsDots()) {
      continue;
    }
    const bool mayBeFolder = entry.type == DT_DIR || entry.type == DT_UNKNOWN;
    const bool mayBeFile = entry.type == DT_REG || entry.type == DT_UNKNOWN;
    if ((mayBeFile && IsOpenFile(folder.GetDescriptor(), entry.name)) ||
        (mayBeFolder && HoldsOpenFileAt(entry.name, folder.GetDescriptor(), depth + 1))) {
      return true;
    }
  }
  return false;
}

}  // namespace

int LockShared(int file) {
  return Lock(file, F_RDLCK);
}

int LockAlone(int file) {
  return Lock(file, F_WRLCK);
}

bool IsHeldElsewhere(int file) {
  struct flock lock = WholeFile(F_WRLCK);
  return fcntl(file, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

bool HoldsOpenFile(const char* folder) {
  return HoldsOpenFileAt(folder, AT_FDCWD, 0);
}

}  // namespace kivstore
