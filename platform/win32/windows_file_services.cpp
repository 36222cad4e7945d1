#include "platform/win32/windows_file_services.h"

#include <windows.h>

#include "platform/base/never_destroyed.h"
#include "platform/win32/services.h"
#include "platform/win32/windows_error.h"

namespace kivstore {
namespace {

constinit NeverDestroyed<SWindowsFileServices> gFileServices;

DWORD WithBit(DWORD bits, DWORD bit, bool on) {
  return on ? bits | bit : bits & ~bit;
}

using DiskSpaceCall = BOOL(WINAPI*)(LPCSTR, PULARGE_INTEGER, PULARGE_INTEGER, PULARGE_INTEGER);

// Looked up at run time: the oldest systems lack it.
DiskSpaceCall FindDiskSpaceCall() {
  const HMODULE kernel = GetModuleHandleA("kernel32.dll");
  if (kernel == nullptr) {
    return nullptr;
  }
  const FARPROC call = GetProcAddress(kernel, "GetDiskFreeSpaceExA");
  return reinterpret_cast<DiskSpaceCall>(reinterpret_cast<void*>(call));
}

}  // namespace

bool IsLink(const char* path) {
  WIN32_FIND_DATAA found;
  const HANDLE search = FindFirstFileA(path, &found);
  if (search == INVALID_HANDLE_VALUE) {
    return true;
  }
  FindClose(search);
  return found.dwReserved0 == IO_REPARSE_TAG_SYMLINK ||
         found.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT;
}

bool SWindowsFileServices::Attributes(const char* path, FileAttributes& attributes,
                                      SystemError& error) {
  const DWORD bits = GetFileAttributesA(path);
  if (!Report(bits != INVALID_FILE_ATTRIBUTES, error)) {
    return false;
  }
  attributes.folder = (bits & FILE_ATTRIBUTE_DIRECTORY) != 0;
  attributes.hidden = (bits & FILE_ATTRIBUTE_HIDDEN) != 0;
  attributes.readOnly = (bits & FILE_ATTRIBUTE_READONLY) != 0;
  attributes.link = (bits & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsLink(path);
  return true;
}

bool SWindowsFileServices::FullAttributes(const char* path, FileAttributes& attributes,
                                          SystemError& error) {
  return Attributes(path, attributes, error);
}

bool SWindowsFileServices::SetAttributes(const char* path, const FileAttributes& attributes,
                                         SystemError& error) {
  DWORD bits = GetFileAttributesA(path);
  if (!Report(bits != INVALID_FILE_ATTRIBUTES, error)) {
    return false;
  }
  bits = WithBit(bits, FILE_ATTRIBUTE_HIDDEN, attributes.hidden);
  bits = WithBit(bits, FILE_ATTRIBUTE_READONLY, attributes.readOnly);
  return Report(SetFileAttributesA(path, bits) != 0, error);
}

bool SWindowsFileServices::Delete(const char* path, SystemError& error) {
  return Report(DeleteFileA(path) != 0, error);
}

bool SWindowsFileServices::RemoveFolder(const char* path, SystemError& error) {
  return Report(RemoveDirectoryA(path) != 0, error);
}

bool SWindowsFileServices::Move(const char* from, const char* to, SystemError& error) {
  return Report(MoveFileA(from, to) != 0, error);
}

bool SWindowsFileServices::DiskSpace(const char* root, uint64_t& total, uint64_t& free,
                                     uint32_t& cluster) {
  cluster = 1;
  if (const DiskSpaceCall call = FindDiskSpaceCall(); call != nullptr) {
    ULARGE_INTEGER freeBytes{};
    ULARGE_INTEGER totalBytes{};
    if (!call(root, &freeBytes, &totalBytes, nullptr)) {
      return false;
    }
    total = totalBytes.QuadPart;
    free = freeBytes.QuadPart;
    return true;
  }
  DWORD sectors = 0;
  DWORD sectorBytes = 0;
  DWORD freeClusters = 0;
  DWORD clusters = 0;
  if (!GetDiskFreeSpaceA(root, &sectors, &sectorBytes, &freeClusters, &clusters)) {
    return false;
  }
  cluster = sectors * sectorBytes;
  total = uint64_t{clusters} * cluster;
  free = uint64_t{freeClusters} * cluster;
  return true;
}

bool SWindowsFileServices::CurrentFolder(char* buffer, int size) {
  const DWORD room = size > 0 ? static_cast<DWORD>(size) : 0;
  const DWORD length = GetCurrentDirectoryA(room, buffer);
  return length != 0 && length < room;
}

bool SWindowsFileServices::SetCurrentFolder(const char* path) {
  return SetCurrentDirectoryA(path) != 0;
}

IFileServices& WindowsFileServices() {
  return gFileServices.object;
}

}  // namespace kivstore
