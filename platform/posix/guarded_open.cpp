#define _FILE_OFFSET_BITS 64
#include "platform/posix/guarded_open.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

#include "platform/posix/data_root.h"

namespace kivstore {
namespace {

constexpr int kMostLinks = 40;  // as the system has it
constexpr int kToLook = O_PATH | O_NOFOLLOW | O_CLOEXEC;

char gLinkPath[4096] = "";
uid_t gLinkOwner = 0;

int NoteForeignLink(std::string_view path, uid_t owner) {
  path = path.substr(0, sizeof gLinkPath - 1);
  *std::replace_copy(path.begin(), path.end(), gLinkPath, '/', '\\') = '\0';
  gLinkOwner = owner;
  return kForeignLinkFailure;
}

bool IsTrusted(uid_t owner) {
  return owner == 0 || owner == geteuid();
}

int OpenAt(int base, const char* name, int flags, Descriptor& opened, mode_t mode) {
  opened.Reset(openat(base, name, flags, mode));
  return opened.IsOpen() ? 0 : errno;
}

// Through no link at all. O_PATH goes with few other flags.
int OpenThroughNoLink(int base, const char* way, int flags, Descriptor& opened, mode_t mode) {
  static bool isLacking = false;
  if (isLacking) {
    return ENOSYS;
  }
  open_how how{};
  how.flags = static_cast<uint64_t>((flags & O_PATH) != 0 ? flags : flags | O_LARGEFILE);
  how.mode = mode;
  how.resolve = RESOLVE_NO_SYMLINKS;
  opened.Reset(static_cast<int>(syscall(SYS_openat2, base, way, &how, sizeof how)));
  isLacking = !opened.IsOpen() && errno == ENOSYS;
  return opened.IsOpen() ? 0 : errno;
}

// A way from a folder, gone name by name.
class NameWalk {
 public:
  NameWalk(int start, const char* startText, const char* way)
      : folder(start), place(startText), rest(way) {}

  // 0 or the failure. Opens the last name, whatever it is then.
  int Open(int flags, Descriptor& opened, mode_t mode) {
    const int failure = GoToLastName((flags & O_NOFOLLOW) == 0);
    return failure != 0 ? failure
                        : OpenAt(folder, name.empty() ? "." : name.c_str(), flags | O_NOFOLLOW,
                                 opened, mode);
  }

 private:
  int GoToLastName(bool followsLast) {
    while (TakeName()) {
      const bool isLast = rest.empty();
      Descriptor found;
      struct stat facts;
      const int failure = OpenAt(folder, name.c_str(), kToLook, found, 0);
      if (failure != 0 || fstat(found.Get(), &facts) != 0) {
        return isLast && failure == ENOENT ? 0 : failure != 0 ? failure : errno;
      }
      if (S_ISLNK(facts.st_mode) && (!isLast || followsLast)) {
        if (const int refusal = Follow(found, facts.st_uid); refusal != 0) {
          return refusal;
        }
      } else if (isLast) {
        return 0;
      } else {
        Enter(found.Release(), place + name + '/');
      }
    }
    return 0;
  }

  // Leaves no separator in front of the rest. False, with an empty name, if there is none.
  bool TakeName() {
    DropSeparators();
    const size_t end = std::min(rest.find('/'), rest.size());
    name = rest.substr(0, end);
    rest.erase(0, end);
    DropSeparators();
    return !name.empty();
  }

  void DropSeparators() { rest.erase(0, std::min(rest.find_first_not_of('/'), rest.size())); }

  void Enter(int descriptor, std::string text) {
    own.Reset(descriptor);
    folder = descriptor;
    place = std::move(text);
  }

  int Follow(const Descriptor& link, uid_t owner) {
    if (!IsTrusted(owner)) {
      return NoteForeignLink(place + name, owner);
    }
    char target[4096];
    const ssize_t length = readlinkat(link.Get(), "", target, sizeof target);
    if (length < 0 || ++links > kMostLinks) {
      return length < 0 ? errno : ELOOP;
    }
    rest = std::string(target, static_cast<size_t>(length)) + '/' + rest;
    name.clear();
    if (target[0] == '/') {
      Enter(open("/", O_PATH | O_DIRECTORY | O_CLOEXEC), "/");
    }
    return 0;
  }

