// A file system in memory, as the file services tell it: small, deterministic and fast enough for
// some thousand stores a second. Like the library's own services it makes nothing: what is there
// was put there.
//
//   MemoryFiles files;
//   files.Put("root/Classes.zep/index.kiv", bytes);
//   const SPlatformOverride<IFileServices> installed(Platform().files, &files);
//
// Paths have slashes or backslashes, begin at the top whatever they begin with, and are found
// without regard to letter case. Nothing that runs on it moves anything or removes a folder: a call
// that tries ends the process.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/inert_makers.h"

namespace kivtest {

class MemoryFiles : public kivstore::SInertMakers {
 public:
  using FileAccess = kivstore::FileAccess;
  using FileAttributes = kivstore::FileAttributes;
  using FileHandle = kivstore::FileHandle;
  using SeekOrigin = kivstore::SeekOrigin;
  using SystemError = kivstore::SystemError;

  struct Entry {
    std::string name;  // as it is spelt
    FileAttributes attributes;
    std::string bytes;
    bool heldElsewhere = false;  // open on another workstation, with no sharing
    int readers = 0;
    bool writer = false;

    bool IsOpen() const { return heldElsewhere || writer || readers > 0; }
  };
  // By folded path with slashes; the top itself is "".
  using Tree = std::map<std::string, Entry>;

  MemoryFiles();
  ~MemoryFiles() override;

  // The folders on the way are made. Null if a file stands in it, or anything at the place itself.
  Entry* Put(std::string_view path, std::string_view bytes);
  Entry* PutFolder(std::string_view path);
  const Tree& Entries() const { return tree; }
  // Empty for a file that is not there.
  std::string BytesOf(std::string_view path) const;
  size_t OpenHandles() const { return handles; }

  FileHandle Open(const char* path, FileAccess access, SystemError& error) override;
  void Close(FileHandle file) override;
  int32_t Read(FileHandle file, void* buffer, int32_t count) override;
  int32_t Write(FileHandle file, const void* buffer, int32_t count) override;
  bool Seek(FileHandle file, SeekOrigin origin, int64_t offset) override;
  int64_t Tell(FileHandle file) override;
  int64_t Size(FileHandle file) override;
  bool SetEnd(FileHandle file) override;
  bool Flush(FileHandle file) override;
  bool Attributes(const char* path, FileAttributes& attributes, SystemError& error) override;
  bool FullAttributes(const char* path, FileAttributes& attributes, SystemError& error) override;
  bool SetAttributes(const char* path, const FileAttributes& attributes,
                     SystemError& error) override;
  bool Delete(const char* path, SystemError& error) override;
  bool RemoveFolder(const char* path, SystemError& error) override;
  bool Move(const char* from, const char* to, SystemError& error) override;
  std::unique_ptr<kivstore::IFolderWalk> Walk(const char* folder, const char* mask,
                                              SystemError& error) override;
  bool DiskSpace(const char* root, uint64_t& total, uint64_t& free, uint32_t& cluster) override;
  bool CurrentFolder(char* buffer, int size) override;
  bool SetCurrentFolder(const char* path) override;

 private:
  Entry* Find(std::string_view path, SystemError& error);

  Tree tree;
  size_t handles = 0;
};

}  // namespace kivtest
