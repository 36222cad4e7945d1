#define _FILE_OFFSET_BITS 64
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include "platform/posix/data_root.h"
#include "platform/posix/dos_mark.h"
#include "platform/posix/file_locks.h"
#include "platform/posix/file_system_kind.h"
#include "platform/posix/fresh_reading.h"
#include "platform/posix/guarded_open.h"
#include "platform/posix/kept_buffer.h"
#include "platform/posix/posix_file_services.h"
#include "platform/posix/posix_path.h"
#include "platform/posix/write_lease.h"

namespace kivstore {

namespace {

constexpr int64_t kNoSize = -1;
constexpr int64_t kSizeUnknown = -2;

KeptBuffer<0x10000> gAheadBuffer;

}  // namespace

struct OpenFile {
  ~OpenFile() { DropAhead(); }

  void DropAhead() {
    if (ahead != nullptr) {
      gAheadBuffer.GiveBack(ahead);
      ahead = nullptr;
    }
  }

  LockedFile descriptor;
  FileAccess access = FileAccess::kRead;
  int64_t position = 0;
  int64_t size = kSizeUnknown;  // known of a file open for reading
  char* ahead = nullptr;        // the first bytes of the file
  int64_t aheadSize = 0;
};

namespace {

bool EndsInSeparator(const char* path) {
  const size_t length = std::strlen(path);
  return length != 0 && (path[length - 1] == '\\' || path[length - 1] == '/');
}

int OpenDescriptor(Descriptor& descriptor, const char* path, FileAccess access) {
  const int mode = access == FileAccess::kRead ? O_RDONLY : O_RDWR;
  // O_NONBLOCK: a pipe under a file's name must not stop the program.
  const int flags = mode | O_NONBLOCK | O_NOCTTY;
  const bool isPastCaches = access == FileAccess::kRead && KeptDataRoot().IsShared();
  int failure = OpenGuarded(path, isPastCaches ? flags | O_DIRECT : flags, descriptor);
  if (failure == EINVAL && isPastCaches) {
    failure = OpenGuarded(path, flags, descriptor);
  }
  return failure == ENXIO ? kNoPlainFileFailure : failure;  // a socket
}

SystemError LockFor(int descriptor, FileAccess access) {
  if (access == FileAccess::kRead) {
    return LockShared(descriptor) == EAGAIN ? SystemError::kSharingViolation : SystemError::kNone;
  }
  const int failure = LockAlone(descriptor);
  if (failure == EAGAIN) {
    return SystemError::kSharingViolation;
  }
  return failure == 0 ? SystemError::kNone : SystemError::kOther;
}

int64_t AskSize(const OpenFile& file) {
  return SizeOf(file.descriptor.Get(), KeptDataRoot().IsShared());
}

ssize_t ReadStart(int file, char* buffer, size_t count) {
  return KeptDataRoot().IsShared() ? ReadFresh(file, buffer, count)
                                   : ReadAt(file, buffer, count, 0);
}

// A file that is opened for reading is read: the first bytes tell the size of a small one, and that
// it is no folder, for no more than one call.
SystemError ReadAhead(OpenFile& file) {
  file.ahead = gAheadBuffer.Take();
  const ssize_t moved = file.ahead != nullptr
                            ? ReadStart(file.descriptor.Get(), file.ahead, gAheadBuffer.kSize)
                            : static_cast<ssize_t>(gAheadBuffer.kSize);
  if (moved < 0 && (errno == EISDIR || errno == ESPIPE)) {
    return ToSystemError(errno);
  }
  const bool atEnd = moved >= 0 && moved < static_cast<ssize_t>(gAheadBuffer.kSize);
  file.size = atEnd ? moved : moved < 0 ? kNoSize : AskSize(file);
  if (file.ahead == nullptr || file.size == kNoSize) {
    file.DropAhead();
  } else {
    file.aheadSize = moved;
  }
  return SystemError::kNone;
}

int32_t TakeAhead(OpenFile& file, char* buffer, int32_t count) {
  if (file.position >= file.aheadSize) {
    return 0;
  }
  const int64_t moved = std::min<int64_t>(count, file.aheadSize - file.position);
  std::memcpy(buffer, file.ahead + file.position, static_cast<size_t>(moved));
  file.position += moved;
  return static_cast<int32_t>(moved);
}

// The system lets the superuser write what may not be written.
SystemError HonourMode(int descriptor) {
  static const bool isSuperuser = geteuid() == 0;
  struct stat facts;
  if (!isSuperuser || fstat(descriptor, &facts) != 0) {
    return SystemError::kNone;
  }
  if (!S_ISREG(facts.st_mode)) {
    return SystemError::kNoPlainFile;
  }
  return (facts.st_mode & S_IWUSR) == 0 ? SystemError::kAccessDenied : SystemError::kNone;
}

// Deleting honours read-only, and so does this. A lock file holds nothing that could be written
// over.
SystemError HonourReadOnly(const OpenFile& file, const char* path) {
  if (IsLockFile(path)) {
    return SystemError::kNone;
  }
  const int descriptor = file.descriptor.Get();
  const SystemError error = HonourMode(descriptor);
  const bool isMarked = error == SystemError::kNone && (MarkOf(descriptor) & kDosReadOnly) != 0;
  return isMarked ? SystemError::kAccessDenied : error;
}

}  // namespace

FileHandle SPosixFileServices::Open(const char* path, FileAccess access, SystemError& error) {
  if (EndsInSeparator(path)) {
    error = SystemError::kAccessDenied;  // a folder
    return nullptr;
  }
  std::unique_ptr<OpenFile> file(new (std::nothrow) OpenFile);
  if (file == nullptr) {
    error = SystemError::kOther;
    return nullptr;
  }
  file->access = access;
  error = OnPath(path, [&](const char* p) { return OpenDescriptor(file->descriptor, p, access); });
  if (error == SystemError::kNone) {
    error = LockFor(file->descriptor.Get(), access);
  }
  if (error == SystemError::kNone) {
    error = access == FileAccess::kRead ? ReadAhead(*file) : HonourReadOnly(*file, path);
  }
  if (error == SystemError::kNone && access == FileAccess::kReadWrite && IsLockFile(path) &&
      KeptDataRoot().IsShared()) {
    ListFolderOf(path);
  }
  return error == SystemError::kNone ? file.release() : nullptr;
}

SystemError SPosixFileServices::Exposure(FileHandle file) {
  const int descriptor = file->descriptor.Get();
  const int failure = LeaseAlone(descriptor);
  // In use: a lease can be had, and just now another program is in the way.
  if (failure == 0 || failure == EAGAIN || KindOfFileSystem(descriptor) != FileSystemKind::kLocal) {
    return SystemError::kNone;
  }
  return failure == EACCES ? SystemError::kAccessDenied : SystemError::kOther;
}

bool SPosixFileServices::LeadsTo(const char* path, FileHandle file) {
  struct stat opened, found;
  const SystemError error =
      OnPath(path, [&](const char* p) { return stat(p, &found) == 0 ? 0 : errno; });
  return error == SystemError::kNone && fstat(file->descriptor.Get(), &opened) == 0 &&
         found.st_dev == opened.st_dev && found.st_ino == opened.st_ino;
}

void SPosixFileServices::Close(FileHandle file) {
  delete file;
}

int32_t SPosixFileServices::Read(FileHandle file, void* buffer, int32_t count) {
  if (count < 1 || file->size == kNoSize) {
    return 0;
  }
  char* const bytes = static_cast<char*>(buffer);
  int32_t moved = TakeAhead(*file, bytes, count);
  while (moved < count && file->position != file->size) {
    const size_t missing = static_cast<size_t>(count - moved);
    const ssize_t step = ReadAt(file->descriptor.Get(), bytes + moved, missing, file->position);
    if (step <= 0) {
      transferError = step < 0 ? ToSystemError(errno) : SystemError::kNone;
      return moved;
    }
    moved += static_cast<int32_t>(step);
    file->position += step;
    // A short read of a file is its end; a second call to be told so again is saved.
    if (file->size == kSizeUnknown) {
      break;
    }
  }
  transferError = SystemError::kNone;
  return moved;
}

int32_t SPosixFileServices::Write(FileHandle file, const void* buffer, int32_t count) {
  const char* const bytes = static_cast<const char*>(buffer);
  int32_t moved = 0;
  while (moved < count) {
    const ssize_t step = pwrite(file->descriptor.Get(), bytes + moved,
                                static_cast<size_t>(count - moved), file->position);
    if (step < 0 && errno == EINTR) {
      continue;
    }
    if (step <= 0) {
      transferError = step < 0 ? ToSystemError(errno) : SystemError::kDiskFull;
      break;
    }
    moved += static_cast<int32_t>(step);
    file->position += step;
  }
  return moved;
}

bool SPosixFileServices::Seek(FileHandle file, SeekOrigin origin, int64_t offset) {
  int64_t base = origin == SeekOrigin::kCurrent ? file->position : 0;
  if (origin == SeekOrigin::kEnd) {
    base = Size(file);
  }
  int64_t target;
  if (base < 0 || __builtin_add_overflow(base, offset, &target) || target < 0) {
    return false;
  }
  file->position = target;
  return true;
}

int64_t SPosixFileServices::Tell(FileHandle file) {
  return file->position;
}

int64_t SPosixFileServices::Size(FileHandle file) {
  return file->access == FileAccess::kReadWrite ? AskSize(*file) : file->size;
}

bool SPosixFileServices::Succeeded(int result) {
  if (result != 0) {
    transferError = ToSystemError(errno);
  }
  return result == 0;
}

bool SPosixFileServices::SetEnd(FileHandle file) {
  return Succeeded(ftruncate(file->descriptor.Get(), static_cast<off_t>(file->position)));
}

bool SPosixFileServices::Flush(FileHandle file) {
  return Succeeded(fsync(file->descriptor.Get()));
}

}  // namespace kivstore
