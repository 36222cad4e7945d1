#!/bin/sh
# Counts what one command 6 (a student's progress) costs in classes of 10, 100 and 1,000 students of a
# networked store: system calls (strace) and instructions (callgrind). Each figure is the difference
# between two runs of different length, so loading the program does not count.
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh
need_build_tools
need_host_libraries
need_test_tools
need valgrind valgrind /usr/include/benchmark/benchmark.h libbenchmark-dev
cmake --preset release -G Ninja -DKIVSTORE_BENCH=ON >/dev/null
cmake --build --preset release -j "$(nproc)" --target repeat_call lay_bench_stores >/dev/null

bin=build/release/bin
stores=build/bench-stores
rm -rf "$stores"
"$bin/lay_bench_stores" "$stores"

# calls STORE TIMES
calls() {
  strace -f -o "$stores/strace" "$bin/repeat_call" "$stores/$1" 6 "$2" >/dev/null
  grep -c '(' "$stores/strace"
}
# instructions STORE TIMES
instructions() {
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$bin/repeat_call" "$stores/$1" 6 "$2" \
    2>&1 >/dev/null | sed -n 's/.*Collected : //p'
}
for size in 10 100 1000; do
  store=class-of-$size
  # The first run leaves the store in order.
  "$bin/repeat_call" "$stores/$store" 6 1 >/dev/null
  none=$(calls "$store" 0) first=$(calls "$store" 1) few=$(calls "$store" 2) many=$(calls "$store" 12)
  fewRounds=$(instructions "$store" 2) manyRounds=$(instructions "$store" 7)
  echo "class of $size: $(((many - few) / 10)) system calls" \
    "($((first - none)) for the first command of a process)," \
    "$(((manyRounds - fewRounds) / 5)) instructions"
done
