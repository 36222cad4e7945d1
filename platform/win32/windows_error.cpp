#include "platform/win32/windows_error.h"

#include <windows.h>

namespace kivstore {
namespace {

// Not in every toolchain's headers.
constexpr DWORD kDiskQuotaExceeded = 1295;

}  // namespace

SystemError LastSystemError() {
  const DWORD code = GetLastError();
  switch (code) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_ACCESS_DENIED:
    case ERROR_INVALID_HANDLE:
    case ERROR_NOT_SAME_DEVICE:
    case ERROR_WRITE_PROTECT:
    case ERROR_SHARING_VIOLATION:
    case ERROR_DISK_FULL:
    case ERROR_INVALID_NAME:
    case ERROR_DIR_NOT_EMPTY:
    case ERROR_ALREADY_EXISTS:
    case kForeignLinkError:
      return static_cast<SystemError>(code);
    case ERROR_LOCK_VIOLATION:
      return SystemError::kSharingViolation;
    case ERROR_HANDLE_DISK_FULL:
    case kDiskQuotaExceeded:
      return SystemError::kDiskFull;
    case ERROR_NOT_READY:
    case ERROR_BAD_NETPATH:
    case ERROR_DEV_NOT_EXIST:
    case ERROR_UNEXP_NET_ERR:
    case ERROR_NETNAME_DELETED:
    case ERROR_IO_DEVICE:
    case ERROR_DEVICE_NOT_CONNECTED:
    case ERROR_NETWORK_UNREACHABLE:
    case ERROR_CONNECTION_ABORTED:
      return SystemError::kDeviceGone;
    case ERROR_FILE_EXISTS:
      return SystemError::kAlreadyExists;
    default:
      return SystemError::kOther;
  }
}

bool Report(bool succeeded, SystemError& error) {
  error = succeeded ? SystemError::kNone : LastSystemError();
  return succeeded;
}

}  // namespace kivstore
