#!/bin/sh
# The store on a share that other Linux machines have mounted: machines of their own (QEMU, without special hardware),
# on which Debian's kernel runs with its clients for SMB (cifs) and NFS 4. Samba here serves the stanza of
# examples/smb.conf, the NFS server is the kernel of a third machine (machines_test.py).
#
#   tests/machines/run.sh [BIN] [TEST ...]
#
# BIN has kivadmin and kivreport, build/release/bin unless told. KIVSTORE_SECONDS is how long a school is
# worked on at random on each share, 60 unless told. All of it has namespaces of its own and ends with the script.
#
# Exit codes: 0 all is as it must be, 1 something is not, 77 this machine cannot do it, and why is said.
set -eu
cd "$(dirname "$0")/../.."
. scripts/common.sh

cannot() {
  echo "the run with machines is left out: $1"
  exit 77
}

# The kernel that Debian makes for virtual machines, unpacked and nowhere installed.
fetch_kernel() {
  [ ! -e "$kernel/complete" ] || return 0
  rm -rf "$kernel"
  mkdir -p "$kernel"
  package=$(apt-cache depends linux-image-cloud-amd64 | sed -n 's/.*Depends: \(linux-image-[0-9].*\)/\1/p' | head -n 1)
  (cd "$kernel" && apt-get download -qq -o APT::Sandbox::User=root "$package" && dpkg -x ./*.deb . && rm ./*.deb) ||
    return 1
  touch "$kernel/complete"
}

bin=build/release/bin
[ $# = 0 ] || { bin=$1 && shift; }
kernel=build/machines/kernel

[ "$(id -u)" = 0 ] || cannot "it takes the superuser"
[ "$(dpkg --print-architecture)" = amd64 ] || cannot "it is for amd64"
need qemu-system-x86_64 qemu-system-x86 /usr/share/doc/busybox-static busybox-static \
     /usr/bin/python3.11 python3.11-minimal ldd libc-bin \
     /usr/sbin/smbd samba /usr/lib/python3/dist-packages/samba/samba3 python3-samba \
     smbstatus samba-common-bin smbclient smbclient /sbin/mkfs.ext4 e2fsprogs unshare util-linux ip iproute2 ||
  cannot "there is no QEMU or no Samba"
fetch_kernel || cannot "Debian's kernel is not to be had"
namespaces="--mount --net --pid --ipc --fork --mount-proc --kill-child=KILL"
# shellcheck disable=SC2086
unshare $namespaces true 2>/dev/null || cannot "no namespaces of its own are to be had"

# shellcheck disable=SC2086
exec setpriv --pdeathsig KILL unshare $namespaces \
  /usr/bin/python3 tests/machines/machines_test.py "$bin" "$kernel" "$@"
