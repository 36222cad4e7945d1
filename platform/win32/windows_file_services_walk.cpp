#include <windows.h>

#include <cstring>
#include <new>
#include <string_view>

#include "platform/win32/windows_error.h"
#include "platform/win32/windows_file_services.h"

namespace kivstore {
namespace {

class WindowsFolderWalk : public IFolderWalk {
 public:
  ~WindowsFolderWalk() override;

  bool Open(const char* search, SystemError& error);
  bool Next(FolderEntry& entry) override;
  bool HasFailed() const override { return failed; }

 private:
  HANDLE search = INVALID_HANDLE_VALUE;
  WIN32_FIND_DATAA data{};
  bool fresh = true;  // `data` holds an entry that Next has not shown
  bool failed = false;
};

WindowsFolderWalk::~WindowsFolderWalk() {
  if (search != INVALID_HANDLE_VALUE) {
    FindClose(search);
  }
}

// A folder without any match is walked like an empty one.
bool WindowsFolderWalk::Open(const char* mask, SystemError& error) {
  search = FindFirstFileA(mask, &data);
  const bool empty = search == INVALID_HANDLE_VALUE && GetLastError() == ERROR_FILE_NOT_FOUND;
  return Report(empty || search != INVALID_HANDLE_VALUE, error);
}

bool WindowsFolderWalk::Next(FolderEntry& entry) {
  if (search == INVALID_HANDLE_VALUE || failed) {
    return false;
  }
  if (!fresh && !FindNextFileA(search, &data)) {
    failed = GetLastError() != ERROR_NO_MORE_FILES;
    return false;
  }
  fresh = false;
  entry.name = data.cFileName;
  entry.nameLength = static_cast<int>(std::strlen(data.cFileName));
  entry.attributes.folder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  entry.attributes.hidden = (data.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN) != 0;
  return true;
}

std::unique_ptr<char[]> SearchPath(std::string_view folder, std::string_view mask) {
  std::unique_ptr<char[]> path(new (std::nothrow) char[folder.size() + mask.size() + 2]);
  if (path == nullptr) {
    return path;
  }
  size_t length = folder.copy(path.get(), folder.size());
  if (!folder.ends_with('\\') && !folder.ends_with('/')) {
    path[length++] = '\\';
  }
  length += mask.copy(path.get() + length, mask.size());
  path[length] = '\0';
  return path;
}

}  // namespace

std::unique_ptr<IFolderWalk> SWindowsFileServices::Walk(const char* folder, const char* mask,
                                                        SystemError& error) {
  const std::unique_ptr<char[]> path = SearchPath(folder, mask);
  std::unique_ptr<WindowsFolderWalk> walk(new (std::nothrow) WindowsFolderWalk);
  if (path == nullptr || walk == nullptr) {
    error = SystemError::kOther;
    return nullptr;
  }
  if (!walk->Open(path.get(), error)) {
    return nullptr;
  }
  return walk;
}

}  // namespace kivstore
