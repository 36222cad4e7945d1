// File services in which a chosen operation fails, falls short or ends the process, and which keep
// a log of what was asked of them. Everything else is passed on to the services below.
//
//   FaultFileServices faults(*Platform().files);
//   SPlatformOverride<IFileServices> installed(Platform().files, &faults);
//   faults.FailAt(3, SystemError::kDiskFull);
//
// Counted and logged are the operations that ask the system: all but Close, Seek, Tell and
// CurrentFolder. A step of a folder walk is logged as "Next"; one that fails ends the walk as
// failed. Operations on a handle are logged with the path that was opened.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/file_services.h"

namespace kivtest {

struct FileCall {
  std::string operation;
  std::string path;

  bool operator==(const FileCall&) const = default;
};

class FaultFileServices : public kivstore::SForwardingFileServices {
 public:
  using FileAccess = kivstore::FileAccess;
  using FileAttributes = kivstore::FileAttributes;
  using FileHandle = kivstore::FileHandle;
  using SystemError = kivstore::SystemError;

  explicit FaultFileServices(kivstore::IFileServices& inner) : SForwardingFileServices(inner) {}

  // Counting begins at 1 with the call of one of these, each of which takes the place of the last.
  // The n-th operation fails, and with `forever` all that follow it.
  void FailAt(int n, SystemError error = SystemError::kOther, bool forever = false);
  // The n-th operation, if it is a read or a write, moves at most `bytes`; it fails otherwise.
  void FallShortAt(int n, int32_t bytes);
  // Ahead of the n-th operation `death` is called: in a child process, _exit. If it comes back all
  // that follows fails, as for a process that is no more.
  void DieAt(
      int n, std::function<void()> death = [] {});
  // Each operation on a path that contains `part` fails, or only those of these names, which stand
  // between blanks; counts nothing.
  void FailOn(const std::string& part, SystemError error, const std::string& operations = "");
  void FailNever();

  // Whether the operation of the last FailAt, FallShortAt or DieAt came.
  bool HasStruck() const { return struck; }
  // Operations since then, or since ClearLog.
  int Count() const { return static_cast<int>(log.size()); }
  int CountOf(const std::string& operation) const;
  const std::vector<FileCall>& Log() const { return log; }
  void ClearLog() { log.clear(); }
  // The paths of the handles that are open.
  std::vector<std::string> OpenPaths() const;

  FileHandle Open(const char* path, FileAccess access, SystemError& error) override;
  void Close(FileHandle file) override;
  int32_t Read(FileHandle file, void* buffer, int32_t wanted) override {
    return StrikesTransfer("Read", file, wanted) ? 0 : inner.Read(file, buffer, wanted);
  }
  int32_t Write(FileHandle file, const void* buffer, int32_t wanted) override {
    return StrikesTransfer("Write", file, wanted) ? 0 : inner.Write(file, buffer, wanted);
  }
  int64_t Size(FileHandle file) override {
    SystemError error;
    return Strikes("Size", PathOf(file), error) ? -1 : inner.Size(file);
  }
  bool SetEnd(FileHandle file) override {
    return !StrikesTransfer("SetEnd", file, nothing) && inner.SetEnd(file);
  }
  bool Flush(FileHandle file) override {
    return !StrikesTransfer("Flush", file, nothing) && inner.Flush(file);
  }
  SystemError TransferError() override { return transferError; }
  bool Attributes(const char* path, FileAttributes& attributes, SystemError& error) override {
    return !Strikes("Attributes", path, error) && inner.Attributes(path, attributes, error);
  }
  bool FullAttributes(const char* path, FileAttributes& attributes, SystemError& error) override {
    return !Strikes("FullAttributes", path, error) && inner.FullAttributes(path, attributes, error);
  }
  bool SetAttributes(const char* path, const FileAttributes& attributes,
                     SystemError& error) override {
    return !Strikes("SetAttributes", path, error) && inner.SetAttributes(path, attributes, error);
  }
  bool Delete(const char* path, SystemError& error) override {
    return !Strikes("Delete", path, error) && inner.Delete(path, error);
  }
  bool RemoveFolder(const char* path, SystemError& error) override {
    return !Strikes("RemoveFolder", path, error) && inner.RemoveFolder(path, error);
  }
  bool Move(const char* from, const char* to, SystemError& error) override {
    return !Strikes("Move", from, error) && inner.Move(from, to, error);
  }
  std::unique_ptr<kivstore::IFolderWalk> Walk(const char* folder, const char* mask,
                                              SystemError& error) override;
  bool DiskSpace(const char* root, uint64_t& total, uint64_t& free, uint32_t& cluster) override {
    SystemError error;
    return !Strikes("DiskSpace", root, error) && inner.DiskSpace(root, total, free, cluster);
  }
  bool SetCurrentFolder(const char* path) override {
    SystemError error;
    return !Strikes("SetCurrentFolder", path, error) && inner.SetCurrentFolder(path);
  }
  bool MakeFile(const char* path, SystemError& error) override {
    return !Strikes("MakeFile", path, error) && inner.MakeFile(path, error);
  }
  bool MakeFolder(const char* path, uint32_t mode, SystemError& error) override {
    return !Strikes("MakeFolder", path, error) && inner.MakeFolder(path, mode, error);
  }
  // By the operations above, each of which may be the one that fails.
  bool MakeWhole(const char* making, const char* place, const kivstore::NewFile* files, int count,
                 SystemError& error) override {
    return IFileServices::MakeWhole(making, place, files, count, error);
  }
  bool CopyFileTo(const char* from, const char* to, SystemError& error) override {
    return !Strikes("CopyFileTo", from, error) && inner.CopyFileTo(from, to, error);
  }

  // Counts and logs one operation; true if it fails.
  bool Strikes(const char* operation, const std::string& path, SystemError& error);

 private:
  enum class Plan { kNone, kFail, kFailForever, kFallShort, kDie };

  void Begin(Plan newPlan, int n);
  std::string PathOf(FileHandle file) const {
    const auto found = open.find(file);
    return found != open.end() ? found->second : std::string();
  }
  // Of an open file; one that falls short does so as on a full disk.
  bool StrikesTransfer(const char* operation, FileHandle file, int32_t& wanted);

  int32_t nothing = 0;  // is what a transfer without bytes wants
  Plan plan = Plan::kNone;
  int target = 0;
  bool struck = false;
  SystemError planned = SystemError::kOther;
  SystemError transferError = SystemError::kNone;
  int32_t shortBytes = 0;
  std::function<void()> death;
  std::string failingPart, failingOperations;
  SystemError failingPartError = SystemError::kOther;
  std::vector<FileCall> log;
  std::map<FileHandle, std::string> open;
};

}  // namespace kivtest
