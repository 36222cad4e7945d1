#!/bin/sh
# The store on a real network file system: a GlusterFS volume of this machine, two mounts of it, and on both
# of them processes that change one school at random while one of them is killed each second
# (random_school.py judges). First with the mount options that everybody has, then with cautious ones.
#
#   tests/network/run.sh [--seconds N] [--seed N] [BIN]
#
# N seconds in all, 60 unless told; BIN has kivadmin and kivreport, build/release/bin unless told. Besides
# `kivadmin check --through` tries each pair of mounts, and has to tell two that share no locks.
# Everything runs in namespaces of its own: the volume's daemons, their port, the mounts and the line in
# the hosts file are seen by nobody else and end with the script, however that ends.
#
# Exit codes: 0 nothing was lost, 1 something was, 77 this machine cannot do it, and why is said.
set -eu
cd "$(dirname "$0")/../.."
. scripts/common.sh

cannot() {
  echo "the network run is left out: $1"
  exit 77
}

# As process 1 of its namespaces, so that all others end with it.
lay_volume() {
  mkdir "$work/brick" "$work/lib" "$work/log"
  printf '127.0.0.1 localhost\n192.0.2.77 %s\n' "$(hostname)" >"$work/hosts"
  mount --bind "$work/hosts" /etc/hosts
  mount --bind "$work/lib" /var/lib/glusterd
  mount --bind "$work/log" /var/log/glusterfs
  mount -t tmpfs tmpfs /run
  mkdir /run/gluster
  ip link set lo up
  ip addr add 192.0.2.77/32 dev lo
  timeout 60 glusterd
  timeout 60 gluster --mode=script volume create store "$(hostname):$work/brick" force
  timeout 60 gluster --mode=script volume start store
}

# mount_twice NAME [OPTION ...]: at $work/NAME-a and $work/NAME-b.
mount_twice() {
  for side in a b; do
    mkdir "$work/$1-$side"
    timeout 60 mount -t glusterfs ${2:+-o "$2"} "$(hostname):/store" "$work/$1-$side"
  done
}

# judge NAME: in folders of what is mounted at NAME-a and NAME-b.
judge() {
  status=0
  mkdir "$work/$1-a/$1" "$work/$1-a/$1-tried"
  "$bin/kivadmin" init "$work/$1-a/$1-tried" >/dev/null
  "$bin/kivadmin" check "$work/$1-a/$1-tried" --through "$work/$1-b/$1-tried" || status=1
  timeout $((seconds + 300)) python3 tests/network/random_school.py "$bin" \
    --seconds $((seconds / 2)) ${seed:+--seed "$seed"} "$work/$1-a/$1" "$work/$1-b/$1" &
  wait $! || status=1
  return "$status"
}

# Two mounts that share no locks, one of which is sshfs, whose server needs no network.
tell_unshared_locks() {
  mkdir "$work/none" "$work/none-a" "$work/none-b"
  "$bin/kivadmin" init "$work/none" >/dev/null
  bindfs "$work/none" "$work/none-a"
  printf '#!/bin/sh\nexec /usr/lib/openssh/sftp-server\n' >"$work/server"
  chmod +x "$work/server"
  sshfs -o ssh_command="$work/server" "here:$work/none" "$work/none-b"
  ! "$bin/kivadmin" check "$work/none-a" --through "$work/none-b" &&
    "$bin/kivadmin" check "$work/none-b" 2>&1 | grep -F 'sshfs shares no locks'
}

# The daemons end first: they tidy up in the brick and would put files into what is being removed. What the
# run found out stands, whatever becomes of its folder.
# shellcheck disable=SC2317  # the trap calls it
clean_up() {
  umount -l "$work"/*-[ab] 2>/dev/null || true
  kill -KILL -1 2>/dev/null || true
  rm -rf --one-file-system "$work" || { sleep 1 && rm -rf --one-file-system "$work"; } || true
}

inside() {
  work=$(mktemp -d /tmp/kivstore-network.XXXXXX)
  trap clean_up EXIT
  trap 'exit 1' HUP INT TERM
  lay_volume >"$work/laid" 2>&1 || {
    cat "$work/laid"
    cannot "GlusterFS does not start"
  }
  mount_twice default "" || cannot "FUSE cannot be mounted"
  failed=0
  echo "-- two mounts with default options"
  judge default || failed=1
  gluster --mode=script volume set store performance.quick-read off >/dev/null
  mount_twice cautious direct-io-mode=enable,attribute-timeout=0,entry-timeout=0
  echo "-- two mounts with cautious options"
  judge cautious || failed=1
  echo "-- two mounts that share no locks, which has to be found out"
  tell_unshared_locks || failed=1
  exit "$failed"
}

seconds=60 seed='' bin=build/release/bin is_inside=''
while [ $# -gt 0 ]; do
  case $1 in
    --seconds) seconds=$2 && shift ;;
    --seed) seed=$2 && shift ;;
    --inside) is_inside=yes ;;
    *) bin=$1 ;;
  esac
  shift
done
[ -z "$is_inside" ] || inside

[ "$(id -u)" = 0 ] || cannot "it takes the superuser"
[ -c /dev/fuse ] || modprobe fuse 2>/dev/null || cannot "there is no /dev/fuse"
need unshare util-linux ip iproute2 python3 python3 glusterd glusterfs-server bindfs bindfs \
     sshfs sshfs /usr/lib/openssh/sftp-server openssh-sftp-server
namespaces="--mount --net --pid --ipc --fork --mount-proc --kill-child=TERM"
# shellcheck disable=SC2086
unshare $namespaces true 2>/dev/null || cannot "no namespaces of its own are to be had"

# Should this script be killed, so is unshare, whose death ends process 1.
# shellcheck disable=SC2086
setpriv --pdeathsig KILL unshare $namespaces \
  "$0" --inside --seconds "$seconds" ${seed:+--seed "$seed"} "$bin" &
child=$!
trap 'kill -KILL "$child" 2>/dev/null; exit 1' HUP INT TERM
status=0
wait "$child" || status=$?
exit "$status"
