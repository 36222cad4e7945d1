# What demo.sh, test.sh and .ci/run share: installing what is missing, and building a preset.
# To be sourced from the project's root.

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# need FILE_OR_COMMAND PACKAGE ...: pairs; what is missing is installed, in one go, and named.
need() {
  missing=
  while [ $# -gt 1 ]; do
    case $1 in
      /*) [ -e "$1" ] || missing="$missing $2" ;;
      *) command -v "$1" >/dev/null 2>&1 || missing="$missing $2" ;;
    esac
    shift 2
  done
  [ -n "$missing" ] || return 0
  echo "installing:$missing"
  if ! command -v apt-get >/dev/null 2>&1; then
    echo "this system has no apt-get: please install these packages yourself" >&2
    return 1
  fi
  as_root env DEBIAN_FRONTEND=noninteractive apt-get update -qq >/dev/null 2>&1 || true
  # shellcheck disable=SC2086
  as_root env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends $missing >/dev/null || {
    echo "could not install:$missing" >&2
    return 1
  }
}

need_build_tools() {
  need g++ g++ cmake cmake ninja ninja-build
}

need_host_libraries() {
  need /usr/include/CLI/CLI.hpp libcli11-dev \
       /usr/include/nlohmann/json.hpp nlohmann-json3-dev \
       /usr/include/csv.h libcsv-dev
}

need_test_tools() {
  need /usr/src/googletest/CMakeLists.txt googletest nm binutils python3 python3 strace strace
}

# build PRESET [TARGET ...]: configures and builds, quietly unless something is wrong.
build() {
  preset=$1
  shift
  generator=
  command -v ninja >/dev/null 2>&1 && generator="-G Ninja"
  mkdir -p "build/$preset"
  log="build/$preset/build.log"
  # shellcheck disable=SC2086
  if ! { cmake --preset "$preset" $generator &&
         cmake --build --preset "$preset" -j "$(nproc)" ${1:+--target "$@"}; } >"$log" 2>&1; then
    tail -n 60 "$log" >&2
    echo "building $preset failed; all of it is in $log" >&2
    return 1
  fi
}
