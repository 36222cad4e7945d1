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
  // Each operation on a path that contains `part` fails, or only those of this name; counts
  // nothing.
  void FailOn(const std::string& part, SystemError error, const std::string& operation = "");
  void FailNever();

  // Whether the operation of the last FailAt, FallShortAt or DieAt came.
  bool HasStruck() const { return struck; }
  // Operations since then, or since ClearLog.
  int Count() const { return count; }
  int CountOf(const std::string& operation) const;
  const std::vector<FileCall>& Log() const { return log; }
  void ClearLog();
  // The paths of the handles that are open.
  std::vector<std::string> OpenPaths() const;

  FileHandle Open(const char* path, FileAccess access, SystemError& error) override;
  void Close(FileHandle file) override;
  int32_t Read(FileHandle file, void* buffer, int32_t wanted) override;
  int32_t Write(FileHandle file, const void* buffer, int32_t wanted) override;
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
  std::unique_ptr<kivstore::IFolderWalk> Walk(const char* folder, const char* mask,
                                              SystemError& error) override;
  bool DiskSpace(const char* root, uint64_t& total, uint64_t& free, uint32_t& cluster) override;
  bool SetCurrentFolder(const char* path) override;
  bool MakeFile(const char* path, SystemError& error) override;
  bool MakeFolder(const char* path, uint32_t mode, SystemError& error) override;
  bool CopyFileTo(const char* from, const char* to, SystemError& error) override;

  // Counts and logs one operation; true if it fails.
  bool Strikes(const char* operation, const std::string& path, SystemError& error);

 private:
  enum class Plan { kNone, kFail, kFailForever, kFallShort, kDie };

  void Begin(Plan newPlan, int n);
  bool StrikesTransfer(const char* operation, FileHandle file);
  bool StrikesOnPath(const FileCall& call, SystemError& error) const;
  std::string PathOf(FileHandle file) const;
  int32_t Shortened(int32_t wanted);

  Plan plan = Plan::kNone;
  int target = 0;
  int count = 0;
  bool struck = false;
  SystemError planned = SystemError::kOther;
  int32_t shortBytes = 0;
  SystemError transferError = SystemError::kNone;
  int32_t shorten = -1;  // the operation at hand moves at most so much
  std::function<void()> death;
  std::string failingPart, failingOperation;
  SystemError failingPartError = SystemError::kOther;
  std::vector<FileCall> log;
  std::map<FileHandle, std::string> open;
};

}  // namespace kivtest
