#!/bin/sh
# Runs clang-tidy, with the checks of .clang-tidy, over the product's sources, installing what is
# missing.
#
#   scripts/tidy.sh [FILE ...]     all that is built for this system, or these
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh

need_build_tools
need_host_libraries
need clang-tidy-14 clang-tidy-14
# As the tidy preset joins them, many at once: each header is read once for all that include it. What is
# built for Windows alone has no line among the commands. One source is made on the way.
build tidy page_assets
# shellcheck disable=SC2046
[ $# -gt 0 ] || set -- $(sed -n 's/^ *"file": "\(.*\)",*$/\1/p' build/tidy/compile_commands.json)
# Warnings are the compilers' own business.
printf '%s\n' "$@" | xargs -P "$(nproc)" -n 2 clang-tidy-14 -p build/tidy --quiet \
  --extra-arg=-w >build/tidy.log 2>/dev/null || {
  cat build/tidy.log
  echo "clang-tidy has findings" >&2
  exit 1
}
echo "clang-tidy: nothing found"
