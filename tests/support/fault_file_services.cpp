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
                               const std::string& operations) {
  failingPart = part;
  failingOperations = operations.empty() ? "" : " " + operations + " ";
  failingPartError = error;
}

void FaultFileServices::FailNever() {
  failingPart.clear();
  Begin(Plan::kNone, 0);
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

bool FaultFileServices::Strikes(const char* operation, const std::string& path,
                                SystemError& error) {
  log.push_back({operation, path});
  const bool lasting = plan == Plan::kFailForever || plan == Plan::kDie;
  if (plan == Plan::kNone || Count() < target || (Count() > target && !lasting)) {
    const bool isMeant =
        failingOperations.empty() ||
        failingOperations.find(std::string(" ") + operation + " ") != std::string::npos;
    const bool strikes =
        !failingPart.empty() && isMeant && path.find(failingPart) != std::string::npos;
    error = strikes ? failingPartError : error;
    return strikes;
  }
  if (plan == Plan::kDie && !struck) {
    death();
  }
  struck = true;
  error = planned;
  return true;
}

bool FaultFileServices::StrikesTransfer(const char* operation, FileHandle file, int32_t& wanted) {
  transferError = SystemError::kNone;
  const bool strikes = Strikes(operation, PathOf(file), transferError);
  if (!strikes || plan != Plan::kFallShort || Count() != target || wanted == 0) {
    return strikes;
  }
  transferError = SystemError::kDiskFull;
  wanted = std::min(wanted, shortBytes);
  return false;
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

std::unique_ptr<IFolderWalk> FaultFileServices::Walk(const char* folder, const char* mask,
                                                     SystemError& error) {
  std::unique_ptr<IFolderWalk> walk;
  if (!Strikes("Walk", folder, error)) {
    walk = inner.Walk(folder, mask, error);
  }
  return walk == nullptr ? nullptr : std::make_unique<FaultWalk>(*this, std::move(walk), folder);
}

}  // namespace kivtest
