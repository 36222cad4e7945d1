#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>

#include "hosts/kivadmin/checking/group_rights.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/dos_mark.h"

namespace kivadmin {
namespace {

using kivstore::Descriptor;

constexpr int kMostDepth = 16;  // deeper than any store
constexpr mode_t kFolderRights = S_ISGID | S_IRWXG;

struct Entry {
  int handle;  // of O_PATH: nobody who has the file open is disturbed
  std::string path;
  struct stat facts;

  bool IsFolder() const { return S_ISDIR(facts.st_mode); }
};

using Visit = std::function<void(const Entry&)>;

// What the group is to have: what the owner has.
mode_t RightsWanted(const Entry& entry) {
  return entry.IsFolder() ? kFolderRights : (entry.facts.st_mode & (S_IRUSR | S_IWUSR)) >> 3;
}

// Where a link leads that the store's programs follow too; empty for a stranger's.
std::string TargetOf(const Entry& link) {
  const bool isTrusted = link.facts.st_uid == 0 || link.facts.st_uid == geteuid();
  char target[4096];
  const ssize_t length = isTrusted ? readlinkat(link.handle, "", target, sizeof target) : -1;
  return length > 0 ? std::string(target, static_cast<size_t>(length)) : "";
}

// Folders and plain files. A folder comes before what is in it.
void Walk(int base, const std::string& name, const std::string& path, const Visit& visit,
          int depth) {
  const Descriptor handle(openat(base, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  Entry entry{handle.Get(), path, {}};
  if (!handle.IsOpen() || fstat(handle.Get(), &entry.facts) != 0) {
    return;
  }
  if (S_ISLNK(entry.facts.st_mode) && depth > 0) {
    if (const std::string target = TargetOf(entry); !target.empty()) {
      Walk(base, target, path, visit, depth - 1);
    }
  }
  if (!entry.IsFolder() && !S_ISREG(entry.facts.st_mode)) {
    return;
  }
  visit(entry);
  if (!entry.IsFolder() || depth == 0) {
    return;
  }
  std::error_code error;
  const std::string inside = "/proc/self/fd/" + std::to_string(handle.Get());
  for (std::filesystem::directory_iterator each(inside, error), end; !error && each != end;
       each.increment(error)) {
    const std::string child = each->path().filename();
    Walk(handle.Get(), child, path + '/' + child, visit, depth - 1);
  }
}

void WalkStore(const StoreParts& store, const Visit& visit) {
  // The root may be a link, and what else lies in it is not the store's.
  Walk(AT_FDCWD, store.root + "/.", store.root, visit, 0);
  const Descriptor root(open(store.root.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  for (const std::string& name : store.names) {
    Walk(root.Get(), name, store.root + '/' + name, visit, kMostDepth);
  }
}

constexpr int kKeepsNoRights = -1;  // the file system, though it takes them

// 0, the system's error or the above. A file of several names may be somebody's elsewhere.
int Give(const Entry& entry, gid_t group) {
  if (!entry.IsFolder() && entry.facts.st_nlink > 1) {
    return EMLINK;
  }
  const mode_t owners = entry.IsFolder() ? S_IRWXU : S_IRUSR | S_IWUSR;
  const mode_t mode = (entry.facts.st_mode & owners) | RightsWanted(entry);
  const std::string place = "/proc/self/fd/" + std::to_string(entry.handle);
  if (entry.facts.st_gid != group && chown(place.c_str(), static_cast<uid_t>(-1), group) != 0) {
    return errno;
  }
  const auto isGiven = [&](const struct stat& facts) {
    return facts.st_gid == group && (facts.st_mode & 07777) == mode;
  };
  if (isGiven(entry.facts)) {
    return 0;
  }
  struct stat now;
  if (chmod(place.c_str(), mode) != 0 || fstat(entry.handle, &now) != 0) {
    return errno;
  }
  return isGiven(now) ? 0 : kKeepsNoRights;
}

std::string ReasonOf(int failure) {
  switch (failure) {
    case EMLINK:
      return ": it has other names (links), which would change with it";
    case EPERM:
      return ": only its owner, a member of the group, or root can do that";
    case kKeepsNoRights:
      return ": the file system keeps no such rights here; if it is a share, do it on its server";
    default:
      return std::string(": ") + std::strerror(failure);
  }
}

void Mark(const Entry& entry) {
  const Descriptor folder(openat(entry.handle, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.IsOpen()) {
    kivstore::MarkFolder(folder.Get());
  }
}

std::string Quoted(const std::string& path) {
  std::string text = "'";
  for (const char c : path) {
    text += c == '\'' ? "'\\''" : std::string(1, c);
  }
  return text + '\'';
}

std::string NameOfGroup(gid_t number) {
  const group* const found = getgrgid(number);
  return found != nullptr ? found->gr_name : std::to_string(number);
}

// Empty where all is as it should be.
std::string TroubleOf(const Entry& entry, gid_t group) {
  const std::string name = NameOfGroup(group);
  const mode_t lacking = RightsWanted(entry) & ~entry.facts.st_mode;
  const std::string mode =
      std::string("chmod g+") + (entry.IsFolder() ? "rwxs " : "rw ") + Quoted(entry.path);
  if (entry.facts.st_gid != group) {
    return "belongs to the group \"" + NameOfGroup(entry.facts.st_gid) + "\" and not to \"" + name +
           "\": chgrp " + name + ' ' + Quoted(entry.path) + (lacking != 0 ? " && " + mode : "");
  }
  if ((lacking & S_IRWXG) != 0) {
    return "others of the group \"" + name + "\" cannot " +
           (entry.IsFolder() ? "work in it: " : "open it: ") + mode;
  }
  return lacking == 0 ? ""
                      : "is not set-group, so that what is made in it is not the group \"" + name +
                            "\"'s: chmod g+s " + Quoted(entry.path);
}

// Of the first that is set-group and open to the group.
std::optional<gid_t> GroupOf(const StoreParts& store) {
  for (const std::string& path : {store.root, store.root + '/' + store.names.front()}) {
    struct stat facts;
    if (stat(path.c_str(), &facts) == 0 && (facts.st_mode & kFolderRights) == kFolderRights) {
      return facts.st_gid;
    }
  }
  return std::nullopt;
}

}  // namespace

uint32_t NeedGroup(const std::string& name) {
  const group* const found = getgrnam(name.c_str());
  if (found == nullptr) {
    throw HostError(kWrongUsage,
                    "--group " + name + ": there is no group of that name; groupadd makes one");
  }
  return found->gr_gid;
}

void GiveToGroup(const StoreParts& store, uint32_t group, bool marks) {
  size_t left = 0;
  std::string first;
  WalkStore(store, [&](const Entry& entry) {
    if (const int failure = Give(entry, group); failure != 0 && ++left == 1) {
      first = entry.path + ReasonOf(failure);
    }
    if (marks && entry.IsFolder()) {
      Mark(entry);
    }
  });
  if (left != 0) {
    throw HostError(kNoStore, "unable to give all to the group: " + first +
                                  (left > 1 ? "; and " + std::to_string(left - 1) + " more" : ""));
  }
}

std::vector<RightsTrouble> FindRightsTroubles(const StoreParts& store) {
  constexpr size_t kMost = 10;  // that are told one by one
  const auto group = GroupOf(store);
  std::vector<RightsTrouble> troubles;
  size_t more = 0;
  if (group) {
    WalkStore(store, [&](const Entry& entry) {
      const std::string what = TroubleOf(entry, *group);
      if (!what.empty() && troubles.size() < kMost) {
        troubles.push_back({entry.path, what});
      } else if (!what.empty()) {
        ++more;
      }
    });
  }
  if (more != 0) {
    troubles.push_back({store.root, std::to_string(more) + " more of these: kivadmin init " +
                                        Quoted(store.root) + " --group " + NameOfGroup(*group)});
  }
  return troubles;
}

}  // namespace kivadmin
