# shellcheck shell=sh
# What run.sh and compare_builds.sh share: two sides play the same calls on the same stores, and every
# answer and everything that is left is compared. To be sourced by a script that has said what
# `play_one STORE` and `play_other STORE` are.

# What is in a tree, with the marks that a comparison of bytes does not see.
tree() { (cd "$1" && find . -printf '%P %y %s %m\n' | sort); }

# compare_stores WORK LAYER: the stores that the program LAYER lays out, below the new folder WORK.
compare_stores() {
  rm -rf "$1"
  mkdir -p "$1/one" "$1/other"
  work=$(cd "$1" && pwd)
  for side in one other; do
    "$2" "$work/$side"
  done
  diff -r "$work/one" "$work/other"
  calls=0 changed=0
  for store in "$work"/one/*; do
    compare_store "$(basename "$store")"
  done
  stores=$(find "$work/one" -mindepth 1 -maxdepth 1 | wc -l)
  if [ "$calls" -le 1000 ] || [ "$changed" = 0 ]; then
    echo "parity: only $calls calls, $changed stores changed: that proves nothing"
    return 1
  fi
  echo "parity: $calls calls on $stores stores, $changed of them repaired: the same on both sides"
}

compare_store() {
  cp -a "$work/one/$1" "$work/before"
  play_one "$work/one/$1" >"$work/$1.one"
  play_other "$work/other/$1" >"$work/$1.other"
  cmp "$work/$1.one" "$work/$1.other"
  diff -r "$work/one/$1" "$work/other/$1"
  tree "$work/one/$1" >"$work/tree.one"
  tree "$work/other/$1" >"$work/tree.other"
  cmp "$work/tree.one" "$work/tree.other"
  diff -rq "$work/before" "$work/one/$1" >/dev/null || changed=$((changed + 1))
  rm -rf "$work/before"
  calls=$((calls + $(wc -l <"$work/$1.one")))
}
