#define _FILE_OFFSET_BITS 64
#include "platform/posix/data_root.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "platform/base/bytes.h"
#include "platform/base/never_destroyed.h"
#include "platform/posix/file_system_kind.h"
#include "platform/posix/posix_path.h"

namespace kivstore {
namespace {

constinit NeverDestroyed<DataRoot> gDataRoot;

// The file systems that this process has met. A store lies on one or two.
class KnownFileSystems {
 public:
  FileSystemKind KindOf(dev_t fileSystem, const char* path) {
    for (unsigned i = 0; i < std::min(count, kRoom); ++i) {
      if (known[i].fileSystem == fileSystem) {
        return known[i].kind;
      }
    }
    const FileSystemKind kind = KindOfFileSystem(path);
    known[count++ % kRoom] = {fileSystem, kind};
    return kind;
  }

 private:
  struct Known {
    dev_t fileSystem;
    FileSystemKind kind;
  };
  static constexpr unsigned kRoom = 8;

  Known known[kRoom] = {};
  unsigned count = 0;
};

constinit KnownFileSystems gKnownFileSystems;

}  // namespace

DataRoot& KeptDataRoot() {
  return gDataRoot.object;
}

void DataRoot::Keep(const char* path) {
  folder.Reset(-1);
  hasMet = isShared = isSpelledRight = false;
  kind = FileSystemKind::kLocal;
  const PosixPath posix(path);
  length = 0;
  if (posix.Check() != SystemError::kNone || posix.View().size() + 2 > sizeof text) {
    return;
  }
  length = static_cast<int>(posix.View().copy(text, sizeof text));
  if (text[length - 1] != '/') {
    text[length++] = '/';
  }
  text[length] = '\0';
}

const char* DataRoot::WayTo(const char* path) {
  const size_t prefix = static_cast<size_t>(length);
  const bool isBelow = prefix != 0 && EqualBytesNoCase({path, strnlen(path, prefix)}, View()) &&
                       path[prefix] != '\0' &&
                       (std::memcmp(path, text, prefix) == 0 || IsSpelledBy(path));
  return isBelow ? path + prefix : nullptr;
}

// Whether a path that begins like the root in other letters means it.
bool DataRoot::IsSpelledBy(const char* path) {
  struct stat root, other;
  const std::string spelled(path, static_cast<size_t>(length));
  if (Open() != 0 || stat(spelled.c_str(), &other) != 0 || fstat(Get(), &root) != 0) {
    return true;
  }
  return root.st_dev == other.st_dev && root.st_ino == other.st_ino;
}

int DataRoot::Open() {
  if (folder.IsOpen()) {
    return 0;
  }
  PosixPath path(text);
  int failure = OpenAs(path.Text());
  if (failure == ENOENT && path.MatchNames() == SystemError::kNone) {
    failure = OpenAs(path.Text());
  }
  return failure;
}

int DataRoot::OpenAs(const char* path) {
  folder.Reset(open(path, O_PATH | O_DIRECTORY | O_CLOEXEC));
  return folder.IsOpen() ? 0 : errno;
}

void DataRoot::Meet(dev_t fileSystem, const char* path) {
  if ((hasMet && fileSystem == met) || WayTo(path) == nullptr) {
    return;
  }
  Take(fileSystem, path);
}

void DataRoot::Take(dev_t fileSystem, const char* path) {
  met = fileSystem;
  hasMet = true;
  kind = gKnownFileSystems.KindOf(fileSystem, path);
  isShared |= kind != FileSystemKind::kLocal;
}

void DataRoot::MeetItself() {
  struct stat facts;
  if (!hasMet && length != 0 && Open() == 0 && fstat(Get(), &facts) == 0) {
    Take(facts.st_dev, text);
  }
}

bool DataRoot::IsShared() {
  MeetItself();
  return isShared;
}

bool DataRoot::IsWindowsShare() {
  MeetItself();
  return kind == FileSystemKind::kWindowsShare;
}

}  // namespace kivstore
