#define _FILE_OFFSET_BITS 64
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "platform/base/bytes.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/file_locks.h"
#include "platform/posix/posix_file_services.h"
#include "platform/posix/posix_path.h"

namespace kivstore {
namespace {

constexpr int kOpenFlags = O_NONBLOCK | O_CLOEXEC | O_NOCTTY | O_NOFOLLOW;

// Takes the file for this program alone as long as `hold` lives.
int HoldAlone(const char* path, Descriptor& hold) {
  hold.Reset(open(path, O_RDWR | kOpenFlags));
  if (!hold.IsOpen()) {
    return errno;
  }
  return LockAlone(hold.Get()) == EAGAIN ? EAGAIN : 0;
}

// A file that may not be written may be moved. Its lock cannot be taken, but asked for.
int HoldToMove(const char* path, Descriptor& hold) {
  const int failure = HoldAlone(path, hold);
  if (failure != EACCES && failure != EROFS) {
    return failure;
  }
  hold.Reset(open(path, O_RDONLY | kOpenFlags));
  if (!hold.IsOpen()) {
    return errno;
  }
  return IsHeldElsewhere(hold.Get()) ? EAGAIN : 0;
}

int DeleteFileAt(const char* path) {
  struct stat facts;
  if (lstat(path, &facts) != 0) {
    return errno;
  }
  if (S_ISDIR(facts.st_mode)) {
    return EISDIR;
  }
  Descriptor hold;
  if (S_ISREG(facts.st_mode)) {
    const bool readOnly = (facts.st_mode & S_IWUSR) == 0;
    const int failure = readOnly ? EACCES : HoldAlone(path, hold);
    if (failure != 0) {
      return failure;
    }
  }
  return unlink(path) == 0 ? 0 : errno;
}

bool IsLinkToFolder(const char* path) {
  struct stat facts;
  return lstat(path, &facts) == 0 && S_ISLNK(facts.st_mode) && stat(path, &facts) == 0 &&
         S_ISDIR(facts.st_mode);
}

int RemoveFolderAt(const char* path) {
  if (rmdir(path) == 0) {
    return 0;
  }
  if (errno != ENOTDIR || !IsLinkToFolder(path)) {
    return errno;
  }
  return unlink(path) == 0 ? 0 : errno;
}

// What a path names; links are not followed.
SystemError Locate(PosixPath& path, struct stat& facts) {
  SystemError error = path.Check();
  if (error != SystemError::kNone || lstat(path.Text(), &facts) == 0) {
    return error;
  }
  if (errno != ENOENT) {
    return ToSystemError(errno);
  }
  error = path.MatchNames();
  if (error != SystemError::kNone) {
    return error;
  }
  return lstat(path.Text(), &facts) == 0 ? SystemError::kNone : ToSystemError(errno);
}

bool IsSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// Where a move leads, which must be free. `respelled`: what stands there is the source itself under
// another letter case.
SystemError LocateTarget(PosixPath& target, const PosixPath& source, const struct stat& sourceFacts,
                         bool& respelled) {
  const PosixPath asked = target;
  struct stat facts;
  const SystemError error = Locate(target, facts);
  respelled = error == SystemError::kNone && IsSameFile(facts, sourceFacts) &&
              EqualBytesNoCase(target.View(), source.View());
  if (error != SystemError::kNone && error != SystemError::kFileNotFound) {
    return error;
  }
  if (error == SystemError::kNone && !respelled) {
    return SystemError::kAlreadyExists;
  }
  target.TakeLastName(asked);
  return SystemError::kNone;
}

int HoldForMove(const PosixPath& source, const struct stat& facts, Descriptor& hold,
                FolderHold& folderHold) {
  if (S_ISDIR(facts.st_mode)) {
    return folderHold.Take(source.Text());
  }
  return S_ISREG(facts.st_mode) ? HoldToMove(source.Text(), hold) : 0;
}

int RenameToFree(const char* from, const char* to) {
  if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
    return 0;
  }
  if (errno != EINVAL && errno != ENOSYS) {
    return errno;
  }
  // A file system that knows no such flag.
  struct stat facts;
  if (lstat(to, &facts) == 0) {
    return EEXIST;
  }
  return rename(from, to) == 0 ? 0 : errno;
}

}  // namespace

bool SPosixFileServices::Delete(const char* path, SystemError& error) {
  error = OnPath(path, DeleteFileAt);
  return error == SystemError::kNone;
}

bool SPosixFileServices::RemoveFolder(const char* path, SystemError& error) {
  error = OnPath(path, RemoveFolderAt);
  return error == SystemError::kNone;
}

void SPosixFileServices::NoteBlocker(std::string_view path) {
  path = path.substr(0, sizeof blockingFile - 1);
  *std::replace_copy(path.begin(), path.end(), blockingFile, '/', '\\') = '\0';
}

bool SPosixFileServices::Move(const char* from, const char* to, SystemError& error) {
  PosixPath source(from);
  PosixPath target(to);
  struct stat facts;
  bool respelled = false;
  NoteBlocker({});
  error = Locate(source, facts);
  if (error == SystemError::kNone) {
    error = LocateTarget(target, source, facts, respelled);
  }
  if (error != SystemError::kNone) {
    return false;
  }
  Descriptor hold;
  FolderHold folderHold;
  int failure = HoldForMove(source, facts, hold, folderHold);
  NoteBlocker(folderHold.GetBlocker());
  if (failure == 0 && respelled) {
    failure = rename(source.Text(), target.Text()) == 0 ? 0 : errno;
  } else if (failure == 0) {
    failure = RenameToFree(source.Text(), target.Text());
  }
  error = ToSystemError(failure);
  return failure == 0;
}

}  // namespace kivstore
