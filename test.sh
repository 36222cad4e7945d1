#!/bin/sh
# Builds and runs all tests, installing what is missing, and says at the end how many passed.
#
#   ./test.sh [PRESET]     release (the default), debug, asan, linux32
set -eu
cd "$(dirname "$0")"
. scripts/common.sh

preset=${1:-release}
need_build_tools
need_test_tools
case $preset in
  linux32) need /usr/share/doc/g++-multilib g++-multilib ;;
  *) need_host_libraries ;;
esac
echo "building $preset"
build "$preset"

logs="build/$preset/test-logs"
rm -rf "$logs"
mkdir -p "$logs"
export UBSAN_OPTIONS=print_stacktrace=1

passed=0 failed=0 skipped=0
count() { sed -n "s/^\[  $1  \] \([0-9]*\) test.*/\1/p" "$2" | tail -n 1; }
for program in build/"$preset"/bin/test_*; do
  [ -x "$program" ] || continue
  name=$(basename "$program")
  log="$logs/$name.log"
  status=0
  "$program" --gtest_color=no >"$log" 2>&1 || status=$?
  ok=$(count PASSED "$log") bad=$(count FAILED "$log") left=$(count SKIPPED "$log")
  if [ "$status" != 0 ] && [ -z "$bad" ]; then bad=1; fi
  echo "$name: ${ok:-0} passed${bad:+, $bad FAILED}${left:+, $left skipped}"
  if [ "$status" != 0 ]; then grep -vE '^\[( RUN      |       OK )' "$log" | tail -n 60; fi
  passed=$((passed + ${ok:-0})) failed=$((failed + ${bad:-0})) skipped=$((skipped + ${left:-0}))
done
echo "$preset: $passed passed, $failed failed, $skipped skipped"
[ "$failed" = 0 ] && [ "$passed" -gt 0 ]
