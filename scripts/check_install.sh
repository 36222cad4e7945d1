#!/bin/sh
# Installs into an empty folder, under each name that systems have for the folder of libraries, and
# uses what is there: by pkg-config, by find_package, and the programs themselves. Looks too at
# kivstore as a part of another project.
#
#   scripts/check_install.sh [PRESET]     release is the default
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh

need_build_tools
need_host_libraries
need pkg-config pkg-config
preset=${1:-release}
log=build/$preset/install-check.log
work=$PWD/build/$preset/install-check
source=$PWD
rm -rf "$work"
mkdir -p "$work/user" "$work/parent"

cat >"$work/user/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES C)
find_package(kivstore 1 REQUIRED)
add_executable(user $source/examples/print_store.c)
target_link_libraries(user PRIVATE kivstore::kivstore)
END
cat >"$work/parent/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.25)
project(parent LANGUAGES C CXX)
add_subdirectory($source kivstore)
add_executable(user $source/examples/print_store.c)
target_link_libraries(user PRIVATE kivstore::kivstore)
END

# expect WHAT COMMAND ...: the command succeeds and prints the store's one class.
expect() {
  what=$1
  shift
  told=$("$@" --local "$work/store")
  [ "$told" = "  Family" ] || {
    echo "$what prints \"$told\"" >&2
    return 1
  }
}

check_folder() {
  prefix=$work/$1
  cmake -DCMAKE_INSTALL_LIBDIR="$1" "build/$preset"
  cmake --build "build/$preset" -j "$(nproc)" --target kivstore kivreport kivadmin \
    kivstore_manuals
  cmake --install "build/$preset" --prefix "$prefix"

  "$prefix/bin/kivreport" --version
  rm -rf "$work/store"
  "$prefix/bin/kivadmin" init "$work/store" --kind local
  "$prefix/bin/kivadmin" add class "$work/store" Family

  PKG_CONFIG_PATH=$prefix/$1/pkgconfig
  export PKG_CONFIG_PATH
  # shellcheck disable=SC2046
  cc -o "$prefix/print_store" examples/print_store.c $(pkg-config --cflags --libs kivstore) \
    "-Wl,-rpath,$(pkg-config --variable=libdir kivstore)"
  expect "a program built by pkg-config" "$prefix/print_store"

  # Told where, since Debian itself does not look into lib64.
  cmake -S "$work/user" -B "$prefix/user" -Dkivstore_DIR="$prefix/$1/cmake/kivstore"
  cmake --build "$prefix/user"
  expect "a program built by find_package" "$prefix/user/user"
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

build "$preset" kivstore kivreport kivadmin
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
  echo "installed with libraries in $folder: pkg-config, find_package and the programs are good"
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