  int folder;
  Descriptor own;     // the folder, if it is not the one that the walk began in
  std::string place;  // the folder's text
  std::string name;
  std::string rest;
  int links = 0;
};

// The system could not or would not tell whether a link is in the way.
bool IsToBeWalked(int failure) {
  return failure == ELOOP || failure == ENOSYS || failure == EPERM;
}

int OpenBelow(int root, const char* way, int flags, Descriptor& opened, mode_t mode) {
  const int failure = OpenThroughNoLink(root, way, flags, opened, mode);
  return IsToBeWalked(failure)
             ? NameWalk(root, KeptDataRoot().Text(), way).Open(flags, opened, mode)
             : failure;
}

// Most stores have no link above them either: then the root needs no handle. What is not found may
// be so because the root is spelled in other letters, until something has been.
bool OpensWithoutRoot(DataRoot& root, const char* path, int flags, Descriptor& opened, mode_t mode,
                      int& failure) {
  if (root.IsOpen()) {
    return false;
  }
  failure = OpenThroughNoLink(AT_FDCWD, path, flags, opened, mode);
  root.isSpelledRight |= opened.IsOpen();
  return !IsToBeWalked(failure) && (failure != ENOENT || root.isSpelledRight);
}

}  // namespace

int OpenGuarded(const char* path, int flags, Descriptor& opened, mode_t mode) {
  DataRoot& root = KeptDataRoot();
  const char* const way = root.WayTo(path);
  if (way == nullptr) {
    return OpenAt(AT_FDCWD, path, flags | O_CLOEXEC, opened, mode);
  }
  int failure = 0;
  if (OpensWithoutRoot(root, path, flags | O_CLOEXEC, opened, mode, failure)) {
    return failure;
  }
  failure = root.Open();
  return failure != 0 ? failure : OpenBelow(root.Get(), way, flags | O_CLOEXEC, opened, mode);
}

int CheckLink(const char* path, const struct stat& facts) {
  const bool isForeign =
      S_ISLNK(facts.st_mode) && !IsTrusted(facts.st_uid) && KeptDataRoot().WayTo(path) != nullptr;
  return isForeign ? NoteForeignLink(path, facts.st_uid) : 0;
}

int GuardedFolder::Open(const char* path) {
  DataRoot& root = KeptDataRoot();
  const char* const way = root.WayTo(path);
  if (way == nullptr) {
    base = AT_FDCWD;
    name = path;
    return 0;
  }
  std::string above(way);
  above.resize(above.find_last_not_of('/') + 1);
  const size_t start = above.rfind('/') + 1;
  name = above.substr(start);
  above.resize(start);
  int failure = root.Open();
  if (failure == 0 && !above.empty()) {
    constexpr int kToReach = O_PATH | O_DIRECTORY | O_CLOEXEC;
    failure = OpenBelow(root.Get(), above.c_str(), kToReach, folder, 0);
  }
  base = above.empty() ? root.Get() : folder.Get();
  return failure;
}

int GuardedFolder::Look(struct stat& facts) const {
  return fstatat(base, name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
}

int GuardedFolder::MoveTo(const GuardedFolder& place) const {
  const char* const to = place.name.c_str();
  if (renameat2(base, name.c_str(), place.base, to, RENAME_NOREPLACE) == 0) {
    return 0;
  }
  if (errno != EINVAL && errno != ENOSYS) {
    return errno;
  }
  // A file system that knows no such flag.
  struct stat facts;
  if (place.Look(facts) == 0) {
    return EEXIST;
  }
  return renameat(base, name.c_str(), place.base, to) == 0 ? 0 : errno;
}

ForeignLink LastForeignLink() {
  return {gLinkPath, gLinkOwner};
}

}  // namespace kivstore
