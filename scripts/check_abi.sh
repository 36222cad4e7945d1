#!/bin/sh
# Holds what programs are linked with against the ABI kept in abi/: the exported function, and the block
# with the place and type of each field. A difference fails.
#
#   scripts/check_abi.sh             compares
#   scripts/check_abi.sh --update    keeps what is there now; what was kept was a promise until the
#                                    next SONAME
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh

case ${1-} in
  "" | --update) ;;
  *)
    echo "usage: scripts/check_abi.sh [--update]" >&2
    exit 2
    ;;
esac

# On one kind of processor, which is enough: the offsets of all are asserted where the block is filled.
kept=abi/libkivstore.abi
[ "$(uname -m)" = x86_64 ] || {
  echo "left out: $kept is of x86_64"
  exit 0
}
need_build_tools
need abidw abigail-tools

# The shared library alone, with what a debugger is told: from there the types are read.
library=build/abi/lib/libkivstore.so
cmake -S . -B build/abi -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_UNITY_BUILD=ON \
  -DCMAKE_CXX_FLAGS="-ffile-prefix-map=$PWD=." -DKIVSTORE_HOSTS=OFF -DKIVSTORE_TESTS=OFF >/dev/null
cmake --build build/abi --target kivstore >build/abi/build.log || {
  tail -n 40 build/abi/build.log >&2
  exit 1
}

# Only what the public header tells counts; and no path, so that every build writes the same.
abidw --exported-interfaces-only --headers-dir include/kivstore --drop-private-types --no-elf-needed --no-corpus-path --no-comp-dir-path \
  --no-show-locs "$library" >build/abi/libkivstore.abi
if [ "${1-}" = --update ]; then
  cp build/abi/libkivstore.abi "$kept"
  echo "kept as $kept"
  exit 0
fi
status=0
abidiff --no-added-syms "$kept" build/abi/libkivstore.abi >build/abi/difference || status=$?
cat build/abi/difference
[ "$status" = 0 ] || {
  echo "the ABI is not the one in $kept; programs that are built already would go wrong" >&2
  exit 1
}
echo "the ABI is the one in $kept"
