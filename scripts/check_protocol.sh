#!/bin/sh
# Checks the model of the protocol between workstations (docs/protocol/) with spin.
#
#   scripts/check_protocol.sh [--rules] [--all]
#
# Without an argument two workstations, one death and three operations on both kinds of system, and each rule taken
# away whose counterexample is found at once. --rules: that and no more. --all: four operations, two deaths, three
# workstations as well; some GB of memory and minutes.
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh
need spin spin gcc gcc

model=$PWD/docs/protocol/protocol.pml
work=$PWD/build/protocol
memory=8000 # MB

# search "DEFINES" OPTIMIZATION: what spin says of the model with them, in $work/log.
search() {
  rm -rf "$work"
  mkdir -p "$work"
  (
    cd "$work"
    # shellcheck disable=SC2086
    spin $1 -a "$model" >generated
    gcc "$2" -w -DSAFETY -DCOLLAPSE -DVECTORSZ=4096 -DMEMLIM="$memory" -o pan pan.c
    ./pan -m20000 -w24 >log
  )
}

told() { grep -o "$1" "$work/log" | tail -n 1; }

# holds DEATHS STATIONS OPERATIONS [SYSTEM]
holds() {
  search "-DDEATHS=$1 -DSTATIONS=$2 -DOPERATIONS=$3 ${4:+-D$4}" -O1
  if ! grep -q 'errors: 0' "$work/log" || grep -qE 'too small|out of memory|not completed' "$work/log"; then
    cat "$work/log" >&2
    echo "the protocol does not hold, or could not be searched to its end: $*" >&2
    echo "the way there: (cd $work && spin -t -p -g -DDEATHS=$1 -DSTATIONS=$2 -DOPERATIONS=$3 ${4:+-D$4} $model)" >&2
    exit 1
  fi
  printf '%s stations, %s deaths, %s operations, %s: holds in %s states, %s MB, %s s\n' "$2" "$1" "$3" \
    "${4:-POSIX}" "$(told '[0-9.e+]* states, stored' | cut -d' ' -f1)" \
    "$(sed -n 's/ *\([0-9.]*\).*total actual memory usage.*/\1/p' "$work/log")" \
    "$(told 'elapsed time [0-9.]*' | cut -d' ' -f3)"
}

# needed RULE DEATHS OPERATIONS: without it a property does not hold.
needed() {
  search "-DWITHOUT_$1 -DDEATHS=$2 -DOPERATIONS=$3" -O0
  if ! grep -q 'errors: 1' "$work/log"; then
    cat "$work/log" >&2
    echo "without $1 the protocol still holds: the rule, or the model, is out of date" >&2
    exit 1
  fi
  printf 'without %s: %s\n' "$1" "$(grep -o 'assertion violated.*\|invalid end state' "$work/log" | head -n 1)"
}

rules() {
  for rule in TAKING_LOCKS STILL_THERE ASKING_THE_NAME REPLACING_LINES CLEARING_THE_LINE SAME_NAME_IS_THERE \
    COMPARING ORDERED_LOCKS ASKING_FOLDERS MENDING_FIRST ENDING_RENAMES LOOKING_FOR_THE_NAME; do
    needed "$rule" 1 2
  done
  for rule in PLACING_ONLY LOCKED_LISTING NAME_ON_FOLDER; do
    needed "$rule" 1 3
  done
  needed LINE_BEFORE_NAME 2 3
}

if [ "${1:-}" != --rules ]; then
  holds 1 2 3
  holds 1 2 3 WINDOWS
fi
rules
if [ "${1:-}" = --all ]; then
  holds 1 2 4
  holds 1 2 4 WINDOWS
  holds 2 2 4
  holds 1 3 3
  holds 2 3 3
  holds 2 3 3 WINDOWS
fi
