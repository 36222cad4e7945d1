// Who may change a file system besides this machine.
#pragma once

namespace kivstore {

enum class FileSystemKind {
  kLocal,   // ext4, XFS, Btrfs, ZFS, F2FS, tmpfs, overlayfs, ...: this machine alone
  kShared,  // NFS, SMB, FUSE, Ceph, 9p, AFS, GFS2, OCFS2, ...: other machines too, so that what is
            // cached here may be old
};

// One call. What the system does not tell, and a kind that nobody here knows, is local. FUSE counts
// as shared whatever stands behind it.
FileSystemKind KindOfFileSystem(int descriptor);
FileSystemKind KindOfFileSystem(const char* path);

}  // namespace kivstore
