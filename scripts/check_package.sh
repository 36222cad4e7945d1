#!/bin/sh
# The packages for Debian as somebody gets them: built in two places to the same bytes, installed into a
# system of their own, used there by somebody without rights, and removed without a trace.
#
#   scripts/check_package.sh [--built FOLDER]     FOLDER: the packages are there, and built once only
set -eu
cd "$(dirname "$0")/.."
. scripts/common.sh

[ "$(id -u)" = 0 ] || {
  echo "a system of its own is laid out and entered by root alone; try sudo $0" >&2
  exit 2
}
work=$PWD/build/package-check
root=$work/root
mkdir -p "$work"

# In a second place, under another name, language and time zone: what depends on those shows.
build_twice() {
  packages=$PWD/build/package
  rm -rf "$packages"
  scripts/package.sh --debian "$packages"
  elsewhere=$(mktemp -d)
  trap 'rm -rf "$elsewhere"' EXIT
  (umask 027; TZ=Asia/Tokyo LC_ALL=C.UTF-8 scripts/package.sh --debian "$elsewhere/second") >/dev/null
  # Those two tell where and on what system was built.
  diff -r -q --exclude='*.buildinfo' --exclude='*.changes' --exclude='*.log' --exclude='*.zip' \
    "$packages" "$elsewhere/second" || {
    echo "a second build gives other bytes" >&2
    return 1
  }
  rm -rf "$elsewhere"
  echo "good: two builds, the same bytes"
}

needed() {
  for package in "$packages"/*.deb; do
    dpkg-deb -f "$package" Depends | tr ',' '\n'
  done | sed 's/^ *//; s/[ (:].*//' | grep -v kivstore | sort -u
}

# A small Debian with what the packages depend on and the test wants; kept, as it takes its time.
lay_out_root() {
  need mmdebstrap mmdebstrap
  contents=cmake,g++,make,pkgconf,python3,$(needed | paste -sd ,)
  if [ "$(cat "$work/contents" 2>/dev/null)" != "$contents" ]; then
    echo "laying out a Debian to install into"
    # shellcheck disable=SC2016
    apt-get indextargets 'Created-By: Packages' 'Label: Debian' \
      --format 'deb $(REPO_URI) $(CODENAME) $(COMPONENT)' | sort -u >"$work/sources.list"
    mmdebstrap --quiet --variant=minbase --include="$contents" \
      "$(. /etc/os-release && echo "$VERSION_CODENAME")" "$work/root.tar" "$work/sources.list" \
      >"$work/mmdebstrap.log" 2>&1 || {
      tail -n 20 "$work/mmdebstrap.log" >&2
      return 1
    }
    echo "$contents" >"$work/contents"
  fi
  rm -rf "$root"
  mkdir "$root"
  tar xf "$work/root.tar" -C "$root" --exclude='./dev/*'
  mknod -m 666 "$root/dev/null" c 1 3
  mkdir -m 777 "$root/trial"
  cp -R --parents examples scripts/use_installed.sh debian/tests "$root/trial"
  mkdir "$root/trial/packages"
  cp "$packages"/*.deb "$root/trial/packages"
}

in_root() { env -i PATH=/usr/bin:/bin:/usr/sbin:/sbin HOME=/trial chroot "$@"; }

# Everything but what dpkg and the loader note for themselves.
everything() {
  (cd "$root" && find . \( -path ./trial -o -path ./var/lib/dpkg -o -path ./var/log -o -path ./tmp \
     -o -path ./var/cache/ldconfig -o -path ./etc/ld.so.cache \) -prune -o \
     -printf '%p %y %m %u:%g %l\n' -type f -exec md5sum {} +) | LC_ALL=C sort
}

use() {
  everything >"$work/before"
  in_root "$root" sh -c 'dpkg -i /trial/packages/*.deb' >"$work/dpkg.log" 2>&1 || {
    cat "$work/dpkg.log" >&2
    return 1
  }
  names=$(for package in "$packages"/*.deb; do dpkg-deb -f "$package" Package; done)
  # shellcheck disable=SC2086
  in_root "$root" dpkg --verify $names
  echo "good: installed"
  in_root --userspec=nobody:nogroup "$root" \
    env AUTOPKGTEST_TMP=/trial/use sh -c 'cd /trial && debian/tests/use-installed'
  # shellcheck disable=SC2086
  in_root "$root" dpkg --purge $names >>"$work/dpkg.log" 2>&1
  everything >"$work/after"
  diff "$work/before" "$work/after" || {
    echo "something is left behind when the packages are removed" >&2
    return 1
  }
  rm -rf "$root"
  echo "good: removed without a trace"
}

case ${1-} in
  "") build_twice ;;
  --built) packages=$(cd "$2" && pwd) ;;
  *)
    echo "usage: scripts/check_package.sh [--built FOLDER]" >&2
    exit 2
    ;;
esac
ls "$packages"/*.deb >/dev/null || exit 1
lay_out_root
use
