// Who may change a file system besides this machine.
#pragma once

namespace kivstore {

enum class FileSystemKind {
  kLocal,         // ext4, XFS, Btrfs, ZFS, F2FS, tmpfs, overlayfs, ...: this machine alone
  kWindowsShare,  // SMB, and with it the manners of Windows: no folder is renamed below which
                  // anybody has a file open, and whoever looks at a file meets those who have it
  kShared,  // NFS, FUSE, Ceph, 9p, AFS, GFS2, OCFS2, ...: on it and on a share of Windows other
            // machines work too, so that what is cached here may be old
};

// One call. What the system does not tell, and a kind that nobody here knows, is local. FUSE counts
// as shared whatever stands behind it.
FileSystemKind KindOfFileSystem(int descriptor);
FileSystemKind KindOfFileSystem(const char* path);

}  // namespace kivstore
