#!/bin/sh
# Installs into an empty folder, under each name that systems have for the folder of libraries, and
# uses what is there. Looks too at kivstore as a part of another project.
#
#   scripts/check_install.sh [PRESET]     release is the default
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh

need_build_tools
need_host_libraries
need_man_tools
need_mono
need pkg-config pkg-config python3 python3 make make
preset=${1:-release}
log=build/$preset/install-check.log
work=$PWD/build/$preset/install-check
source=$PWD
rm -rf "$work"
mkdir -p "$work/parent"

cat >"$work/parent/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.25)
project(parent LANGUAGES C CXX)
add_subdirectory($source kivstore)
add_executable(user $source/examples/print_store.c)
target_link_libraries(user PRIVATE kivstore::kivstore)
END

check_folder() {
  prefix=$work/$1
  cmake -DCMAKE_INSTALL_LIBDIR="$1" "build/$preset"
  cmake --build "build/$preset" -j "$(nproc)" --target installed
  cmake --install "build/$preset" --prefix "$prefix"
  "$prefix/bin/kivreport" --version | grep -F "kivreport $version,"
  test "$(PKG_CONFIG_PATH=$prefix/$1/pkgconfig pkg-config --modversion kivstore)" = "$version"
  # Told where, since Debian itself does not look into lib64.
  PATH=$prefix/bin:$PATH PKG_CONFIG_PATH=$prefix/$1/pkgconfig kivstore_DIR=$prefix/$1/cmake/kivstore \
    scripts/use_installed.sh "$prefix/use"
}

# Within another project there is the library alone.
check_part() {
  cmake -S "$work/parent" -B "$work/parent/build"
  cmake --build "$work/parent/build" --target help >"$work/targets"
  if grep -E '(test_|gtest|kivreport|kivadmin)' "$work/targets"; then return 1; fi
  if grep -r kivstore "$work/parent/build/cmake_install.cmake" \
       "$work/parent/build/kivstore/cmake_install.cmake" | grep -F 'file(INSTALL'; then return 1; fi
  if grep -rq -e -Werror "$work/parent/build" --include=flags.make; then return 1; fi
}

build "$preset" installed
version=$(project_version)
trap 'cmake -U CMAKE_INSTALL_LIBDIR "build/$preset" >/dev/null' EXIT
for folder in lib lib64 lib/x86_64-linux-gnu; do
  # In a shell of its own, so that the first failure in it is the end.
  status=0
  (set -e; check_folder "$folder") >"$log" 2>&1 &
  wait $! || status=$?
  [ "$status" = 0 ] || {
    tail -n 40 "$log" >&2
    echo "what is installed with libraries in $folder does not serve" >&2
    exit 1
  }
  echo "installed with libraries in $folder:"
  grep -E '^(good|left out): ' "$log" | sed 's/^/  /'
done
status=0
(set -e; check_part) >"$log" 2>&1 &
wait $! || status=$?
[ "$status" = 0 ] || {
  tail -n 40 "$log" >&2
  echo "kivstore within another project brings more than the library" >&2
  exit 1
}
echo "within another project: the library alone"
