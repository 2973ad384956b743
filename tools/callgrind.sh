#!/usr/bin/env bash
# Counts the instructions of three scenes, and compares them with what bench/instructions.txt says.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

usage() {
  cat <<'TEXT'
usage: tools/callgrind.sh [--renew] [--build DIR]

Plays 140 turns at rest, 140 ticks and 140 turns of a drag under callgrind, and compares the instructions that the
console itself takes in these turns with bench/instructions.txt. What the hosted firmware takes isn't counted. Fails when a
scene takes over 5% more; tells when one takes over 5% less.

  --renew      write what was counted to bench/instructions.txt
  --build DIR  a build that is there already, in place of build/release

valgrind is needed. The figures hold for one compiler and one C library: renew them with either.
TEXT
}

say() { printf 'ventara: %s\n' "$*" >&2; }

turns=140
tolerance=5
figures=bench/instructions.txt
renew=
build=
while [ $# -gt 0 ]; do
  case "$1" in
    --help | -h) usage; exit 0 ;;
    --renew) renew=1; shift ;;
    --build)
      [ $# -gt 1 ] || { say "--build wants a directory"; exit 2; }
      build=$2
      shift 2 ;;
    *) usage >&2; say "unknown option '$1'"; exit 2 ;;
  esac
done

command -v valgrind >/dev/null || { say "valgrind isn't installed. On Debian: apt-get install valgrind"; exit 1; }
if [ -z "$build" ]; then
  build=build/release
  mkdir -p build
  if ! { cmake --preset release && cmake --build --preset release -j "$(nproc)" --target turn_bench; } \
    >build/callgrind.log 2>&1; then
    tail -n 20 build/callgrind.log >&2
    say "building failed; see build/callgrind.log"
    exit 1
  fi
fi

profile=$(mktemp)
trap 'rm -f "$profile"' EXIT
worse=0
counted=
for scene in rest tick drag; do
  valgrind --quiet --tool=callgrind --collect-atstart=no --callgrind-out-file="$profile" \
    "$build/bench/turn_bench" --scene "$scene" "$turns" 2>/dev/null || { say "scene $scene didn't run"; exit 1; }
  count=$(callgrind_annotate --threshold=100 "$profile" | awk '
    /\[.*libventara-console\.so\]/ { gsub(",", "", $1); sum += $1 }
    END { printf "%d", sum }')
  [ "$count" -gt 0 ] || { say "callgrind counted nothing in scene $scene"; exit 1; }
  counted+="$scene $count"$'\n'
  stored=$(sed -n "s/^$scene //p" "$figures")
  if [ -z "$stored" ]; then
    printf '%-5s %12d\n' "$scene" "$count"
    [ -n "$renew" ] || worse=1
    continue
  fi
  change=$(awk -v a="$count" -v b="$stored" 'BEGIN { printf "%+.1f", (a - b) * 100 / b }')
  printf '%-5s %12d, %s%% of %d\n' "$scene" "$count" "$change" "$stored"
  if [ $((count * 100)) -gt $((stored * (100 + tolerance))) ]; then
    say "scene $scene takes over $tolerance% more instructions than $figures says"
    worse=1
  elif [ $((count * 100)) -lt $((stored * (100 - tolerance))) ]; then
    say "scene $scene takes over $tolerance% fewer: renew $figures, so that this is kept"
  fi
done

if [ -n "$renew" ]; then
  {
    echo "# The console's instructions in $turns turns of a scene, counted by tools/callgrind.sh. --renew writes this file."
    printf '%s' "$counted"
  } >"$figures"
  exit 0
fi
exit "$worse"
