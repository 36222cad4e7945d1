#define _FILE_OFFSET_BITS 64
#include "platform/posix/posix_path.h"

#include <algorithm>
#include <cstring>

#include "platform/base/bytes.h"
#include "platform/posix/folder_reader.h"
#include "platform/posix/guarded_open.h"

namespace kivstore {
namespace {

// Writes the name on disk over `asked`, which has the same length.
SystemError FindName(FolderReader& folder, char* asked, int length) {
  const std::string_view name(asked, static_cast<size_t>(length));
  char found[256] = "";
  if (name.size() >= sizeof found) {
    return SystemError::kFileNotFound;
  }
  RawEntry entry;
  while (folder.Next(entry)) {
    if (entry.nameLength != length || !EqualBytesNoCase(entry.Name(), name)) {
      continue;
    }
    if (entry.Name() == name) {
      return SystemError::kNone;
    }
    if (found[0] == '\0' || std::memcmp(entry.name, found, name.size()) < 0) {
      std::memcpy(found, entry.name, name.size());
    }
  }
  if (found[0] == '\0') {
    return folder.HasFailed() ? SystemError::kOther : SystemError::kFileNotFound;
  }
  std::memcpy(asked, found, name.size());
  return SystemError::kNone;
}

}  // namespace

// Copied in one piece and then turned from backslash to backslash: paths are made for every call.
PosixPath::PosixPath(const char* path)
    : length(static_cast<int>(std::min(std::strlen(path), static_cast<size_t>(kRoom)))) {
  const int kept = std::min(length, kRoom - 1);
  std::memcpy(text, path, static_cast<size_t>(kept));
  text[kept] = '\0';
  char* at = text;
  while ((at = std::strchr(at, '\\')) != nullptr) {
    *at++ = '/';
  }
}

SystemError PosixPath::Check() const {
  if (length == 0) {
    return SystemError::kPathNotFound;
  }
  return length < kRoom ? SystemError::kNone : SystemError::kInvalidName;
}

int PosixPath::StartOfName(int end) const {
  while (end > 0 && text[end - 1] != '/') {
    --end;
  }
  return end;
}

// Behind the last name that ends at or before `end`.
int PosixPath::EndOfNames(int end) const {
  while (end > 0 && text[end - 1] == '/') {
    --end;
  }
  return end;
}

SystemError PosixPath::MatchNames() {
  return MatchName(EndOfNames(length));
}

// The folder is opened as written first, so that only the part of the path that needs it is looked
// through. Recursion goes one name up each time: at most half the path's length.
SystemError PosixPath::MatchName(int end) {
  if (end == 0) {
    return SystemError::kPathNotFound;
  }
  const int start = StartOfName(end);
  const SystemError error = MatchInFolder(start, end);
  if (error != SystemError::kPathNotFound || EndOfNames(start) == 0) {
    return error;
  }
  const SystemError above = MatchName(EndOfNames(start));
  if (above != SystemError::kNone) {
    return above == SystemError::kFileNotFound ? SystemError::kPathNotFound : above;
  }
  return MatchInFolder(start, end);
}

int PosixPath::OpenFolder(FolderReader& folder, int end) {
  if (end == 0) {
    return folder.OpenHere(".");
  }
  const char next = text[end];
  text[end] = '\0';
  const int failure = folder.OpenHere(text);
  text[end] = next;
  return failure;
}

SystemError PosixPath::MatchInFolder(int start, int end) {
  FolderReader folder;
  const int failure = OpenFolder(folder, start);
  if (failure == ENOENT || failure == ENOTDIR) {
    return SystemError::kPathNotFound;
  }
  if (failure == EACCES) {
    return SystemError::kFileNotFound;  // it may be entered but not listed
  }
  if (failure != 0) {
    return ToSystemError(failure);
  }
  return FindName(folder, text + start, end - start);
}

void PosixPath::TakeLastName(const PosixPath& other) {
  const int end = EndOfNames(length);
  const int start = StartOfName(end);
  const int otherStart = other.StartOfName(other.EndOfNames(other.length));
  std::memcpy(text + start, other.text + otherStart, static_cast<size_t>(end - start));
}

SystemError ToSystemError(int systemError) {
  switch (systemError) {
    case 0:
      return SystemError::kNone;
    case ENOENT:
      return SystemError::kFileNotFound;
    case ENOTDIR:
      return SystemError::kPathNotFound;
    case EACCES:
    case EPERM:
    case EISDIR:
      return SystemError::kAccessDenied;
    case EROFS:
      return SystemError::kWriteProtected;
    case EIO:
    case ENODEV:
    case ENXIO:
    case ENOTCONN:
    case ESTALE:
    case EHOSTDOWN:
    case EHOSTUNREACH:
    case ETIMEDOUT:
    case ECONNRESET:
      return SystemError::kDeviceGone;
    case EBADF:
      return SystemError::kInvalidHandle;
    case EXDEV:
      return SystemError::kNotSameDevice;
    case EAGAIN:
    case EBUSY:
    case ETXTBSY:
      return SystemError::kSharingViolation;
    case ENOSPC:
    case EDQUOT:
      return SystemError::kDiskFull;
    case ENAMETOOLONG:
      return SystemError::kInvalidName;
    case kForeignLinkFailure:
      return SystemError::kForeignLink;
    case ESPIPE:
    case kNoPlainFileFailure:
      return SystemError::kNoPlainFile;
    case ENOTEMPTY:
      return SystemError::kFolderNotEmpty;
    case EEXIST:
      return SystemError::kAlreadyExists;
    default:
      return SystemError::kOther;
  }
}

}  // namespace kivstore
