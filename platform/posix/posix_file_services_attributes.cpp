#define _FILE_OFFSET_BITS 64
#include <sys/stat.h>
#include <sys/xattr.h>

#include <cerrno>
#include <cstring>
#include <string_view>

#include "platform/posix/data_root.h"
#include "platform/posix/dos_attribute.h"
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

// One call, but for a link.
int LookAt(const char* path, struct stat& facts, bool& link) {
  link = false;
  if (lstat(path, &facts) != 0) {
    return errno;
  }
  KeptDataRoot().Meet(facts.st_dev, path);
  link = S_ISLNK(facts.st_mode);
  return link && stat(path, &facts) != 0 ? errno : 0;
}

// A file without a mark is not hidden.
int ReadHiddenMark(const char* path, bool& hidden) {
  char mark[kMaxDosAttribute];
  const ssize_t length = getxattr(path, kDosAttributeName, mark, sizeof mark);
  hidden = length > 0 && HasHiddenBit({mark, static_cast<size_t>(length)});
  return length < 0 ? errno : 0;
}

int WriteMark(const char* path, const char* mark, size_t length) {
  return setxattr(path, kDosAttributeName, mark, length, 0) == 0 ? 0 : errno;
}

void FolderOf(const char* path, char (&text)[4096]) {
  const std::string_view folder(path, static_cast<size_t>(LastName(path).data() - path));
  std::strcpy(text, ".");
  if (!folder.empty()) {
    text[folder.copy(text, sizeof text - 1)] = '\0';
  }
}

// The folder gets the mark of a plain folder if it has none, so that walks look for marks in it.
int MarkFolderOf(const char* path) {
  char text[4096];
  FolderOf(path, text);
  const bool marked = getxattr(text, kDosAttributeName, nullptr, 0) >= 0;
  return marked ? 0 : WriteMark(text, "0x10", sizeof "0x10");
}

int SetHiddenMark(const char* path, bool hidden) {
  char mark[kMaxDosAttribute];
  const ssize_t length = getxattr(path, kDosAttributeName, mark, sizeof mark);
  if (length > 0 && ChangeHiddenBit(mark, static_cast<int>(length), hidden)) {
    return WriteMark(path, mark, static_cast<size_t>(length));
  }
  if (!hidden) {
    return 0;
  }
  const int failure = WriteMark(path, "0x2", sizeof "0x2");
  return failure == 0 ? MarkFolderOf(path) : failure;
}

// Whoever may write in the folder and read the file could write the file before it was marked.
mode_t WriteOfOthers(const char* path, mode_t mode) {
  char folder[4096];
  FolderOf(path, folder);
  struct stat facts;
  if (stat(folder, &facts) != 0) {
    return 0;
  }
  const mode_t readers = (mode & (S_IRGRP | S_IROTH)) >> 1;
  return facts.st_mode & readers;
}

int SetReadOnlyMode(const char* path, mode_t mode, bool readOnly) {
  const mode_t wanted = readOnly ? mode & ~kAnyWrite : mode | S_IWUSR | WriteOfOthers(path, mode);
  return wanted == mode || chmod(path, wanted & 07777) == 0 ? 0 : errno;
}

int Apply(const char* path, const FileAttributes& wanted) {
  struct stat facts;
  if (stat(path, &facts) != 0) {
    return errno;
  }
  const bool hiddenName = IsHiddenName(LastName(path));
  if (!S_ISREG(facts.st_mode) || (hiddenName && !wanted.hidden)) {
    return EACCES;
  }
  const bool readOnly = (facts.st_mode & S_IWUSR) == 0;
  if (readOnly != wanted.readOnly) {
    const int failure = SetReadOnlyMode(path, facts.st_mode, wanted.readOnly);
    if (failure != 0) {
      return failure;
    }
  }
  bool hidden = hiddenName;
  if (!hiddenName) {
    ReadHiddenMark(path, hidden);
  }
  return hidden == wanted.hidden ? 0 : SetHiddenMark(path, wanted.hidden);
}

}  // namespace

bool SPosixFileServices::Attributes(const char* path, FileAttributes& attributes,
                                    SystemError& error) {
  struct stat facts;
  bool link;
  error = OnPath(path, [&](const char* p) { return LookAt(p, facts, link); });
  if (error != SystemError::kNone) {
    return false;
  }
  attributes.folder = S_ISDIR(facts.st_mode);
  attributes.hidden = IsHiddenName(LastName(path));
  attributes.readOnly = (facts.st_mode & S_IWUSR) == 0;
  attributes.link = link;
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
