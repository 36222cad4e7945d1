#include "hosts/kivadmin/backups/store_restoring.h"

#include <filesystem>

#include "foundation/files/file_finder.h"
#include "store/place/store_names.h"

namespace kivadmin {
namespace {

namespace fs = std::filesystem;
using namespace kivstore;

constexpr const char* kRestoring = "kivadmin-restoring";

// The folder that is unpacked into; gone at the end, whatever happens.
class WorkFolder {
 public:
  explicit WorkFolder(const Session& session) : spec(session.DataRoot()) { spec.Down(kRestoring); }
  ~WorkFolder() {
    if (Look().Exists()) {
      spec.Delete(true);
    }
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  const SFileSpec& Look() {
    spec.Refresh();
    return spec;
  }

 private:
  SFileSpec spec;
};

// The classes folder is the store.
std::vector<SFileSpec> InOrder(const SFileSpec& work) {
  std::vector<SFileSpec> all;
  SFileSpec classes(work);
  classes.Down(ClassesName());
  SFileFinder finder(work, SFileFinder::kEverything);
  for (SFileSpec one; finder.Next(one);) {
    if (one.GetPath() != classes.GetPath()) {
      all.push_back(one);
    }
  }
  all.push_back(classes);
  return all;
}

// All of it or nothing.
void MoveOut(const Session& session, const SFileSpec& work) {
  std::vector<SFileSpec> moved;
  try {
    for (SFileSpec& one : InOrder(work)) {
      SFileSpec place = session.DataRoot();
      place.Down(one.GetFileName());
      session.Need("restore", one, [&] { return one.RenameTo(place); });
      place.Refresh();
      moved.push_back(place);
    }
  } catch (const HostError&) {
    for (SFileSpec& place : moved) {
      place.Delete(true);
    }
    throw;
  }
}

}  // namespace

void NeedEmptyRoot(const std::string& root) {
  std::error_code error;
  const fs::file_status status = fs::status(fs::path(root), error);
  if (status.type() == fs::file_type::not_found) {
    return;
  }
  const fs::path left = fs::path(root) / kRestoring;
  if (fs::exists(left, error)) {
    throw HostError(kRefused,
                    left.string() + ": a restore is at work, or was killed; remove it if none is");
  }
  const bool isEmpty = fs::is_empty(fs::path(root), error);
  if (error) {
    throw HostError(kNoStore, root + ": " + error.message());
  }
  if (!fs::is_directory(status) || !isEmpty) {
    throw HostError(kRefused, root +
                                  ": is not empty; a store is restored where none is, or a "
                                  "student into one by --student");
  }
}

void RestoreStore(const Session& session, const BackupReader& backup,
                  const std::function<void()>& fileDone) {
  backup.NeedNamesOfStore();
  if (session.IsDryRun()) {
    for (const kivhost::ZipEntry* entry : backup.Below("")) {
      backup.Read(*entry);
      fileDone();
    }
    return;
  }
  WorkFolder work(session);
  Unpack(session, backup, "", work.Look(), fileDone);
  MoveOut(session, work.Look());
}

}  // namespace kivadmin
