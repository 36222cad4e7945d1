#!/bin/sh
# What a store costs that is far away: the questions that a file server gets, and how long it takes when each answer
# is 0.3 and 1 ms away. The server is a FUSE mirror of this machine (mirror.cpp), with the names and attributes kept by
# the client for a second, as mounts do, and once with nothing kept (strict). Installs what it needs.
#
#   bench/far.sh [--all]        --all: with a report of 20,000 students too, some minutes more
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh
need_build_tools
need_host_libraries
need_test_tools
need /usr/include/fuse3/fuse.h libfuse3-dev fusermount3 fuse3 pkg-config pkg-config \
     /usr/include/benchmark/benchmark.h libbenchmark-dev
build_options=-DKIVSTORE_BENCH=ON
build release mirror repeat_call lay_bench_stores kivadmin kivreport
bin=$PWD/build/release/bin
work=$(mktemp -d)
trap 'end_mount; rm -rf "$work"' EXIT
mkdir "$work/far" "$work/near"

end_mount() { fusermount3 -u "$work/far" 2>/dev/null || true; }

# mount_far MICROSECONDS [strict]
mount_far() {
  end_mount
  "$bin/mirror" "$work/near" "$work/counts" "$1" "$work/far" ${2:+"$2"} 2>/dev/null &
  mirror=$!
  until mountpoint -q "$work/far"; do sleep 0.1; done
}

# asked: how many questions came since it was last called.
asked() {
  rm -f "$work/counts"
  kill -USR1 "$mirror"
  until [ -s "$work/counts" ]; do sleep 0.05; done
  sed -n 's/^all //p' "$work/counts"
}

seconds() { awk -v from="$1" -v to="$(date +%s.%N)" 'BEGIN { printf "%.2f", to - from }'; }

# run NAME COMMAND ...: its questions, and its seconds at both distances.
run() {
  name=$1
  shift
  mount_far 0 strict
  prepare
  asked >/dev/null
  "$@" >/dev/null
  strict=$(asked)
  mount_far 0
  prepare
  asked >/dev/null
  "$@" >/dev/null
  questions=$(asked)
  times=
  for wait in 300 1000; do
    mount_far "$wait"
    prepare
    begun=$(date +%s.%N)
    "$@" >/dev/null
    times="$times $(seconds "$begun")"
  done
  # shellcheck disable=SC2086
  printf '%-32s %9s questions (%s strict) %8s s at 0.3 ms %8s s at 1 ms\n' "$name" "$questions" "$strict" $times
}

prepare() { :; }

"$bin/lay_bench_stores" "$work/near/one" 1 1 30
"$bin/repeat_call" "$work/near/one" 6 1 >/dev/null
run "ten commands 6, a class of 30" "$bin/repeat_call" "$work/far/one" 6 10

report() {
  "$bin/lay_bench_stores" "$work/near/$1" "$2" 8 "$3"
  "$bin/kivreport" "$work/near/$1" --format csv >/dev/null
  run "a report of $1 students" "$bin/kivreport" "$work/far/$1" --format csv
}
report 240 1 30
report 2000 10 25
[ "${1:-}" != --all ] || report 20000 100 25

awk 'BEGIN {
  print "teacher,class,first_name,last_name"
  for (i = 0; i < 2000; ++i) printf "T%d Hill,Room %d,Stu%d,Leewood\n", i / 200, i / 25 % 8, i
}' >"$work/in.csv"
prepare() {
  rm -rf "$work/near/new"
  "$bin/kivadmin" init "$work/near/new" --kind teachers >/dev/null
}
run "an import of 2,000 students" "$bin/kivadmin" import "$work/far/new" "$work/in.csv"
