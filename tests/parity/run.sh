#!/bin/sh
# One answer on both systems: plays the same calls on the same stores through the Linux library and
# through the Windows DLL under Wine, and compares every answer and every file that is left.
#
#   tests/parity/run.sh LINUX_BUILD WINDOWS_BUILD WINE
set -eu
linux=$1 windows=$2 wine=$3
work=$windows/parity
rm -rf "$work"
mkdir -p "$work/linux" "$work/windows"
work=$(cd "$work" && pwd)

for side in linux windows; do
  "$linux/bin/lay_parity_stores" "$work/$side"
done
diff -r "$work/linux" "$work/windows"

# What is in a tree, with the marks that a comparison of bytes does not see.
tree() { (cd "$1" && find . -printf '%P %y %s %m\n' | sort); }

calls=0 changed=0
for store in "$work"/linux/*; do
  name=$(basename "$store")
  cp -a "$store" "$work/before"
  "$linux/bin/play_calls" "$work/linux/$name" >"$work/$name.linux"
  "$wine" "$windows/bin/play_calls.exe" "Z:$work/windows/$name" | tr -d '\r' >"$work/$name.windows"
  cmp "$work/$name.linux" "$work/$name.windows"
  diff -r "$work/linux/$name" "$work/windows/$name"
  tree "$work/linux/$name" >"$work/tree.linux"
  tree "$work/windows/$name" >"$work/tree.windows"
  cmp "$work/tree.linux" "$work/tree.windows"
  diff -rq "$work/before" "$store" >/dev/null || changed=$((changed + 1))
  rm -rf "$work/before"
  calls=$((calls + $(wc -l <"$work/$name.linux")))
done
stores=$(ls "$work/linux" | wc -l)
[ "$calls" -gt 1000 ] && [ "$changed" -gt 0 ] || {
  echo "parity: only $calls calls, $changed stores changed: that proves nothing"
  exit 1
}
echo "parity: $calls calls on $stores stores, $changed of them repaired: the same on both systems"
