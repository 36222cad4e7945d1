#include "tests/support/fault_file_services.h"

#include <algorithm>
#include <utility>

namespace kivtest {

using namespace kivstore;

namespace {

class FaultWalk : public IFolderWalk {
 public:
  FaultWalk(FaultFileServices& faults, std::unique_ptr<IFolderWalk> inner, std::string folder)
      : faults(faults), inner(std::move(inner)), folder(std::move(folder)) {}

  bool Next(FolderEntry& entry) override {
    SystemError error;
    failed = failed || faults.Strikes("Next", folder, error);
    return !failed && inner->Next(entry);
  }
  bool HasFailed() const override { return failed || inner->HasFailed(); }

 private:
  FaultFileServices& faults;
  std::unique_ptr<IFolderWalk> inner;
  std::string folder;
  bool failed = false;
};

}  // namespace

void FaultFileServices::Begin(Plan newPlan, int n) {
  plan = newPlan;
  target = n;
  struck = false;
  ClearLog();
}

void FaultFileServices::FailAt(int n, SystemError error, bool forever) {
  Begin(forever ? Plan::kFailForever : Plan::kFail, n);
  planned = error;
}

void FaultFileServices::FallShortAt(int n, int32_t bytes) {
  Begin(Plan::kFallShort, n);
  shortBytes = bytes;
}

void FaultFileServices::DieAt(int n, std::function<void()> newDeath) {
  Begin(Plan::kDie, n);
  planned = SystemError::kOther;
  death = std::move(newDeath);
}

void FaultFileServices::FailOn(const std::string& part, SystemError error,
                               const std::string& operation) {
  failingPart = part;
  failingOperation = operation;
  failingPartError = error;
}

void FaultFileServices::FailNever() {
  failingPart.clear();
  Begin(Plan::kNone, 0);
}

void FaultFileServices::ClearLog() {
  count = 0;
  log.clear();
}

int FaultFileServices::CountOf(const std::string& operation) const {
  return static_cast<int>(std::count_if(
      log.begin(), log.end(), [&](const FileCall& call) { return call.operation == operation; }));
}

std::vector<std::string> FaultFileServices::OpenPaths() const {
  std::vector<std::string> paths;
  for (const auto& [file, path] : open) {
    paths.push_back(path);
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

bool FaultFileServices::StrikesOnPath(const FileCall& call, SystemError& error) const {
  const bool isMeant = failingOperation.empty() || failingOperation == call.operation;
  if (failingPart.empty() || !isMeant || call.path.find(failingPart) == std::string::npos) {
    return false;
  }
  error = failingPartError;
  return true;
}

bool FaultFileServices::Strikes(const char* operation, const std::string& path,
                                SystemError& error) {
  ++count;
  log.push_back({operation, path});
  shorten = -1;
  const bool lasting = plan == Plan::kFailForever || plan == Plan::kDie;
  if (plan == Plan::kNone || count < target || (count > target && !lasting)) {
    return StrikesOnPath(log.back(), error);
  }
  if (plan == Plan::kDie && !struck) {
    death();
  }
  struck = true;
  error = planned;
  if (plan == Plan::kFallShort &&
      (log.back().operation == "Read" || log.back().operation == "Write")) {
    shorten = shortBytes;
    return false;
  }
  return true;
}

int32_t FaultFileServices::Shortened(int32_t wanted) {
  return shorten >= 0 ? std::min(wanted, shorten) : wanted;
}

std::string FaultFileServices::PathOf(FileHandle file) const {
  const auto found = open.find(file);
  return found != open.end() ? found->second : std::string();
}

FileHandle FaultFileServices::Open(const char* path, FileAccess access, SystemError& error) {
  const bool fails = Strikes(access == FileAccess::kRead ? "OpenRead" : "OpenAlone", path, error);
  const FileHandle file = fails ? nullptr : inner.Open(path, access, error);
  if (file != nullptr) {
    open[file] = path;
  }
  return file;
}

void FaultFileServices::Close(FileHandle file) {
  open.erase(file);
  inner.Close(file);
}

// What falls short does so as on a full disk.
bool FaultFileServices::StrikesTransfer(const char* operation, FileHandle file) {
  SystemError error = SystemError::kDiskFull;
  const bool strikes = Strikes(operation, PathOf(file), error);
  transferError = strikes || shorten >= 0 ? error : SystemError::kNone;
  return strikes;
}

int32_t FaultFileServices::Read(FileHandle file, void* buffer, int32_t wanted) {
  return StrikesTransfer("Read", file) ? 0 : inner.Read(file, buffer, Shortened(wanted));
}

int32_t FaultFileServices::Write(FileHandle file, const void* buffer, int32_t wanted) {
  return StrikesTransfer("Write", file) ? 0 : inner.Write(file, buffer, Shortened(wanted));
}

int64_t FaultFileServices::Size(FileHandle file) {
  SystemError error;
  return Strikes("Size", PathOf(file), error) ? -1 : inner.Size(file);
}

bool FaultFileServices::SetEnd(FileHandle file) {
  return !StrikesTransfer("SetEnd", file) && inner.SetEnd(file);
}

bool FaultFileServices::Flush(FileHandle file) {
  return !StrikesTransfer("Flush", file) && inner.Flush(file);
}

bool FaultFileServices::Attributes(const char* path, FileAttributes& attributes,
                                   SystemError& error) {
  return !Strikes("Attributes", path, error) && inner.Attributes(path, attributes, error);
}

bool FaultFileServices::FullAttributes(const char* path, FileAttributes& attributes,
                                       SystemError& error) {
  return !Strikes("FullAttributes", path, error) && inner.FullAttributes(path, attributes, error);
}

bool FaultFileServices::SetAttributes(const char* path, const FileAttributes& attributes,
                                      SystemError& error) {
  return !Strikes("SetAttributes", path, error) && inner.SetAttributes(path, attributes, error);
}

bool FaultFileServices::Delete(const char* path, SystemError& error) {
  return !Strikes("Delete", path, error) && inner.Delete(path, error);
}

bool FaultFileServices::RemoveFolder(const char* path, SystemError& error) {
  return !Strikes("RemoveFolder", path, error) && inner.RemoveFolder(path, error);
}

bool FaultFileServices::Move(const char* from, const char* to, SystemError& error) {
  return !Strikes("Move", from, error) && inner.Move(from, to, error);
}

std::unique_ptr<IFolderWalk> FaultFileServices::Walk(const char* folder, const char* mask,
                                                     SystemError& error) {
  if (Strikes("Walk", folder, error)) {
    return nullptr;
  }
  std::unique_ptr<IFolderWalk> walk = inner.Walk(folder, mask, error);
  if (walk == nullptr) {
    return nullptr;
  }
  return std::make_unique<FaultWalk>(*this, std::move(walk), folder);
}

bool FaultFileServices::DiskSpace(const char* root, uint64_t& total, uint64_t& free,
                                  uint32_t& cluster) {
  SystemError error;
  return !Strikes("DiskSpace", root, error) && inner.DiskSpace(root, total, free, cluster);
}

bool FaultFileServices::SetCurrentFolder(const char* path) {
  SystemError error;
  return !Strikes("SetCurrentFolder", path, error) && inner.SetCurrentFolder(path);
}

bool FaultFileServices::MakeFile(const char* path, SystemError& error) {
  return !Strikes("MakeFile", path, error) && inner.MakeFile(path, error);
}

bool FaultFileServices::MakeFolder(const char* path, uint32_t mode, SystemError& error) {
  return !Strikes("MakeFolder", path, error) && inner.MakeFolder(path, mode, error);
}

bool FaultFileServices::CopyFileTo(const char* from, const char* to, SystemError& error) {
  return !Strikes("CopyFileTo", from, error) && inner.CopyFileTo(from, to, error);
}

}  // namespace kivtest
