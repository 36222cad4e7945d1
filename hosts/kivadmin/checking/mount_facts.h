// What this machine knows of the file system that a store lies on, and what it means for a store
// that other machines work on too.
#pragma once

#include <optional>
#include <string>

namespace kivadmin {

struct MountFacts {
  std::string place;  // where it is mounted
  std::string type;   // "ext4", "nfs4", "cifs", "fuse.glusterfs"
  // The options of the mount and of its file system, with a comma before and behind each.
  std::string options;

  bool Has(const std::string& option) const {
    return options.find(',' + option + ',') != std::string::npos;
  }
};

// Of the file system that the folder lies on; nothing where the system does not tell (Windows).
std::optional<MountFacts> MountOf(const std::string& folder);

// Why a lock that is taken through it is known not to be seen by other machines, and what to
// change; empty where that is not known.
std::string LocksNotShared(const MountFacts& mount);
// How to mount such a file system so that nothing old is read; empty where that is not known.
std::string HowToReadFresh(const MountFacts& mount);

}  // namespace kivadmin
