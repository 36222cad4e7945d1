#!/bin/sh
# One answer before and after a change: plays the same calls on the same stores through the libraries
# of two Linux builds, and compares every answer and every file that is left.
#
#   tests/parity/compare_builds.sh OLD_BUILD NEW_BUILD
#
# The programs are the new build's (targets play_calls and lay_parity_stores), so that an older build
# needs no more than its library.
set -eu
# shellcheck source=tests/parity/compare.sh
. "$(dirname "$0")/compare.sh"
[ $# = 2 ] || {
  echo "usage: tests/parity/compare_builds.sh OLD_BUILD NEW_BUILD" >&2
  exit 2
}
old=$(cd "$1/lib" && pwd) new=$(cd "$2/lib" && pwd)
player=$2/bin/play_calls

play_one() { LD_LIBRARY_PATH=$old "$player" "$1"; }
play_other() { LD_LIBRARY_PATH=$new "$player" "$1"; }

# A library that is not taken from its own build would be compared with itself.
for folder in "$old" "$new"; do
  LD_LIBRARY_PATH=$folder ldd "$player" | grep -qF "=> $folder/libkivstore.so" || {
    echo "parity: $player does not load the library in $folder" >&2
    exit 1
  }
done

compare_stores "$2/parity" "$2/bin/lay_parity_stores"
