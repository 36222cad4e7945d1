#!/bin/sh
# Builds kivstore, lays out a demo store under build/demo and prints the progress report of it.
set -eu
cd "$(dirname "$0")"
. scripts/common.sh

need_build_tools
need_host_libraries
need_test_tools
echo "building"
build release kivreport demo_store

demo=build/demo
rm -rf "$demo"
mkdir -p "$demo"
build/release/bin/demo_store "$demo/network" "$demo/local"

report=build/release/bin/kivreport
echo
echo "The networked store, $demo/network:"
"$report" "$demo/network"
echo
echo "The local store, $demo/local:"
"$report" "$demo/local"
echo
echo "Try: $report --roster $demo/network"
echo "     $report --format csv --teacher '#1' $demo/network"
