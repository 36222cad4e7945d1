#include <windows.h>

#include "hosts/kivreport/lock_probe.h"

namespace kivreport {

LockState ProbeLock(const std::filesystem::path& path) {
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file != INVALID_HANDLE_VALUE) {
    CloseHandle(file);
    return LockState::kFree;
  }
  return GetLastError() == ERROR_SHARING_VIOLATION ? LockState::kHeld : LockState::kRefused;
}

}  // namespace kivreport
