# shellcheck shell=sh
# What demo.sh, test.sh and .ci/run share: installing what is missing, and building a preset.
# To be sourced from the project's root.

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# run_apt WORDS ...: quietly, after others of these scripts, and in its turn with other programs that install.
run_apt() {
  as_root env DEBIAN_FRONTEND=noninteractive flock /var/lib/dpkg \
    apt-get -qq -o DPkg::Lock::Timeout=600 "$@" >/dev/null
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
  run_apt update 2>/dev/null || true
  # shellcheck disable=SC2086
  run_apt install -y --no-install-recommends $missing || {
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
       /usr/include/csv.h libcsv-dev \
       /usr/include/minizip/zip.h libminizip-dev \
       /usr/include/utf8proc.h libutf8proc-dev \
       /usr/include/xlsxwriter.h libxlsxwriter-dev \
       /usr/include/zlib.h zlib1g-dev
}

need_test_tools() {
  need /usr/src/googletest/CMakeLists.txt googletest nm binutils python3 python3 strace strace
}

# What compiles and runs the example in C#.
need_mono() {
  need mcs mono-mcs mono mono-runtime \
       /usr/lib/mono/4.5/I18N.West.dll libmono-i18n-west4.0-cil
}

# What makes the manual pages, what looks at them, and the shells that take the completions.
need_man_tools() {
  need scdoc scdoc mandoc mandoc zsh zsh fish fish
}

# A database takes the example's lines as a school would give them to it.
need_database() {
  need /usr/lib/postgresql postgresql
}

# What shows the pages that kivreport writes, and what looks at them.
need_page_tools() {
  need chromium chromium tidy tidy pdftotext poppler-utils
}

# build PRESET [TARGET ...]: configures, as `build_options` tells besides the preset, and builds, quietly
# unless something is wrong.
build_options=${build_options-}
build() {
  preset=$1
  shift
  generator=
  command -v ninja >/dev/null 2>&1 && generator="-G Ninja"
  mkdir -p "build/$preset"
  log="build/$preset/build.log"
  # shellcheck disable=SC2086
  if ! { cmake --preset "$preset" $generator $build_options &&
         cmake --build --preset "$preset" -j "$(nproc)" ${1:+--target "$@"}; } >"$log" 2>&1; then
    tail -n 60 "$log" >&2
    echo "building $preset failed; all of it is in $log" >&2
    return 1
  fi
}

# The version, from the one place where it stands.
project_version() { sed -n 's/^project(kivstore VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt; }

# The compilers for Windows, and what the hosts need there.
need_windows_tools() {
  need x86_64-w64-mingw32-g++-posix g++-mingw-w64-x86-64-posix \
       i686-w64-mingw32-g++-posix g++-mingw-w64-i686-posix \
       /usr/share/doc/libz-mingw-w64-dev libz-mingw-w64-dev
  need_host_libraries
  fetch_sources
}

# C libraries that have no package for Windows: their sources, as Debian has them, go to build/sources.
windows_sources="libcsv libxlsxwriter minizip utf8proc"
fetch_sources() {
  fetched=$PWD/build/sources
  [ "$(cat "$fetched/complete" 2>/dev/null)" != "$windows_sources" ] || return 0
  need xz xz-utils
  echo "fetching the sources of $windows_sources"
  rm -rf "$fetched"
  mkdir -p "$fetched/apt/lists/partial"
  # shellcheck disable=SC2086,SC2016
  if ( cd "$fetched/apt" || exit
    apt-get indextargets 'Created-By: Packages' 'Label: Debian' \
      --format 'deb-src $(REPO_URI) $(CODENAME) $(COMPONENT)' | sort -u >sources.list
    set -- -qq -o Dir::Etc::SourceList="$PWD/sources.list" -o Dir::Etc::SourceParts=/dev/null \
      -o Dir::State::Lists="$PWD/lists" -o APT::Sandbox::User=root
    apt-get "$@" update && apt-get "$@" source --download-only $windows_sources || exit
    for name in $windows_sources; do
      mkdir "$fetched/$name"
      tar xf "$name"_*.orig.tar.* -C "$fetched/$name" --strip-components=1 || exit
    done
  ) >build/sources.log 2>&1; then
    echo "$windows_sources" >"$fetched/complete"
    return 0
  fi
  cat build/sources.log >&2
  echo "could not fetch the sources of $windows_sources" >&2
  return 1
}

# Runs Windows programs: sets `wine` to the loader, which is not on the PATH, and a prefix of the
# tests' own.
need_wine() {
  dpkg -L wine64 >/dev/null 2>&1 || need /usr/lib/wine/wine64 wine64
  wine=$(dpkg -L wine64 | grep '/wine/wine64$' | head -n 1)
  [ -x "$wine" ] || {
    echo "wine64 is installed, but its loader is not where its package says" >&2
    return 1
  }
  mkdir -p build/windows64/wine
  WINEPREFIX=$PWD/build/windows64/wine
  WINEDEBUG=-all
  export WINEPREFIX WINEDEBUG
  # The first start lays out the prefix, and now and then it takes a second one.
  "$wine" cmd /c ver >/dev/null 2>&1 || "$wine" cmd /c ver >/dev/null 2>&1 || {
    echo "Wine does not start; nothing of Windows can be run" >&2
    return 1
  }
}
