#define _FILE_OFFSET_BITS 64
#include "platform/posix/file_system_kind.h"

#include <sys/vfs.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace kivstore {
namespace {

// As the kernel and the makers of the others give them out.
constexpr uint32_t kWindowsMagics[] = {
    0x0000517B,  // SMB, by the old client
    0xFF534D42,  // CIFS
    0xFE534D42,  // SMB 2 and above
};

constexpr uint32_t kOtherSharedMagics[] = {
    0x00006969,  // NFS
    0x65735546,  // FUSE: sshfs, GlusterFS, virtiofs, ...
    0x00C36400,  // Ceph
    0x01021997,  // 9p
    0x5346414F,  // AFS
    0x6B414653,  // AFS, by the other client
    0x01161970,  // GFS2
    0x7461636F,  // OCFS2
    0x73757245,  // Coda
    0x0000564C,  // NetWare
    0x0BD00BD0,  // Lustre
    0x47504653,  // GPFS
    0x19830326,  // BeeGFS
    0x20030528,  // OrangeFS
    0x786F4256,  // folders that VirtualBox shares
    0xBACBACBC,  // folders that VMware shares
};

template <size_t count>
bool IsOneOf(const uint32_t (&magics)[count], const struct statfs& facts) {
  return std::find(std::begin(magics), std::end(magics), static_cast<uint32_t>(facts.f_type)) !=
         std::end(magics);
}

FileSystemKind KindOf(const struct statfs& facts) {
  if (IsOneOf(kWindowsMagics, facts)) {
    return FileSystemKind::kWindowsShare;
  }
  return IsOneOf(kOtherSharedMagics, facts) ? FileSystemKind::kShared : FileSystemKind::kLocal;
}

}  // namespace

FileSystemKind KindOfFileSystem(int descriptor) {
  struct statfs facts;
  return fstatfs(descriptor, &facts) == 0 ? KindOf(facts) : FileSystemKind::kLocal;
}

FileSystemKind KindOfFileSystem(const char* path) {
  struct statfs facts;
  return statfs(path, &facts) == 0 ? KindOf(facts) : FileSystemKind::kLocal;
}

}  // namespace kivstore
