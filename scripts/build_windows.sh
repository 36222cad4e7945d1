#!/bin/sh
# Builds the DLL and the hosts for Windows, installing what is missing, and looks at what came out:
# GeneralProc alone is exported, under its plain name, and nothing is needed beside them but what every
# Windows has.
#
#   scripts/build_windows.sh [BITS ...]     64 and 32
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh

# Of the DLL `objdump -p` lists the names with their place, "[   0] GeneralProc".
exports_of() { "$1-w64-mingw32-objdump" -p "$2" | sed -n 's/^\t\[ *[0-9]*\] \([A-Za-z_].*\)$/\1/p'; }
imports_of() { "$1-w64-mingw32-objdump" -p "$2" | sed -n 's/^\tDLL Name: //p'; }

check() {
  system='ADVAPI32|GDI32|KERNEL32|OLEAUT32|SHELL32|USER32|msvcrt'
  for file in kivstore.dll kivreport.exe kivadmin.exe; do
    others=$(imports_of "$1" "$2/$file" | grep -vxiE "($system)\\.dll|kivstore.dll" || true)
    [ -z "$others" ] || {
      echo "$2/$file needs more than Windows has: $others" >&2
      return 1
    }
  done
  exports=$(exports_of "$1" "$2/kivstore.dll")
  [ "$exports" = GeneralProc ] || {
    echo "$2/kivstore.dll exports: $exports" >&2
    return 1
  }
}

need_build_tools
need_windows_tools
build_options="$build_options -DKIVSTORE_TESTS=OFF"
[ $# -gt 0 ] || set -- 64 32
for bits; do
  case $bits in
    64) kind=x86_64 ;;
    32) kind=i686 ;;
    *)
      echo "usage: scripts/build_windows.sh [64] [32]" >&2
      exit 2
      ;;
  esac
  echo "building windows$bits"
  build "windows$bits" kivstore kivreport kivadmin
  check "$kind" "build/windows$bits/bin"
  echo "build/windows$bits/bin: kivstore.dll, kivreport.exe, kivadmin.exe"
done
