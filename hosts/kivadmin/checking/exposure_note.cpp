#include "hosts/kivadmin/checking/exposure_note.h"

#include "platform/platform.h"

namespace kivadmin {

using namespace kivstore;

namespace {

// Of a lock that cannot be taken the check itself tells.
SystemError ExposureOf(SFileSpec lock) {
  IFileServices& files = *Platform().files;
  SystemError result = SystemError::kNone;
  lock.Down("index.lok");
  const FileHandle file = files.Open(lock.GetPath().GetText(), FileAccess::kReadWrite, result);
  if (file == nullptr) {
    return SystemError::kNone;
  }
  result = files.Exposure(file);
  files.Close(file);
  return result;
}

}  // namespace

std::string ExposureNote(const CommonOptions& common) {
  const Session session(common, Session::Access::kLook);
  const SystemError exposure =
      session.HasLocks() ? ExposureOf(session.TopFolder()) : SystemError::kNone;
  if (exposure == SystemError::kNone) {
    return {};
  }
  const bool isForeign = exposure == SystemError::kAccessDenied;
  return kivhost::HeldRoot(common.root) + ": no write leases can be had here: " +
         (isForeign ? "the lock files belong to another user"
                    : "the system has none for this file system") +
         ". It matters only if Samba on this machine shares the store: its clients are then not "
         "kept out while the store is changed from here; " +
         (isForeign ? "change it as the files' owner or as root" : "change it through the share");
}

}  // namespace kivadmin
