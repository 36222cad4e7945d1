#!/bin/sh
# Gives the readers of the store's files any bytes, under AddressSanitizer and
# UndefinedBehaviorSanitizer, installing what is missing. Fails on any finding and says where the
# input is that led to it.
#
#   scripts/fuzz.sh [SECONDS] [TARGET ...]     20 seconds for each of: format pref store
#
# Begins with the inputs in tests/fuzz/corpus; what is found to lead somewhere new is kept in
# build/fuzz/corpus for the next run.
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh

all_targets="format pref store"
usage() {
  echo "usage: scripts/fuzz.sh [SECONDS] [TARGET ...]; targets: $all_targets" >&2
  exit 2
}

seconds=20
case ${1:-} in
  '') ;;
  *[!0-9]*) ;;
  *)
    seconds=$1
    shift
    ;;
esac
[ "$seconds" -gt 0 ] || usage
targets=${*:-$all_targets}
for target in $targets; do
  case " $all_targets " in
    *" $target "*) ;;
    *) usage ;;
  esac
done

need_build_tools
need clang++-14 clang-14 /usr/share/doc/libclang-rt-14-dev libclang-rt-14-dev
echo "building fuzz"
build fuzz

folder=build/fuzz
findings=$folder/findings
logs=$folder/fuzz-logs
mkdir -p "$findings" "$logs"
export UBSAN_OPTIONS=print_stacktrace=1

# Long enough for every format's own size, short enough to be fast.
longest_input() {
  case $1 in
    pref) echo 2048 ;;
    store) echo 12288 ;;
    *) echo 8192 ;;
  esac
}

run_target() {
  corpus=$folder/corpus/$1
  log=$logs/$1.log
  mkdir -p "$corpus"
  status=0
  "$folder/bin/fuzz_$1" -max_total_time="$seconds" -max_len="$(longest_input "$1")" -timeout=10 \
    -rss_limit_mb=2048 -malloc_limit_mb=256 -print_final_stats=1 \
    -artifact_prefix="$findings/$1-" "$corpus" "tests/fuzz/corpus/$1" >"$log" 2>&1 || status=$?
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  covered=$(sed -n 's/.* cov: \([0-9]*\) .*/\1/p' "$log" | tail -n 1)
  if [ "$status" = 0 ]; then
    echo "$1: ${runs:-0} executions, ${covered:-0} places covered, no finding"
    return 0
  fi
  rule=$(grep -aE '^broken rule|runtime error:|^SUMMARY|ERROR: libFuzzer' "$log" | head -n 1)
  input=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)
  echo "$1: FINDING: $rule"
  echo "  input: ${input:-none}   log: $log   again: $folder/bin/fuzz_$1 ${input:-}"
  return 1
}

# Two at a time, each writing its line when it is done.
failed=$logs/failed
rm -f "$failed"
running=0
for target in $targets; do
  { run_target "$target" || echo "$target" >>"$failed"; } &
  running=$((running + 1))
  if [ "$running" = 2 ]; then
    wait
    running=0
  fi
done
wait
if [ -e "$failed" ]; then
  echo "fuzz: findings in $(tr '\n' ' ' <"$failed")" >&2
  exit 1
fi
echo "fuzz: no findings in $seconds seconds for each target"
