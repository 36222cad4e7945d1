// The raw entries of a folder, straight from the system: opening, one call per 32 KB of entries,
// closing, and nothing else. (The standard library's reader asks for the folder's status as well.)
#pragma once

#include <dirent.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "platform/posix/descriptor.h"

namespace kivstore {

struct RawEntry {
  const char* name;  // valid until the next step
  int nameLength;
  unsigned char type;  // DT_REG, DT_DIR, ...; DT_UNKNOWN where the file system does not tell

  std::string_view Name() const { return {name, static_cast<size_t>(nameLength)}; }
  bool IsDots() const { return Name() == "." || Name() == ".."; }
};

class FolderReader {
 public:
  FolderReader() = default;
  ~FolderReader();
  FolderReader(const FolderReader&) = delete;
  FolderReader& operator=(const FolderReader&) = delete;

  // 0 or the failure. `path` is taken from the folder `base`, and from AT_FDCWD past no link that
  // guarded_open.h refuses; `flags` are added.
  int Open(const char* path, int base, int flags = 0);
  int OpenHere(const char* path);

  bool Next(RawEntry& entry) {
    if (next >= valid && !Refill()) {
      return false;
    }
    const char* const start = buffer + next;
    uint16_t length;
    std::memcpy(&length, start + offsetof(dirent64, d_reclen), sizeof length);
    entry.type = static_cast<unsigned char>(start[offsetof(dirent64, d_type)]);
    entry.name = start + offsetof(dirent64, d_name);
    entry.nameLength = static_cast<int>(std::strlen(entry.name));
    next += length;
    return true;
  }
  bool HasFailed() const { return failed; }
  int GetDescriptor() const { return folder.Get(); }

 private:
  bool Refill();

  Descriptor folder;
  char* buffer = nullptr;
  int valid = 0;  // bytes of entries in the buffer
  int next = 0;   // where the next entry begins
  bool failed = false;
};

}  // namespace kivstore
