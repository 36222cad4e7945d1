#define _FILE_OFFSET_BITS 64
#include "platform/posix/fresh_reading.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>

#include "platform/posix/data_root.h"
#include "platform/posix/folder_reader.h"
#include "platform/posix/posix_path.h"

namespace kivstore {
namespace {

ssize_t ReadOnce(int file, char* buffer, size_t count, int64_t position) {
  ssize_t moved;
  do {
    moved = pread(file, buffer, count, static_cast<off_t>(position));
  } while (moved < 0 && errno == EINTR);
  return moved;
}

bool StopReadingDirectly(int file) {
  const int flags = fcntl(file, F_GETFL);
  return flags >= 0 && (flags & O_DIRECT) != 0 && fcntl(file, F_SETFL, flags & ~O_DIRECT) == 0;
}

}  // namespace

ssize_t ReadAt(int file, char* buffer, size_t count, int64_t position) {
  const ssize_t moved = ReadOnce(file, buffer, count, position);
  const bool isAgain = moved < 0 && errno == EINVAL && StopReadingDirectly(file);
  return isAgain ? ReadOnce(file, buffer, count, position) : moved;
}

int64_t SizeOf(int file, bool isShared) {
  struct statx fresh;
  if (isShared) {
    statx(file, "", AT_EMPTY_PATH | AT_STATX_FORCE_SYNC, STATX_SIZE, &fresh);
  }
  struct stat facts;
  const bool isKnown = fstat(file, &facts) == 0 && S_ISREG(facts.st_mode);
  return isKnown ? static_cast<int64_t>(facts.st_size) : -1;
}

ssize_t ReadFresh(int file, char* buffer, size_t count) {
  constexpr int kMostReadings = 4;
  ssize_t moved = 0;
  int64_t size = -1;
  for (int i = 0; i < kMostReadings && moved != size; ++i) {
    moved = ReadAt(file, buffer, count, 0);
    if (moved < 0) {
      return moved;
    }
    if (moved == 0) {
      fsync(file);  // nothing was asked for: this is a word with the server too
    }
    size = std::min(SizeOf(file, true), static_cast<int64_t>(count));
  }
  return moved;
}

void ListFolderOf(const char* path) {
  const std::string_view whole(path);
  const std::string folder(whole.substr(0, whole.find_last_of("\\/") + 1));
  FolderReader reader;
  OnPath(folder.c_str(), [&](const char* p) { return reader.OpenHere(p); });
  RawEntry entry;
  while (reader.Next(entry)) {
  }
}

void LockedFile::LetGo() const {
  if (IsOpen() && KeptDataRoot().IsShared()) {
    struct flock lock {};
    lock.l_type = F_UNLCK;
    lock.l_whence = SEEK_SET;
    fcntl(Get(), F_OFD_SETLK, &lock);
  }
}

}  // namespace kivstore
