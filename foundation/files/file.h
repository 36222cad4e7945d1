// A raw file handle with the few operations the streams need. Opens what exists and creates
// nothing.
#pragma once

#include <cstdint>

#include "foundation/files/file_spec.h"
#include "platform/file_services.h"

namespace kivstore {

class SFile {
 public:
  static constexpr int32_t kRead = 0;   // others may read
  static constexpr int32_t kWrite = 1;  // reads and writes, alone

  // Error output of Open.
  static constexpr int32_t kSuccess = 0;
  static constexpr int32_t kOtherError = 1;
  static constexpr int32_t kNotFound = 2;
  static constexpr int32_t kSharingViolation = 3;

  SFile() = default;
  virtual ~SFile() { Close(); }
  SFile(const SFile&) = delete;
  SFile& operator=(const SFile&) = delete;

  // Closes what was open. False without a system call for a spec that is not valid and existing.
  bool Open(int32_t mode, const SFileSpec& spec, int32_t* error = nullptr);
  // To write; whoever has it open for a moment, to read it, is waited for: a fifth of a second at
  // most. For files that their list's lock keeps from other writers.
  bool OpenPatiently(const SFileSpec& spec);
  bool Close();  // true if it was open
  bool IsOpen() const { return isOpen; }
  // Whether the path it was opened by still leads to it.
  bool IsStillThere() const;

  // Bytes moved; 0 if closed or if count is below 1. Fewer than asked: at the end of the file, or
  // for a reason that is noted as the last file failure.
  int32_t Read(int32_t count, void* buffer);
  int32_t Write(int32_t count, const void* buffer);
  // Origin 0 from the start, 1 from the end, 2 from the current place.
  bool Seek(int32_t origin, int32_t offset);
  int32_t Tell() const;
  // 0 when closed. Sizes beyond 31 bits are cut to 0x7FFFFFFF. -1: this has no size, it is no file.
  int32_t Size() const;
  bool AtEnd() const;
  // Cuts or extends to `size`; the position stays.
  bool SetSize(int32_t size);
  bool Truncate();  // at the position
  bool Flush();

 private:
  // Whether all went well; if not, why not is noted.
  bool Note(bool succeeded) const;

  FileHandle handle = nullptr;
  SString path;
  bool isOpen = false;
};

}  // namespace kivstore
