#define _FILE_OFFSET_BITS 64
#include "platform/posix/file_locks.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>

#include <cerrno>
#include <string_view>
#include <utility>

#include "platform/base/bytes.h"

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

bool IsOutOfHandles(int failure) {
  return failure == EMFILE || failure == ENFILE;
}

// A teacher's folder has more lock files than a process may have open unless it asks for more.
bool AskForHandles() {
  rlimit handles;
  if (getrlimit(RLIMIT_NOFILE, &handles) != 0 || handles.rlim_cur == handles.rlim_max) {
    return false;
  }
  handles.rlim_cur = handles.rlim_max;
  return setrlimit(RLIMIT_NOFILE, &handles) == 0;
}

int OpenWithRoom(int folder, const char* name, int flags) {
  const int file = openat(folder, name, flags);
  return file < 0 && errno == EMFILE && AskForHandles() ? openat(folder, name, flags) : file;
}

}  // namespace

bool IsLockFile(std::string_view path) {
  constexpr std::string_view kEnding = ".lok";
  return path.size() > kEnding.size() &&
         EqualBytesNoCase(path.substr(path.size() - kEnding.size()), kEnding);
}

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

int FolderHold::Take(const char* folder) {
  const int failure = TakeBelow(folder, AT_FDCWD, 0);
  if (failure != 0 && !blocker.empty()) {
    blocker.insert(0, std::string(folder) + '/');
  }
  return failure;
}

int FolderHold::TakeBelow(const char* path, int base, int depth) {
  if (depth > kMaxDepth) {
    return EAGAIN;
  }
  FolderReader folder;
  if (const int failure = folder.Open(path, base, O_NOFOLLOW); failure != 0) {
    return IsOutOfHandles(failure) ? failure : 0;
  }
  RawEntry entry;
  while (folder.Next(entry)) {
    const int failure = entry.IsDots() ? 0 : TakeEntry(folder.GetDescriptor(), entry, depth);
    if (failure != 0) {
      blocker.insert(0, entry.name + (blocker.empty() ? std::string() : "/"));
      return failure;
    }
  }
  return 0;
}

int FolderHold::TakeEntry(int folder, const RawEntry& entry, int depth) {
  int failure = 0;
  if (entry.type == DT_REG || entry.type == DT_UNKNOWN) {
    failure = TakeFile(folder, entry.name);
  }
  if (failure == 0 && (entry.type == DT_DIR || entry.type == DT_UNKNOWN)) {
    failure = TakeBelow(entry.name, folder, depth + 1);
  }
  return failure;
}

// What cannot be opened is held by nobody who came through this program; a lock file that may not
// be written is only asked.
int FolderHold::TakeFile(int folder, const char* name) {
  constexpr int kFlags = O_NONBLOCK | O_CLOEXEC | O_NOCTTY | O_NOFOLLOW;
  if (IsLockFile(name)) {
    auto lock = std::make_unique<Descriptor>(OpenWithRoom(folder, name, O_RDWR | kFlags));
    if (lock->IsOpen()) {
      const int failure = LockAlone(lock->Get());
      held.push_back(std::move(lock));
      return failure == EAGAIN ? EAGAIN : 0;
    }
  }
  const Descriptor file(OpenWithRoom(folder, name, O_RDONLY | kFlags));
  if (!file.IsOpen()) {
    return IsOutOfHandles(errno) ? errno : 0;
  }
  return IsHeldElsewhere(file.Get()) ? EAGAIN : 0;
}

}  // namespace kivstore
