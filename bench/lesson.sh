#!/bin/sh
# The start of a lesson: 30 hosts that all list their class and load options at once, 200 in eight classes, and the same
# within ten seconds. How long the last one takes and waits at its locks, on this machine's disk and where each answer of a
# file server is 0.3 and 1 ms away (mirror.cpp). Installs what it needs.
#
#   bench/lesson.sh [HOSTS ...]     30 and 200 unless told
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh
need_build_tools
need_host_libraries
need_test_tools
need /usr/include/fuse3/fuse.h libfuse3-dev fusermount3 fuse3 pkg-config pkg-config \
     /usr/include/benchmark/benchmark.h libbenchmark-dev
build_options=-DKIVSTORE_BENCH=ON
build release mirror lesson lay_bench_stores
bin=$PWD/build/release/bin
work=$(mktemp -d)
end_mount() { fusermount3 -u "$work/far" 2>/dev/null || true; }
trap 'end_mount; rm -rf "$work"' EXIT
mkdir "$work/far" "$work/near"
"$bin/lay_bench_stores" "$work/near/school" 1 8 30
[ $# -gt 0 ] || set -- 30 200

lessons() {
  where=$1
  shift
  for hosts in "$@"; do
    for within in 0 10; do "$bin/lesson" "$work/$where/school" "$hosts" "$within"; done
  done
}

echo "$(cut -d" " -f1 /proc/loadavg) processes are at work on $(nproc) processors besides"
echo "-- on the disk"
lessons near "$@"
for wait in 300 1000; do
  "$bin/mirror" "$work/near" "$work/counts" "$wait" "$work/far" 2>/dev/null &
  until mountpoint -q "$work/far"; do sleep 0.1; done
  echo "-- a server $wait microseconds away"
  lessons far "$@"
  end_mount
done
