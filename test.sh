#!/bin/sh
# Builds and runs all tests, installing what is missing, and says at the end how many passed.
#
#   ./test.sh [PRESET]     release (the default), debug, asan, linux32,
#                          windows64: under Wine, and compared with the Linux library
set -eu
cd "$(dirname "$0")"
. scripts/common.sh

preset=${1:-release}
need_build_tools
need_test_tools
case $preset in
  asan)
    need clang++-14 clang-14 /usr/share/doc/libclang-rt-14-dev libclang-rt-14-dev
    need_host_libraries
    ;;
  linux32) need /usr/share/doc/g++-multilib g++-multilib ;;
  windows64)
    need_windows_tools
    need_wine
    ;;
  *)
    need_host_libraries
    need_page_tools
    need_man_tools
    need_mono
    need_database
    ;;
esac
echo "building $preset"
build "$preset"
# Its server has ended while that was built, and several tests that start it at once may wait for minutes.
[ "$preset" != windows64 ] || need_wine

status=0
ctest --preset "$preset" -j $(($(nproc) + 1)) || status=$?

# The cases of each test program, from what all of them printed; a program that ended before it told
# of its cases failed, and a test that is no such program is a case of its own.
awk -v preset="$preset" '
  /^[0-9]+\/[0-9]+ Testing: / { ok = bad = left = 0 }
  /^\[  PASSED  \] / { ok = $4 }
  /^\[  FAILED  \] [0-9]+ test/ { bad = $4 }
  /^\[  SKIPPED \] [0-9]+ test/ { left = $4 }
  /^Test Passed\./ { passed += ok + left > 0 ? ok : 1; skipped += left }
  /^Test Failed\./ { passed += ok; failed += bad > 0 ? bad : 1; skipped += left }
  END { printf "%s: %d passed, %d failed, %d skipped\n", preset, passed, failed, skipped }
' "build/$preset/Testing/Temporary/LastTest.log"
[ "$status" = 0 ] || exit "$status"

if [ "$preset" = windows64 ]; then
  need_host_libraries
  build release play_calls lay_parity_stores
  tests/parity/run.sh build/release build/windows64 "$wine"
fi
