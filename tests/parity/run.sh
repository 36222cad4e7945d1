#!/bin/sh
# One answer on both systems: plays the same calls on the same stores through the Linux library and
# through the Windows DLL under Wine, and compares every answer and every file that is left.
#
#   tests/parity/run.sh LINUX_BUILD WINDOWS_BUILD WINE
set -eu
# shellcheck source=tests/parity/compare.sh
. "$(dirname "$0")/compare.sh"
linux=$1 windows=$2 wine=$3

play_one() { "$linux/bin/play_calls" "$1"; }
play_other() { "$wine" "$windows/bin/play_calls.exe" "Z:$1" | tr -d '\r'; }

compare_stores "$windows/parity" "$linux/bin/lay_parity_stores"
