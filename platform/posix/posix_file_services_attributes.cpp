#define _FILE_OFFSET_BITS 64
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/posix/data_root.h"
#include "platform/posix/dos_attribute.h"
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

// A file without a mark is not hidden.
int ReadHiddenMark(const char* path, bool& hidden) {
  char mark[kMaxDosAttribute];
  const ssize_t length = getxattr(path, kDosAttributeName, mark, sizeof mark);
  hidden = length > 0 && HasHiddenBit({mark, static_cast<size_t>(length)});
  return length < 0 ? errno : 0;
}

int WriteMark(int file, const char* mark, size_t length) {
  return fsetxattr(file, kDosAttributeName, mark, length, 0) == 0 ? 0 : errno;
}

int OpenFolderOf(const char* path, Descriptor& opened) {
  const std::string_view folder(path, static_cast<size_t>(LastName(path).data() - path));
  return OpenGuarded(folder.empty() ? "." : std::string(folder).c_str(), O_RDONLY | O_DIRECTORY,
                     opened);
}

// The folder gets the mark of a plain folder if it has none, so that walks look for marks in it.
int MarkFolderOf(const char* path) {
  Descriptor folder;
  if (const int failure = OpenFolderOf(path, folder); failure != 0) {
    return failure;
  }
  const bool marked = fgetxattr(folder.Get(), kDosAttributeName, nullptr, 0) >= 0;
  return marked ? 0 : WriteMark(folder.Get(), "0x10", sizeof "0x10");
}

int SetHiddenMark(const char* path, int file, bool hidden) {
  char mark[kMaxDosAttribute];
  const ssize_t length = fgetxattr(file, kDosAttributeName, mark, sizeof mark);
  if (length > 0 && ChangeHiddenBit(mark, static_cast<int>(length), hidden)) {
    return WriteMark(file, mark, static_cast<size_t>(length));
  }
  if (!hidden) {
    return 0;
  }
  const int failure = WriteMark(file, "0x2", sizeof "0x2");
  return failure == 0 ? MarkFolderOf(path) : failure;
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

int SetReadOnlyMode(const char* path, int file, mode_t mode, bool readOnly) {
  const mode_t wanted = readOnly ? mode & ~kAnyWrite : mode | S_IWUSR | WriteOfOthers(path, mode);
  return wanted == mode || fchmod(file, wanted & 07777) == 0 ? 0 : errno;
}

int Apply(const char* path, const FileAttributes& wanted) {
  Descriptor file;
  struct stat facts;
  const int refusal = OpenGuarded(path, O_RDONLY | O_NONBLOCK | O_NOCTTY, file);
  if (refusal != 0 || fstat(file.Get(), &facts) != 0) {
    return refusal != 0 ? refusal : errno;
  }
  const bool hiddenName = IsHiddenName(LastName(path));
  if (!S_ISREG(facts.st_mode) || (hiddenName && !wanted.hidden)) {
    return EACCES;
  }
  const bool readOnly = (facts.st_mode & S_IWUSR) == 0;
  if (readOnly != wanted.readOnly) {
    const int failure = SetReadOnlyMode(path, file.Get(), facts.st_mode, wanted.readOnly);
    if (failure != 0) {
      return failure;
    }
  }
  bool hidden = hiddenName;
  if (!hiddenName) {
    ReadHiddenMark(path, hidden);
  }
  return hidden == wanted.hidden ? 0 : SetHiddenMark(path, file.Get(), wanted.hidden);
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
  attributes.readOnly = (facts.st_mode & S_IWUSR) == 0;
  return true;
}

bool SPosixFileServices::FullAttributes(const char* path, FileAttributes& attributes,
                                        SystemError& error) {
  if (!Attributes(path, attributes, error)) {
    return false;
  }
  if (!attributes.hidden) {
    OnPath(path, [&](const char* p) { return ReadHiddenMark(p, attributes.hidden); });
  }
  return true;
}

bool SPosixFileServices::SetAttributes(const char* path, const FileAttributes& attributes,
                                       SystemError& error) {
  error = OnPath(path, [&](const char* p) { return Apply(p, attributes); });
  return error == SystemError::kNone;
}

}  // namespace kivstore
