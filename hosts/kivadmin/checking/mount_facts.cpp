#include "hosts/kivadmin/checking/mount_facts.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <vector>

namespace kivadmin {
namespace {

// Blanks, tabs, line ends and backslashes of a path stand there as \040 and the like.
std::string Unescape(const std::string& text) {
  std::string plain;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 3 < text.size()) {
      plain +=
          static_cast<char>((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + text[i + 3] - '0');
      i += 3;
    } else {
      plain += text[i];
    }
  }
  return plain;
}

// number parent device root PLACE OPTIONS tags ... - TYPE source MORE-OPTIONS
std::optional<MountFacts> ParseLine(const std::string& line) {
  std::istringstream text(line);
  const std::vector<std::string> words{std::istream_iterator<std::string>(text), {}};
  const auto dash = std::find(words.begin(), words.end(), "-");
  constexpr size_t kPlace = 4;
  if (words.size() <= kPlace + 1 || words.end() - dash < 4) {
    return std::nullopt;
  }
  return MountFacts{Unescape(words[kPlace]), dash[1],
                    ',' + words[kPlace + 1] + ',' + dash[3] + ','};
}

bool IsBelow(const std::string& path, const std::string& place) {
  return place == "/" || path == place || path.starts_with(place + '/');
}

struct Advice {
  const char* types;  // blanks around each
  const char* option;
  const char* text;
};

constexpr Advice kLocksNotShared[] = {
    {" fuse.sshfs ", "", "sshfs shares no locks; use NFS, SMB or GlusterFS"},
    {" fuse.rclone fuse.s3fs fuse.gcsfuse ", "", "it shares no locks; use NFS, SMB or GlusterFS"},
    {" nfs nfs4 ", "nolock", "mount it without nolock"},
    {" nfs nfs4 ", "local_lock=all", "mount it with local_lock=none"},
    {" nfs nfs4 ", "local_lock=posix", "mount it with local_lock=none"},
    {" cifs smb3 ", "nobrl", "mount it without nobrl"},
    {" gfs2 ", "localflocks", "mount it without localflocks"},
};

constexpr Advice kFresh[] = {
    {" fuse.glusterfs ", "",
     "mount it with direct-io-mode=enable,attribute-timeout=0,entry-timeout=0 and set "
     "performance.quick-read off for the volume"},
    {" nfs nfs4 ", "", "mount it with noac,lookupcache=none"},
    {" cifs smb3 ", "", "mount it with cache=none,actimeo=0"},
    {" 9p ", "", "mount it with cache=none"},
};

template <size_t count>
std::string Find(const Advice (&all)[count], const MountFacts& mount) {
  for (const Advice& advice : all) {
    const bool isOfType =
        std::string(advice.types).find(' ' + mount.type + ' ') != std::string::npos;
    if (isOfType && (*advice.option == '\0' || mount.Has(advice.option))) {
      return advice.text;
    }
  }
  return {};
}

}  // namespace

std::optional<MountFacts> MountOf(const std::string& folder) {
  std::error_code error;
  const std::string path = std::filesystem::canonical(folder, error).string();
  std::ifstream mounts("/proc/self/mountinfo");
  std::optional<MountFacts> best;
  for (std::string line; !error && std::getline(mounts, line);) {
    // Of two mounts at one place the later one lies on top.
    const auto mount = ParseLine(line);
    if (mount && IsBelow(path, mount->place) &&
        (!best || mount->place.size() >= best->place.size())) {
      best = mount;
    }
  }
  return best;
}

std::string LocksNotShared(const MountFacts& mount) {
  return Find(kLocksNotShared, mount);
}

std::string HowToReadFresh(const MountFacts& mount) {
  return Find(kFresh, mount);
}

}  // namespace kivadmin
