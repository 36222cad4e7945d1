#define _FILE_OFFSET_BITS 64
#include "platform/posix/file_locks.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>

#include <cerrno>
#include <string_view>
#include <utility>

#include "platform/base/bytes.h"
#include "platform/posix/write_lease.h"

namespace kivstore {
namespace {

constexpr int kMaxDepth = 256;
constexpr int kOpenFlags = O_NONBLOCK | O_CLOEXEC | O_NOCTTY | O_NOFOLLOW;

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

// Why a file could not be opened, if that leaves open whether somebody has it: a lease, or what
// holds it at the file server, or that there are not handles enough. What cannot be opened
// otherwise is held by nobody who came through this program.
int Doubt(int failure) {
  switch (failure) {
    case EMFILE:
    case ENFILE:
      return failure;
    case EAGAIN:
    case EBUSY:
    case ETXTBSY:
      return EAGAIN;
    default:
      return 0;
  }
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
  const int failure = Lock(file, F_WRLCK);
  return failure == 0 && LeaseAlone(file) == EAGAIN ? EAGAIN : failure;
}

int LockToCopy(int file) {
  const int failure = LockShared(file);
  return failure == 0 && LeaseForLook(file) == EAGAIN ? EAGAIN : failure;
}

bool IsHeldElsewhere(int file) {
  struct flock lock = WholeFile(F_WRLCK);
  const bool isLocked = fcntl(file, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
  return isLocked || LeaseForLook(file) == EAGAIN;
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
    return Doubt(failure);
  }
  Entries others;
  int failure = TakeLocks(folder, others);
  for (size_t i = 0; failure == 0 && i < others.size(); ++i) {
    failure = NoteBlocker(TakeEntry(folder.GetDescriptor(), others[i], depth), others[i].name);
  }
  return failure;
}

// Whoever goes by the rules holds a lock while a file beside it is open: with the locks taken
// first, the look at the other files disturbs nobody.
int FolderHold::TakeLocks(FolderReader& folder, Entries& others) {
  RawEntry entry;
  int failure = 0;
  while (failure == 0 && folder.Next(entry)) {
    if (entry.type == DT_REG && IsLockFile(entry.Name())) {
      failure = NoteBlocker(TakeLock(folder.GetDescriptor(), entry.name), entry.name);
    } else if (!entry.IsDots()) {
      others.push_back({entry.name, entry.type});
    }
  }
  return failure;
}

int FolderHold::NoteBlocker(int failure, const std::string& name) {
  if (failure != 0) {
    blocker.insert(0, name + (blocker.empty() ? "" : "/"));
  }
  return failure;
}

int FolderHold::TakeEntry(int folder, const Entry& entry, int depth) {
  int failure = 0;
  if (entry.type == DT_REG || entry.type == DT_UNKNOWN) {
    failure = IsLockFile(entry.name) ? TakeLock(folder, entry.name.c_str())
                                     : LookAt(folder, entry.name.c_str());
  }
  if (failure == 0 && (entry.type == DT_DIR || entry.type == DT_UNKNOWN)) {
    failure = TakeBelow(entry.name.c_str(), folder, depth + 1);
  }
  return failure;
}

// A lock file that may not be written is only asked.
int FolderHold::TakeLock(int folder, const char* name) {
  auto lock = std::make_unique<LockedFile>(OpenWithRoom(folder, name, O_RDWR | kOpenFlags));
  if (!lock->IsOpen()) {
    const int failure = Doubt(errno);
    return failure != 0 ? failure : LookAt(folder, name);
  }
  const int failure = LockAlone(lock->Get());
  held.push_back(std::move(lock));
  return failure == EAGAIN ? EAGAIN : 0;
}

int FolderHold::LookAt(int folder, const char* name) {
  const Descriptor file(OpenWithRoom(folder, name, O_RDONLY | kOpenFlags));
  if (!file.IsOpen()) {
    return Doubt(errno);
  }
  return IsHeldElsewhere(file.Get()) ? EAGAIN : 0;
}

}  // namespace kivstore
