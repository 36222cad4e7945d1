#define _FILE_OFFSET_BITS 64  // 32-bit builds too must see every file
#include "platform/posix/folder_reader.h"

#include <dirent.h>
#include <fcntl.h>

#include <cerrno>

#include "platform/posix/guarded_open.h"
#include "platform/posix/kept_buffer.h"

namespace kivstore {
namespace {

constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC;

KeptBuffer<0x8000> gEntryBuffer;

}  // namespace

FolderReader::~FolderReader() {
  if (buffer != nullptr) {
    gEntryBuffer.GiveBack(buffer);
  }
}

int FolderReader::Open(const char* path, int base, int flags) {
  int failure = 0;
  if (base == AT_FDCWD) {
    failure = OpenGuarded(path, kFlags | flags, folder);
  } else {
    folder.Reset(openat(base, path, kFlags | flags));
    failure = folder.IsOpen() ? 0 : errno;
  }
  if (failure != 0) {
    return failure;
  }
  buffer = gEntryBuffer.Take();
  return buffer != nullptr ? 0 : ENOMEM;
}

int FolderReader::OpenHere(const char* path) {
  return Open(path, AT_FDCWD);
}

bool FolderReader::Refill() {
  if (failed || buffer == nullptr) {
    return false;
  }
  const ssize_t count = getdents64(folder.Get(), buffer, gEntryBuffer.kSize);
  failed = count < 0;
  valid = count > 0 ? static_cast<int>(count) : 0;
  next = 0;
  return valid > 0;
}

}  // namespace kivstore
