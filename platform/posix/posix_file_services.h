// The file services on POSIX: the file system that the store was written for, on this one.
//
//   share modes   file_locks.h: locks on the whole file, by handle; write_lease.h behind them
//   letter case   posix_path.h: as written first, then by looking through the folder
//   hidden        the name begins with a dot, or the mark of dos_attribute.h has the bit
//   read-only     the owner may not write, or that mark has the bit
//   clusters      not told: 1
//
// Each operation says below what it costs in system calls, because the store may lie on a file
// server. A name that is not there as written costs the look through its folder more.
#pragma once

#include <string_view>

#include "platform/inert_makers.h"

namespace kivstore {

class SPosixFileServices : public SInertMakers {
 public:
  void KeepDataRoot(const char* path) override;
  bool IsShared() override;
  ForeignLink LastForeignLink() override;

  // Open and lock; alone, two more for the lease, and but for a lock file one for the read-only
  // mark. A folder opens for reading; it has no size and nothing to read.
  FileHandle Open(const char* path, FileAccess access, SystemError& error) override;
  void Close(FileHandle file) override;
  // The position is the handle's own, so that Seek and Tell cost nothing.
  int32_t Read(FileHandle file, void* buffer, int32_t count) override;
  int32_t Write(FileHandle file, const void* buffer, int32_t count) override;
  bool Seek(FileHandle file, SeekOrigin origin, int64_t offset) override;
  int64_t Tell(FileHandle file) override;
  // Of a file just opened for reading: reads ahead. If that reaches the end the size is known and
  // the reads to come are paid for; a small file costs one call for both.
  int64_t Size(FileHandle file) override;
  bool SetEnd(FileHandle file) override;
  bool Flush(FileHandle file) override;
  SystemError Exposure(FileHandle file) override;
  bool LeadsTo(const char* path, FileHandle file) override;
  SystemError TransferError() override { return transferError; }

  bool Attributes(const char* path, FileAttributes& attributes, SystemError& error) override;
  bool FullAttributes(const char* path, FileAttributes& attributes, SystemError& error) override;
  // A file that becomes hidden marks its folder too: walks ask for marks only there. Read-only is
  // kept in the mode, and in the mark of a file that bears one.
  bool SetAttributes(const char* path, const FileAttributes& attributes,
                     SystemError& error) override;

  // Both take the file's lock first and keep it meanwhile. A file system without locks cannot tell
  // whether the file is open; there they go on.
  bool Delete(const char* path, SystemError& error) override;
  bool RemoveFolder(const char* path, SystemError& error) override;
  bool Move(const char* from, const char* to, SystemError& error) override;
  const char* BlockingFile() override { return blockingFile; }

  // Opening, asking the folder for its mark, reading, closing.
  std::unique_ptr<IFolderWalk> Walk(const char* folder, const char* mask,
                                    SystemError& error) override;

  bool DiskSpace(const char* root, uint64_t& total, uint64_t& free, uint32_t& cluster) override;
  bool CurrentFolder(char* buffer, int size) override;
  bool SetCurrentFolder(const char* path) override;

 private:
  bool Succeeded(int result);
  void NoteBlocker(std::string_view path);

  SystemError transferError = SystemError::kNone;
  char blockingFile[4096] = "";
};

}  // namespace kivstore
