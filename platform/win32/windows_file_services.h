// The file services on Windows: the system's own calls, plainly.
#pragma once

#include "platform/inert_makers.h"

namespace kivstore {

// Whether a reparse point leads elsewhere. Many kinds of file bear that mark, kept in a cloud or
// deduplicated; only symbolic links and junctions do.
bool IsLink(const char* path);

class SWindowsFileServices : public SInertMakers {
 public:
  FileHandle Open(const char* path, FileAccess access, SystemError& error) override;
  void Close(FileHandle file) override;
  int32_t Read(FileHandle file, void* buffer, int32_t count) override;
  int32_t Write(FileHandle file, const void* buffer, int32_t count) override;
  bool Seek(FileHandle file, SeekOrigin origin, int64_t offset) override;
  int64_t Tell(FileHandle file) override;
  int64_t Size(FileHandle file) override;
  bool SetEnd(FileHandle file) override;
  bool Flush(FileHandle file) override;
  SystemError TransferError() override { return transferError; }

  bool Attributes(const char* path, FileAttributes& attributes, SystemError& error) override;
  bool FullAttributes(const char* path, FileAttributes& attributes, SystemError& error) override;
  bool SetAttributes(const char* path, const FileAttributes& attributes,
                     SystemError& error) override;

  bool Delete(const char* path, SystemError& error) override;
  bool RemoveFolder(const char* path, SystemError& error) override;
  bool Move(const char* from, const char* to, SystemError& error) override;

  std::unique_ptr<IFolderWalk> Walk(const char* folder, const char* mask,
                                    SystemError& error) override;

  bool DiskSpace(const char* root, uint64_t& total, uint64_t& free, uint32_t& cluster) override;
  bool CurrentFolder(char* buffer, int size) override;
  bool SetCurrentFolder(const char* path) override;

 private:
  SystemError transferError = SystemError::kNone;
};

}  // namespace kivstore
