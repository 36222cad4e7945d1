#define _FILE_OFFSET_BITS 64
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/posix/data_root.h"
#include "platform/posix/dos_mark.h"
#include "platform/posix/guarded_open.h"
#include "platform/posix/posix_file_services.h"
#include "platform/posix/posix_path.h"

namespace kivstore {
namespace {

constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;

std::string_view LastName(std::string_view path) {
  size_t start = path.size();
  while (start > 0 && path[start - 1] != '\\' && path[start - 1] != '/') {
    --start;
  }
  return path.substr(start);
}

bool IsHiddenName(std::string_view name) {
  return name.starts_with('.') && name != "." && name != "..";
}

int LookBehindLink(const char* path, struct stat& facts) {
  Descriptor target;
  const int failure = OpenGuarded(path, O_PATH, target);
  return failure == 0 && fstat(target.Get(), &facts) != 0 ? errno : failure;
}

// One call, but for a link.
int LookAt(const char* path, struct stat& facts, FileAttributes& attributes) {
  if (lstat(path, &facts) != 0) {
    return errno;
  }
  attributes.link = S_ISLNK(facts.st_mode);
  int failure = 0;
  if (attributes.link) {
    failure = LookBehindLink(path, facts);
  } else {
    KeptDataRoot().Meet(facts.st_dev, path);
  }
  attributes.foreign = failure == kForeignLinkFailure;
  return attributes.foreign ? 0 : failure;
}

int OpenFolderOf(const char* path, Descriptor& opened) {
  const std::string_view folder(path, static_cast<size_t>(LastName(path).data() - path));
  return OpenGuarded(folder.empty() ? "." : std::string(folder).c_str(), O_RDONLY | O_DIRECTORY,
                     opened);
}

// Whoever may write in the folder and read the file could write the file before it was marked.
mode_t WriteOfOthers(const char* path, mode_t mode) {
  Descriptor folder;
  struct stat facts;
  if (OpenFolderOf(path, folder) != 0 || fstat(folder.Get(), &facts) != 0) {
    return 0;
  }
  const mode_t readers = (mode & (S_IRGRP | S_IROTH)) >> 1;
  return facts.st_mode & readers;
}

bool IsReadOnlyMode(mode_t mode) {
  return (mode & S_IWUSR) == 0;
}

int SetReadOnlyMode(const char* path, int file, mode_t mode, bool readOnly) {
  if (IsReadOnlyMode(mode) == readOnly) {
    return 0;
  }
  const mode_t wanted = readOnly ? mode & ~kAnyWrite : mode | S_IWUSR | WriteOfOthers(path, mode);
  return fchmod(file, wanted & 07777) == 0 ? 0 : errno;
}

// The mode says it to all; a mark that is there says the same. What may not be written takes no
// mark, so that the mode is the last to be set and the first to be cleared.
int SetReadOnly(const char* path, int file, mode_t mode, bool readOnly) {
  int failure = readOnly ? 0 : SetReadOnlyMode(path, file, mode, false);
  if (failure == 0) {
    failure = ChangeMark(file, kDosReadOnly, readOnly);
  }
  if (failure == 0 || failure == ENODATA) {
    failure = readOnly ? SetReadOnlyMode(path, file, mode, true) : 0;
  }
  return failure;
}

// Walks look for marks in folders that bear one.
int SetHidden(const char* path, int file, bool hidden) {
  int failure = ChangeMark(file, kDosHidden, hidden);
  if (failure == ENODATA) {
    failure = hidden ? MakeMark(file, kDosHidden) : 0;
  }
  Descriptor folder;
  if (failure == 0 && hidden) {
    failure = OpenFolderOf(path, folder);
  }
  return folder.IsOpen() ? MarkFolder(folder.Get()) : failure;
}

int Apply(const char* path, const FileAttributes& wanted) {
  Descriptor file;
  struct stat facts;
  int failure = OpenGuarded(path, O_RDONLY | O_NONBLOCK | O_NOCTTY, file);
  if (failure != 0 || fstat(file.Get(), &facts) != 0) {
    return failure != 0 ? failure : errno;
  }
  const bool hiddenName = IsHiddenName(LastName(path));
  if (!S_ISREG(facts.st_mode) || (hiddenName && !wanted.hidden)) {
    return EACCES;
  }
  const unsigned mark = MarkOf(file.Get());
  const bool readOnly = IsReadOnlyMode(facts.st_mode) || (mark & kDosReadOnly) != 0;
  const bool hidden = hiddenName || (mark & kDosHidden) != 0;
  if (readOnly != wanted.readOnly) {
    failure = SetReadOnly(path, file.Get(), facts.st_mode, wanted.readOnly);
  }
  if (failure == 0 && hidden != wanted.hidden) {
    failure = SetHidden(path, file.Get(), wanted.hidden);
  }
  return failure;
}

}  // namespace

bool SPosixFileServices::Attributes(const char* path, FileAttributes& attributes,
                                    SystemError& error) {
  struct stat facts;
  error = OnPath(path, [&](const char* p) { return LookAt(p, facts, attributes); });
  if (error != SystemError::kNone) {
    return false;
  }
  attributes.folder = S_ISDIR(facts.st_mode);
  attributes.hidden = IsHiddenName(LastName(path));
  attributes.readOnly = IsReadOnlyMode(facts.st_mode);
  return true;
}

bool SPosixFileServices::FullAttributes(const char* path, FileAttributes& attributes,
                                        SystemError& error) {
  if (!Attributes(path, attributes, error)) {
    return false;
  }
  unsigned mark = 0;
  OnPath(path, [&](const char* p) { return ReadMark(p, mark); });
  attributes.hidden |= (mark & kDosHidden) != 0;
  attributes.readOnly |= !attributes.folder && (mark & kDosReadOnly) != 0;
  return true;
}

bool SPosixFileServices::SetAttributes(const char* path, const FileAttributes& attributes,
                                       SystemError& error) {
  error = OnPath(path, [&](const char* p) { return Apply(p, attributes); });
  return error == SystemError::kNone;
}

}  // namespace kivstore
