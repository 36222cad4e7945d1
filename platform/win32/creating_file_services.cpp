// The only source that can make a file or a folder. See CreatingFileServices.
#include <windows.h>

#include <cstring>
#include <memory>
#include <new>

#include "platform/base/never_destroyed.h"
#include "platform/win32/windows_error.h"
#include "platform/win32/windows_file_services.h"

namespace kivstore {
namespace {

constexpr int kMaxDepth = 128;

using PathText = std::unique_ptr<char[]>;

PathText Join(const char* folder, const char* name) {
  const size_t folderLength = std::strlen(folder);
  const size_t nameSize = std::strlen(name) + 1;
  PathText joined(new (std::nothrow) char[folderLength + 1 + nameSize]);
  if (joined != nullptr) {
    std::memcpy(joined.get(), folder, folderLength);
    joined[folderLength] = '\\';
    std::memcpy(joined.get() + folderLength + 1, name, nameSize);
  }
  return joined;
}

// What a folder is, whatever its path says.
struct FolderIdentity {
  DWORD volume = 0, high = 0, low = 0;

  bool operator==(const FolderIdentity&) const = default;
};

bool Identify(const char* path, FolderIdentity& identity) {
  const HANDLE folder = CreateFileA(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (folder == INVALID_HANDLE_VALUE) {
    return false;
  }
  BY_HANDLE_FILE_INFORMATION facts;
  const bool known = GetFileInformationByHandle(folder, &facts) != 0;
  CloseHandle(folder);
  if (known) {
    identity = {facts.dwVolumeSerialNumber, facts.nFileIndexHigh, facts.nFileIndexLow};
  }
  return known;
}

class SCreatingFileServices : public SWindowsFileServices {
 public:
  bool MakeFile(const char* path, SystemError& error) override;
  bool MakeFolder(const char* path, uint32_t mode, SystemError& error) override;
  bool CopyFileTo(const char* from, const char* to, SystemError& error) override;

 private:
  // `top` is the top of the copied tree, once it stands: the copy of a folder into itself ends when
  // it meets this.
  bool CopyTree(const char* from, const char* to, const FolderIdentity* top, int depth,
                SystemError& error);
  bool CopyEntry(const char* from, const char* to, const FolderIdentity* top, int depth,
                 SystemError& error);
};

bool SCreatingFileServices::MakeFile(const char* path, SystemError& error) {
  constexpr DWORD kFlags = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT;
  const HANDLE made = CreateFileA(path, GENERIC_WRITE, 0, nullptr, CREATE_NEW, kFlags, nullptr);
  if (Report(made != INVALID_HANDLE_VALUE, error)) {
    CloseHandle(made);
    return true;
  }
  FileAttributes attributes;
  return error == SystemError::kAlreadyExists && Attributes(path, attributes, error) &&
         !attributes.folder;
}

bool SCreatingFileServices::MakeFolder(const char* path, uint32_t, SystemError& error) {
  return Report(CreateDirectoryA(path, nullptr) != 0, error);
}

bool SCreatingFileServices::CopyFileTo(const char* from, const char* to, SystemError& error) {
  return CopyEntry(from, to, nullptr, 0, error);
}

// A link leads out of the tree: it is not followed, and the copy fails.
bool SCreatingFileServices::CopyEntry(const char* from, const char* to, const FolderIdentity* top,
                                      int depth, SystemError& error) {
  FileAttributes attributes;
  if (!Attributes(from, attributes, error)) {
    return false;
  }
  if (!attributes.folder) {
    return Report(CopyFileA(from, to, TRUE) != 0, error);
  }
  error = SystemError::kOther;
  FolderIdentity own;
  const bool isTop = top != nullptr && (!Identify(from, own) || own == *top);
  return !attributes.link && !isTop && depth < kMaxDepth && CopyTree(from, to, top, depth, error);
}

bool SCreatingFileServices::CopyTree(const char* from, const char* to, const FolderIdentity* top,
                                     int depth, SystemError& error) {
  const std::unique_ptr<IFolderWalk> walk = Walk(from, "*.*", error);
  if (walk == nullptr || !MakeFolder(to, 0, error)) {
    return false;
  }
  FolderIdentity made;
  if (!Report(Identify(to, made), error)) {
    return false;
  }
  FolderEntry entry;
  while (walk->Next(entry)) {
    if (std::strcmp(entry.name, ".") == 0 || std::strcmp(entry.name, "..") == 0) {
      continue;
    }
    const PathText source = Join(from, entry.name);
    const PathText target = Join(to, entry.name);
    if (source == nullptr || target == nullptr ||
        !CopyEntry(source.get(), target.get(), top != nullptr ? top : &made, depth + 1, error)) {
      return false;
    }
  }
  return !walk->HasFailed();
}

constinit NeverDestroyed<SCreatingFileServices> gCreatingFileServices;

}  // namespace

IFileServices& CreatingFileServices() {
  return gCreatingFileServices.object;
}

}  // namespace kivstore
