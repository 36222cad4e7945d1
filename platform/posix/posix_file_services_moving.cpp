#define _FILE_OFFSET_BITS 64
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "platform/base/bytes.h"
#include "platform/posix/dos_mark.h"
#include "platform/posix/file_locks.h"
#include "platform/posix/file_system_kind.h"
#include "platform/posix/fresh_reading.h"
#include "platform/posix/guarded_open.h"
#include "platform/posix/posix_file_services.h"
#include "platform/posix/posix_path.h"

namespace kivstore {
namespace {

constexpr int kOpenFlags = O_NONBLOCK | O_CLOEXEC | O_NOCTTY | O_NOFOLLOW;

int OpenIn(const GuardedFolder& folder, int flags, Descriptor& opened) {
  opened.Reset(openat(folder.Get(), folder.Name(), flags | kOpenFlags));
  return opened.IsOpen() ? 0 : errno;
}

// Takes the file for this program alone as long as `hold` lives.
int HoldAlone(const GuardedFolder& folder, LockedFile& hold) {
  const int failure = OpenIn(folder, O_RDWR, hold);
  return failure == 0 && LockAlone(hold.Get()) == EAGAIN ? EAGAIN : failure;
}

// A file that may not be written may be moved. Its lock cannot be taken, but asked for.
int HoldToMove(const GuardedFolder& folder, LockedFile& hold) {
  int failure = HoldAlone(folder, hold);
  if (failure != EACCES && failure != EROFS) {
    return failure;
  }
  failure = OpenIn(folder, O_RDONLY, hold);
  return failure == 0 && IsHeldElsewhere(hold.Get()) ? EAGAIN : failure;
}

int Unlink(const GuardedFolder& folder, int flags = 0) {
  return unlinkat(folder.Get(), folder.Name(), flags) == 0 ? 0 : errno;
}

int DeleteFileAt(const char* path) {
  GuardedFolder folder;
  struct stat facts;
  int failure = folder.Open(path);
  if (failure != 0 || (failure = folder.Look(facts)) != 0) {
    return failure;
  }
  if (S_ISDIR(facts.st_mode)) {
    return EISDIR;
  }
  LockedFile hold;
  if (S_ISREG(facts.st_mode)) {
    const bool readOnly = (facts.st_mode & S_IWUSR) == 0;
    failure = readOnly ? EACCES : HoldAlone(folder, hold);
    if (failure == 0 && (MarkOf(hold.Get()) & kDosReadOnly) != 0) {
      failure = EACCES;
    }
  }
  return failure == 0 ? Unlink(folder) : failure;
}

// One that is not followed goes as itself, whatever it leads to.
bool IsLinkToFolder(const GuardedFolder& folder, const char* path) {
  struct stat facts;
  return folder.Look(facts) == 0 && S_ISLNK(facts.st_mode) &&
         (CheckLink(path, facts) != 0 ||
          (fstatat(folder.Get(), folder.Name(), &facts, 0) == 0 && S_ISDIR(facts.st_mode)));
}

int RemoveFolderAt(const char* path) {
  GuardedFolder folder;
  int failure = folder.Open(path);
  if (failure == 0) {
    failure = Unlink(folder, AT_REMOVEDIR);
  }
  return failure == ENOTDIR && IsLinkToFolder(folder, path) ? Unlink(folder) : failure;
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

int HoldForMove(const PosixPath& source, const GuardedFolder& folder, const struct stat& facts,
                LockedFile& hold, FolderHold& folderHold) {
  if (S_ISDIR(facts.st_mode)) {
    return folderHold.Take(source.Text());
  }
  return S_ISREG(facts.st_mode) ? HoldToMove(folder, hold) : 0;
}

int Rename(const GuardedFolder& from, const GuardedFolder& to, bool respelled) {
  if (!respelled) {
    return from.MoveTo(to);
  }
  return renameat(from.Get(), from.Name(), to.Get(), to.Name()) == 0 ? 0 : errno;
}

// The hold on a folder can itself be what the server of a share refuses for. There it is let go:
// that nobody else has a file open below is then seen to by the server, in the renaming itself.
int RenameHeld(const PosixPath& source, const GuardedFolder& from, const GuardedFolder& to,
               bool respelled, FolderHold& hold) {
  const int failure = Rename(from, to, respelled);
  const bool mayBeHold = failure == EACCES || failure == EBUSY || failure == ETXTBSY;
  if (!mayBeHold || hold.IsEmpty() ||
      KindOfFileSystem(source.Text()) != FileSystemKind::kWindowsShare) {
    return failure;
  }
  hold.LetGo();
  return Rename(from, to, respelled);
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
  GuardedFolder sourceFolder, targetFolder;
  int failure = sourceFolder.Open(source.Text());
  if (failure == 0) {
    failure = targetFolder.Open(target.Text());
  }
  LockedFile hold;
  FolderHold folderHold;
  if (failure == 0) {
    failure = HoldForMove(source, sourceFolder, facts, hold, folderHold);
    NoteBlocker(folderHold.GetBlocker());
  }
  if (failure == 0 && S_ISDIR(facts.st_mode)) {
    InheritMark(target.Text(), sourceFolder.Get(), sourceFolder.Name());
  }
  if (failure == 0) {
    failure = RenameHeld(source, sourceFolder, targetFolder, respelled, folderHold);
  }
  error = ToSystemError(failure);
  return failure == 0;
}

}  // namespace kivstore
