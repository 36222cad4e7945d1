#!/bin/sh
# Samba as schools have it: smbd serves the stanza of examples/smb.conf, clients take files through it, and the programs
# work beside them on its disk (samba_test.py).
#
#   tests/samba/run.sh [BIN] [TEST ...]
#
# BIN has kivadmin, kivreport and hold_file, build/release/bin unless told. smbd has namespaces of its own: its port is
# seen by nobody else, and it ends with the script, however that ends.
#
# Exit codes: 0 all is as it must be, 1 something is not, 77 this machine cannot do it, and why is said.
set -eu
cd "$(dirname "$0")/../.."
. scripts/common.sh

cannot() {
  echo "the run with Samba is left out: $1"
  exit 77
}

bin=build/release/bin
[ $# = 0 ] || { bin=$1 && shift; }

[ "$(id -u)" = 0 ] || cannot "it takes the superuser"
# samba-common-bin brings smbpasswd and smbstatus.
need /usr/sbin/smbd samba /usr/lib/python3/dist-packages/samba/samba3 python3-samba \
     smbstatus samba-common-bin smbclient smbclient unshare util-linux ip iproute2 || cannot "there is no Samba"
namespaces="--mount --net --pid --ipc --fork --mount-proc --kill-child=KILL"
# shellcheck disable=SC2086
unshare $namespaces true 2>/dev/null || cannot "no namespaces of its own are to be had"

# The Python that Debian's modules are for. Should this script be killed, so is unshare.
# shellcheck disable=SC2086
exec setpriv --pdeathsig KILL unshare $namespaces \
  /usr/bin/python3 tests/samba/samba_test.py "$bin" "$@"
