#define _FILE_OFFSET_BITS 64
#include "platform/posix/posix_file_services.h"

#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/base/never_destroyed.h"
#include "platform/posix/data_root.h"
#include "platform/posix/guarded_open.h"
#include "platform/posix/posix_path.h"
#include "platform/posix/services.h"

namespace kivstore {
namespace {

constinit NeverDestroyed<SPosixFileServices> gFileServices;

}  // namespace

void SPosixFileServices::KeepDataRoot(const char* path) {
  KeptDataRoot().Keep(path);
}

bool SPosixFileServices::IsShared() {
  return KeptDataRoot().IsShared();
}

ForeignLink SPosixFileServices::LastForeignLink() {
  return kivstore::LastForeignLink();
}

bool SPosixFileServices::DiskSpace(const char* root, uint64_t& total, uint64_t& free,
                                   uint32_t& cluster) {
  struct statvfs facts;
  const SystemError error =
      OnPath(root, [&](const char* path) { return statvfs(path, &facts) == 0 ? 0 : errno; });
  if (error != SystemError::kNone) {
    return false;
  }
  const uint64_t unit = facts.f_frsize;
  total = unit * facts.f_blocks;
  free = unit * facts.f_bavail;
  cluster = 1;
  return true;
}

bool SPosixFileServices::CurrentFolder(char* buffer, int size) {
  if (size < 1 || getcwd(buffer, static_cast<size_t>(size)) == nullptr) {
    return false;
  }
  std::replace(buffer, buffer + std::strlen(buffer), '/', '\\');
  return true;
}

bool SPosixFileServices::SetCurrentFolder(const char* path) {
  return OnPath(path, [](const char* p) { return chdir(p) == 0 ? 0 : errno; }) ==
         SystemError::kNone;
}

IFileServices& PosixFileServices() {
  return gFileServices.object;
}

}  // namespace kivstore
