#!/bin/sh
# Makes what is released, of the commit that is checked out, into a folder:
#
#   kivstore-VERSION.tar.gz                the source
#   *.deb *.dsc *.changes ...              the packages for Debian, and what they are built from
#   kivstore-VERSION-windows64.zip, 32     the library, the programs and what hosts are built with
#
# The same commit gives the same bytes, wherever and whenever it is packed.
#
#   scripts/package.sh [--source | --debian | --windows] [FOLDER]     build/package is the default
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh
. scripts/windows_zip.sh

usage() {
  echo "usage: scripts/package.sh [--source | --debian | --windows] [FOLDER]" >&2
  exit 2
}

parts="source debian windows"
case ${1-} in
  --source | --debian | --windows)
    parts=${1#--}
    shift
    ;;
  -*) usage ;;
esac
[ $# -le 1 ] || usage
case $parts in source*) ;; *) parts="source $parts" ;; esac
mkdir -p "${1:-build/package}"
output=$(cd "${1:-build/package}" && pwd)
version=$(project_version)
name=kivstore-$version

# Each text that tells a version by hand tells the project's.
check_version() {
  told=$(sed -n '1s/^kivstore (\(.*\)-[^-]*).*/\1/p' debian/changelog)
  [ "$told" = "$version" ] || {
    echo "debian/changelog begins with version $told, CMakeLists.txt says $version: add an entry" >&2
    return 1
  }
  grep -q "^## \[$version\]" CHANGELOG.md || {
    echo "CHANGELOG.md has no heading [$version], which CMakeLists.txt says: give Unreleased its name" >&2
    return 1
  }
}

check_tree() {
  { [ -e .git ] && git rev-parse --verify -q HEAD >/dev/null; } || {
    echo "this is no checkout of git: packages are made of a commit" >&2
    return 1
  }
  [ -z "$(git status --porcelain)" ] ||
    echo "note: what is not committed is not packed" >&2
  SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
  export SOURCE_DATE_EPOCH
}

# The source without debian/, which belongs to the packages; Debian calls the same file by its own name.
pack_source() {
  git -c tar.umask=022 archive --format=tar --prefix="$name/" HEAD -- . ':!debian' | gzip -9n >"$output/$name.tar.gz"
  echo "$output/$name.tar.gz"
}

# Built in a folder of its own, as any builder of packages does.
pack_debian() {
  need_build_tools
  need dh debhelper dpkg-buildpackage dpkg-dev /usr/share/build-essential/list build-essential \
       lintian lintian scdoc scdoc python3 python3
  need_host_libraries
  area=$output/debian-build
  rm -rf "$area"
  mkdir -p "$area"
  cp "$output/$name.tar.gz" "$area/kivstore_$version.orig.tar.gz"
  tar xf "$output/$name.tar.gz" -C "$area"
  git -c tar.umask=022 archive --format=tar --prefix="$name/" HEAD -- debian | tar xf - -C "$area"
  (cd "$area/$name" && DEB_BUILD_OPTIONS=terse dpkg-buildpackage -us -uc) >"$output/debian-build.log" 2>&1 || {
    tail -n 40 "$output/debian-build.log" | cut -c 1-200 >&2
    echo "building the packages failed; all of it is in $output/debian-build.log" >&2
    return 1
  }
  lintian --allow-root --fail-on error,warning "$area"/*.changes
  find "$area" -maxdepth 1 -type f -exec mv {} "$output" \;
  rm -rf "$area"
  find "$output" -maxdepth 1 -name '*.deb' | sort
}

check_tree
check_version
for part in $parts; do
  "pack_$part"
done
