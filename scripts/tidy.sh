#!/bin/sh
# Runs clang-tidy, with the checks of .clang-tidy, over the product's sources, installing what is
# missing.
#
#   scripts/tidy.sh [FILE ...]     all that the release preset builds, or these
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh

need_build_tools
need_host_libraries
need clang-tidy-14 clang-tidy-14
[ -f build/release/compile_commands.json ] || {
  build_options=-DKIVSTORE_TESTS=OFF
  build release help
}
# What is built for Windows alone has no line among the commands.
# shellcheck disable=SC2046
[ $# -gt 0 ] || set -- $(git ls-files '*.cpp' ':!tests' ':!bench' ':!examples' ':!*win32*')
# Warnings are the compilers' own business.
printf '%s\n' "$@" | xargs -P "$(nproc)" -n 4 clang-tidy-14 -p build/release --quiet \
  --extra-arg=-w >build/tidy.log 2>/dev/null || {
  cat build/tidy.log
  echo "clang-tidy has findings" >&2
  exit 1
}
echo "clang-tidy: nothing found in $# files"
