#!/bin/sh
# What a host's questions cost beside the floor of what their answers need. One command 6 (a student's progress) in
# classes of 10, 100 and 1,000 students of a networked store: system calls (strace) and instructions, these stepped
# through (count_steps.cpp) and, for who wants to see where they go, under callgrind. Then the cached chain over a school
# and the same written out by hand (floor_walk.cpp). A figure from repeat_call is the difference between two runs of
# different length, so loading the program does not count.
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh
need_build_tools
need_host_libraries
need_test_tools
need valgrind valgrind /usr/include/benchmark/benchmark.h libbenchmark-dev
cmake --preset release -G Ninja -DKIVSTORE_BENCH=ON >/dev/null
cmake --build --preset release -j "$(nproc)" --target repeat_call count_steps lay_bench_stores bench_store >/dev/null

bin=build/release/bin
stores=build/bench-stores
rm -rf "$stores"
"$bin/lay_bench_stores" "$stores"

# A program that asks nothing twice: three lists, three options files and a game.
floor=49

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
  echo "class of $size: $(((many - few) / 10)) system calls, floor $floor" \
    "($((first - none)) for the first command of a process)," \
    "$("$bin/count_steps" "$stores/$store" 6) instructions" \
    "($(((manyRounds - fewRounds) / 5)) under callgrind, which has no openat2)"
done
"$bin/bench_store" --benchmark_filter=cached_chain_school --benchmark_repetitions=5 \
  --benchmark_report_aggregates_only=true 2>/dev/null | grep median
