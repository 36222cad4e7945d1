// The only source that can make a file or a folder. See CreatingFileServices.
#define _FILE_OFFSET_BITS 64
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/base/never_destroyed.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/dos_mark.h"
#include "platform/posix/file_locks.h"
#include "platform/posix/folder_reader.h"
#include "platform/posix/group_share.h"
#include "platform/posix/guarded_open.h"
#include "platform/posix/kept_buffer.h"
#include "platform/posix/posix_file_services.h"
#include "platform/posix/posix_path.h"

namespace kivstore {
namespace {

constexpr int kMaxDepth = 256;
constexpr int kMakeFlags = O_CREAT | O_EXCL | O_WRONLY | O_NOFOLLOW | O_CLOEXEC;
constexpr int kSourceFlags = O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;

KeptBuffer<0x10000> gCopyBuffer;

SystemError TakenBy(const PosixPath& place, const struct stat& taken) {
  const int refusal = CheckLink(place.Text(), taken);
  return refusal != 0 ? ToSystemError(refusal) : SystemError::kAlreadyExists;
}

// Where something is to be made: the names of its folder as they stand on disk. kAlreadyExists if
// the name is taken, in whatever letter case.
SystemError LocateFree(PosixPath& place, struct stat& taken) {
  SystemError error = place.Check();
  if (error != SystemError::kNone) {
    return error;
  }
  if (lstat(place.Text(), &taken) == 0) {
    return TakenBy(place, taken);
  }
  if (errno != ENOENT) {
    return ToSystemError(errno);
  }
  error = place.MatchNames();
  if (error == SystemError::kNone) {
    return lstat(place.Text(), &taken) == 0 ? TakenBy(place, taken) : ToSystemError(errno);
  }
  return error == SystemError::kFileNotFound ? SystemError::kNone : error;
}

int WriteAll(int file, const char* bytes, size_t count) {
  while (count > 0) {
    const ssize_t step = write(file, bytes, count);
    if (step < 0 && errno == EINTR) {
      continue;
    }
    if (step <= 0) {
      return step < 0 ? errno : ENOSPC;
    }
    bytes += step;
    count -= static_cast<size_t>(step);
  }
  return 0;
}

int CopyBytes(int from, int to) {
  char* const buffer = gCopyBuffer.Take();
  if (buffer == nullptr) {
    return ENOMEM;
  }
  int failure = 0;
  ssize_t count = 1;
  while (failure == 0 && count != 0) {
    count = read(from, buffer, gCopyBuffer.kSize);
    if (count > 0) {
      failure = WriteAll(to, buffer, static_cast<size_t>(count));
    } else if (count < 0 && errno != EINTR) {
      failure = errno;
    }
  }
  gCopyBuffer.GiveBack(buffer);
  return failure;
}

// Read-only and hidden go with the file, as far as the file system keeps them.
void CopyAttributes(int from, int to, mode_t mode) {
  char mark[kMaxDosAttribute];
  const ssize_t length = fgetxattr(from, kDosAttributeName, mark, sizeof mark);
  if (length > 0) {
    (void)fsetxattr(to, kDosAttributeName, mark, static_cast<size_t>(length), 0);
  }
  (void)fchmod(to, mode);
}

// What was opened to be copied; a file is locked.
int TakeSource(const Descriptor& source, struct stat& facts) {
  if (!source.IsOpen() || fstat(source.Get(), &facts) != 0) {
    return errno;
  }
  return S_ISREG(facts.st_mode) && LockToCopy(source.Get()) == EAGAIN ? EAGAIN : 0;
}

// A target that could not be filled does not stay.
int CopyOneFile(int source, const struct stat& facts, int base, const char* name,
                mode_t groupRights) {
  const LockedFile target(openat(base, name, kMakeFlags, 0600));
  if (!target.IsOpen()) {
    return errno;
  }
  LockAlone(target.Get());
  const int failure = CopyBytes(source, target.Get());
  if (failure != 0) {
    unlinkat(base, name, 0);
    return failure;
  }
  CopyAttributes(source, target.Get(), WithGroupRights(facts.st_mode & 0777, groupRights));
  return 0;
}

// The top of a copied tree. The copy of a folder into itself ends when it meets this.
struct MadeFolder {
  dev_t device;
  ino_t number;        // 0 before it is made
  mode_t groupRights;  // where it stands
};

int CopyEntries(FolderReader& from, int to, const MadeFolder& top, int depth);

// Before `top` is made, this is the top.
int CopyOneFolder(int base, const char* name, const struct stat& facts, int toBase,
                  const char* toName, const MadeFolder& top, int depth) {
  FolderReader from;
  int failure = from.Open(name, base, O_NOFOLLOW);
  if (failure != 0 || depth > kMaxDepth) {
    return failure != 0 ? failure : ELOOP;
  }
  if (mkdirat(toBase, toName, 0700) != 0) {
    return errno;
  }
  const Descriptor to(openat(toBase, toName, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  struct stat made;
  if (!to.IsOpen() || fstat(to.Get(), &made) != 0) {
    return errno;
  }
  const MadeFolder own{made.st_dev, made.st_ino, top.groupRights};
  failure = CopyEntries(from, to.Get(), top.number != 0 ? top : own, depth);
  const mode_t mode = WithGroupRights(facts.st_mode & 0777, top.groupRights);
  CopyAttributes(from.GetDescriptor(), to.Get(), mode | (made.st_mode & S_ISGID));
  return failure;
}

int CopyEntry(int base, const char* name, int to, const MadeFolder& top, int depth) {
  // A link leads out of the tree: it is not followed, and the copy fails.
  const LockedFile source(openat(base, name, kSourceFlags | O_NOFOLLOW));
  struct stat facts;
  const int failure = TakeSource(source, facts);
  if (failure != 0) {
    return failure;
  }
  if (S_ISREG(facts.st_mode)) {
    return CopyOneFile(source.Get(), facts, to, name, top.groupRights);
  }
  const bool isTop = facts.st_dev == top.device && facts.st_ino == top.number;
  if (isTop || !S_ISDIR(facts.st_mode)) {
    return EINVAL;
  }
  return CopyOneFolder(base, name, facts, to, name, top, depth + 1);
}

int CopyEntries(FolderReader& from, int to, const MadeFolder& top, int depth) {
  RawEntry entry;
  while (from.Next(entry)) {
    const int failure =
        entry.IsDots() ? 0 : CopyEntry(from.GetDescriptor(), entry.name, to, top, depth);
    if (failure != 0) {
      return failure;
    }
  }
  return from.HasFailed() ? EIO : 0;
}

int CopyTo(const char* from, const GuardedFolder& place, mode_t groupRights) {
  LockedFile source;
  struct stat facts;
  int failure = OpenGuarded(from, kSourceFlags, source);
  if (failure == 0) {
    failure = TakeSource(source, facts);
  }
  if (failure != 0) {
    return failure;
  }
  if (S_ISREG(facts.st_mode)) {
    return CopyOneFile(source.Get(), facts, place.Get(), place.Name(), groupRights);
  }
  return S_ISDIR(facts.st_mode) ? CopyOneFolder(AT_FDCWD, from, facts, place.Get(), place.Name(),
                                                {0, 0, groupRights}, 0)
                                : EINVAL;
}

int MakeFolderAt(const char* path, mode_t mode) {
  GuardedFolder folder;
  if (const int failure = folder.Open(path); failure != 0) {
    return failure;
  }
  if (mkdirat(folder.Get(), folder.Name(), mode) != 0) {
    return errno;
  }
  GiveFolderToGroup(folder.Get(), folder.Name(), GroupRightsBeside(path));
  InheritMark(path, folder.Get(), folder.Name());
  return 0;
}

int MakeFileIn(int folder, const NewFile& file, mode_t groupRights) {
  const Descriptor made(openat(folder, file.name, kMakeFlags, 0666));
  if (!made.IsOpen()) {
    return errno;
  }
  GiveToGroup(made.Get(), groupRights);
  const int failure = WriteAll(made.Get(), file.bytes, static_cast<size_t>(file.count));
  return failure != 0 || file.count == 0 || fsync(made.Get()) == 0 ? failure : errno;
}

int FillFolder(const GuardedFolder& place, const NewFile* files, int count, mode_t groupRights) {
  const Descriptor folder(
      openat(place.Get(), place.Name(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  int failure = folder.IsOpen() ? 0 : errno;
  GiveToGroup(folder.Get(), groupRights);
  for (int i = 0; i < count && failure == 0; ++i) {
    failure = MakeFileIn(folder.Get(), files[i], groupRights);
  }
  return failure;
}

void RemoveFilled(const GuardedFolder& place, const NewFile* files, int count) {
  for (int i = 0; i < count; ++i) {
    const std::string file = std::string(place.Name()) + '/' + files[i].name;
    unlinkat(place.Get(), file.c_str(), 0);
  }
  unlinkat(place.Get(), place.Name(), AT_REMOVEDIR);
}

// Nobody can hold a file of it, so that no lock is taken.
int MakeWholeAt(const char* making, const char* path, const NewFile* files, int count) {
  GuardedFolder folder, place;
  int failure = folder.Open(making);
  if (failure == 0) {
    failure = place.Open(path);
  }
  if (failure == 0 && mkdirat(folder.Get(), folder.Name(), 0777) != 0) {
    failure = errno;
  }
  if (failure != 0) {
    return failure;
  }
  InheritMark(path, folder.Get(), folder.Name());
  failure = FillFolder(folder, files, count, GroupRightsBeside(making));
  if (failure == 0) {
    failure = folder.MoveTo(place);
  }
  if (failure != 0) {
    RemoveFilled(folder, files, count);
  }
  return failure;
}

class SCreatingFileServices : public SPosixFileServices {
 public:
  bool MakeFile(const char* path, SystemError& error) override;
  bool MakeFolder(const char* path, uint32_t mode, SystemError& error) override;
  bool MakeWhole(const char* making, const char* place, const NewFile* files, int count,
                 SystemError& error) override;
  bool CopyFileTo(const char* from, const char* to, SystemError& error) override;
  // A file that goes to another file system is copied and deleted.
  bool Move(const char* from, const char* to, SystemError& error) override;
};

bool SCreatingFileServices::MakeFile(const char* path, SystemError& error) {
  PosixPath place(path);
  struct stat taken;
  error = LocateFree(place, taken);
  if (error == SystemError::kAlreadyExists && !S_ISDIR(taken.st_mode)) {
    error = SystemError::kNone;
    return true;
  }
  if (error == SystemError::kNone) {
    Descriptor made;
    const int failure = OpenGuarded(place.Text(), kMakeFlags, made, 0666);
    if (failure == 0) {
      GiveToGroup(made.Get(), GroupRightsBeside(place.Text()));
    }
    // Who made it in the meantime has done what was wanted.
    error = failure == EEXIST ? SystemError::kNone : ToSystemError(failure);
  }
  return error == SystemError::kNone;
}

bool SCreatingFileServices::MakeFolder(const char* path, uint32_t mode, SystemError& error) {
  PosixPath place(path);
  struct stat taken;
  error = LocateFree(place, taken);
  if (error == SystemError::kNone) {
    error = ToSystemError(MakeFolderAt(place.Text(), mode != 0 ? mode & 0777 : 0777));
  }
  return error == SystemError::kNone;
}

bool SCreatingFileServices::MakeWhole(const char* making, const char* place, const NewFile* files,
                                      int count, SystemError& error) {
  const PosixPath from(making), to(place);
  error = from.Check();
  if (error == SystemError::kNone) {
    error = to.Check();
  }
  if (error == SystemError::kNone) {
    error = ToSystemError(MakeWholeAt(from.Text(), to.Text(), files, count));
  }
  // On the way there a name may differ in letter case.
  return error == SystemError::kFileNotFound
             ? SPosixFileServices::MakeWhole(making, place, files, count, error)
             : error == SystemError::kNone;
}

bool SCreatingFileServices::CopyFileTo(const char* from, const char* to, SystemError& error) {
  PosixPath place(to);
  struct stat taken;
  error = LocateFree(place, taken);
  GuardedFolder folder;
  if (error == SystemError::kNone) {
    error = ToSystemError(folder.Open(place.Text()));
  }
  if (error == SystemError::kNone) {
    const mode_t groupRights = GroupRightsBeside(place.Text());
    error = OnPath(from, [&](const char* source) { return CopyTo(source, folder, groupRights); });
  }
  return error == SystemError::kNone;
}

bool SCreatingFileServices::Move(const char* from, const char* to, SystemError& error) {
  if (SPosixFileServices::Move(from, to, error)) {
    return true;
  }
  FileAttributes attributes;
  SystemError ignored;
  if (error != SystemError::kNotSameDevice || !FullAttributes(from, attributes, ignored) ||
      attributes.folder || attributes.readOnly || !CopyFileTo(from, to, error)) {
    return false;
  }
  if (!Delete(from, error)) {
    Delete(to, ignored);
    return false;
  }
  return true;
}

constinit NeverDestroyed<SCreatingFileServices> gCreatingFileServices;

}  // namespace

IFileServices& CreatingFileServices() {
  return gCreatingFileServices.object;
}

}  // namespace kivstore
