#include <windows.h>

#include "platform/win32/windows_error.h"
#include "platform/win32/windows_file_services.h"

namespace kivstore {
namespace {

constexpr DWORD kOpenFlags = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_RANDOM_ACCESS;

HANDLE OpenExisting(const char* path, DWORD access, DWORD share, DWORD flags = 0) {
  return CreateFileA(path, access, share, nullptr, OPEN_EXISTING, kOpenFlags | flags, nullptr);
}

// Nothing is written through a link. Other reparse points are files that are kept elsewhere or in
// another form: those are opened as what they stand for.
HANDLE OpenToWrite(const char* path) {
  constexpr DWORD kAccess = GENERIC_READ | GENERIC_WRITE;
  const HANDLE file = OpenExisting(path, kAccess, 0, FILE_FLAG_OPEN_REPARSE_POINT);
  BY_HANDLE_FILE_INFORMATION facts{};
  if (file == INVALID_HANDLE_VALUE || !GetFileInformationByHandle(file, &facts) ||
      (facts.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
    return file;
  }
  CloseHandle(file);
  if (!IsLink(path)) {
    return OpenExisting(path, kAccess, 0);
  }
  SetLastError(kForeignLinkError);
  return INVALID_HANDLE_VALUE;
}

HANDLE ToSystem(FileHandle file) {
  return reinterpret_cast<HANDLE>(file);
}

DWORD ToMethod(SeekOrigin origin) {
  switch (origin) {
    case SeekOrigin::kEnd:
      return FILE_END;
    case SeekOrigin::kCurrent:
      return FILE_CURRENT;
    default:
      return FILE_BEGIN;
  }
}

// -1 on failure. The low half may look like the failure's value: then the last error decides.
int64_t MovePosition(HANDLE file, int64_t offset, DWORD method) {
  LONG high = static_cast<LONG>(offset >> 32);
  const DWORD low = SetFilePointer(file, static_cast<LONG>(offset), &high, method);
  if (low == INVALID_SET_FILE_POINTER && GetLastError() != NO_ERROR) {
    return -1;
  }
  return static_cast<int64_t>(high) << 32 | low;
}

}  // namespace

FileHandle SWindowsFileServices::Open(const char* path, FileAccess access, SystemError& error) {
  const HANDLE file = access == FileAccess::kRead
                          ? OpenExisting(path, GENERIC_READ, FILE_SHARE_READ)
                          : OpenToWrite(path);
  return Report(file != INVALID_HANDLE_VALUE, error) ? reinterpret_cast<FileHandle>(file) : nullptr;
}

void SWindowsFileServices::Close(FileHandle file) {
  CloseHandle(ToSystem(file));
}

int32_t SWindowsFileServices::Read(FileHandle file, void* buffer, int32_t count) {
  DWORD moved = 0;
  if (count < 1 ||
      !Report(ReadFile(ToSystem(file), buffer, static_cast<DWORD>(count), &moved, nullptr) != 0,
              transferError)) {
    return 0;
  }
  return static_cast<int32_t>(moved);
}

int32_t SWindowsFileServices::Write(FileHandle file, const void* buffer, int32_t count) {
  DWORD moved = 0;
  if (count < 1 ||
      !Report(WriteFile(ToSystem(file), buffer, static_cast<DWORD>(count), &moved, nullptr) != 0,
              transferError)) {
    return 0;
  }
  if (static_cast<int32_t>(moved) < count) {
    transferError = SystemError::kDiskFull;
  }
  return static_cast<int32_t>(moved);
}

bool SWindowsFileServices::Seek(FileHandle file, SeekOrigin origin, int64_t offset) {
  return MovePosition(ToSystem(file), offset, ToMethod(origin)) >= 0;
}

int64_t SWindowsFileServices::Tell(FileHandle file) {
  return MovePosition(ToSystem(file), 0, FILE_CURRENT);
}

int64_t SWindowsFileServices::Size(FileHandle file) {
  DWORD high = 0;
  const DWORD low = GetFileSize(ToSystem(file), &high);
  if (low == INVALID_FILE_SIZE && GetLastError() != NO_ERROR) {
    return -1;
  }
  return static_cast<int64_t>(high) << 32 | low;
}

bool SWindowsFileServices::SetEnd(FileHandle file) {
  return Report(SetEndOfFile(ToSystem(file)) != 0, transferError);
}

bool SWindowsFileServices::Flush(FileHandle file) {
  return Report(FlushFileBuffers(ToSystem(file)) != 0, transferError);
}

}  // namespace kivstore
