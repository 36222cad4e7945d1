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
wine=
case $preset in
  linux32) need /usr/share/doc/g++-multilib g++-multilib ;;
  windows64)
    need_windows_tools
    need_wine build/windows64/wine
    ;;
  *) need_host_libraries ;;
esac
echo "building $preset"
build "$preset"

logs="build/$preset/test-logs"
rm -rf "$logs"
mkdir -p "$logs"
export UBSAN_OPTIONS=print_stacktrace=1

# Each program writes NAME.log and, at its end, NAME.status; as many at once as there are processors.
# shellcheck disable=SC2016
find "build/$preset/bin" -name 'test_*' -type f | sort | xargs -P "$(nproc)" -I{} sh -c '
  name=$(basename "$1" .exe) status=0
  $3 "$1" --gtest_color=no >"$2/$name.log" 2>&1 || status=$?
  echo $status >"$2/$name.status"' sh {} "$logs" "$wine"

passed=0 failed=0 skipped=0
count() { sed -n "s/^\[  $1 *\] \([0-9]*\) test.*/\1/p" "$2" | tail -n 1; }
for log in "$logs"/*.log; do
  name=$(basename "$log" .log)
  status=$(cat "$logs/$name.status")
  ok=$(count PASSED "$log") bad=$(count FAILED "$log") left=$(count SKIPPED "$log")
  if [ "$status" != 0 ] && [ -z "$bad" ]; then bad=1; fi
  echo "$name: ${ok:-0} passed${bad:+, $bad FAILED}${left:+, $left skipped}"
  if [ "$status" != 0 ]; then grep -vE '^\[( RUN      |       OK )' "$log" | tail -n 60; fi
  passed=$((passed + ${ok:-0})) failed=$((failed + ${bad:-0})) skipped=$((skipped + ${left:-0}))
done
echo "$preset: $passed passed, $failed failed, $skipped skipped"
[ "$failed" = 0 ] && [ "$passed" -gt 0 ]

if [ "$preset" = windows64 ]; then
  need_host_libraries
  build release play_calls lay_parity_stores
  tests/parity/run.sh build/release build/windows64 "$wine"
fi
