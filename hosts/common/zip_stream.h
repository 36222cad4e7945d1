// The open file below a zip file, as minizip gets at it.
#pragma once

#include <minizip/ioapi.h>

#include <cstdint>
#include <string>

#include "hosts/common/host_error.h"
#include "platform/file_services.h"

namespace kivhost {

// Not those of the store's command: a look at a store writes none of it, and may write a zip file.
inline kivstore::IFileServices& ZipFiles() {
  return kivstore::CreatingFileServices();
}

// What a system's error about a zip file means, to be thrown.
HostError ZipTrouble(const std::string& path, kivstore::SystemError error);

class ZipStream {
 public:
  // Throws if it cannot be opened.
  ZipStream(const std::string& path, kivstore::FileAccess access);
  ~ZipStream() { ZipFiles().Close(file); }
  ZipStream(const ZipStream&) = delete;
  ZipStream& operator=(const ZipStream&) = delete;

  // For as long as this lives, which closing on the part of minizip does not end.
  zlib_filefunc64_def Functions();
  // The first that reading, writing or flushing met.
  kivstore::SystemError GetError() const { return error; }

  int64_t Size() const { return ZipFiles().Size(file); }
  // Fewer bytes where the file ends.
  std::string ReadAt(int64_t place, int32_t count);
  void WriteAt(int64_t place, const std::string& bytes);
  void Flush() { Note(ZipFiles().Flush(file)); }

 private:
  friend struct ZipCalls;  // what minizip calls

  int32_t Read(void* buffer, int32_t count);
  int32_t Write(const void* buffer, int32_t count);
  void Note(bool isDone);

  kivstore::SystemError error = kivstore::SystemError::kNone;
  kivstore::FileHandle file;
};

}  // namespace kivhost
