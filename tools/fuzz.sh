#!/usr/bin/env bash
# Builds the fuzz targets with clang and runs them.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

targets=(events variables chips)
declare -A share=([events]=3 [variables]=2 [chips]=1) # of the time of --in-all

usage() {
  cat <<'TEXT'
usage: ./ventara fuzz [TARGET ...] [--seconds N | --minutes N | --in-all N] [--at-once N] [--fast]

Feeds the console with inputs that grow towards code not yet reached; sanitizers are on.

  events      pointer, buttons, keys, time and readings; what must hold is looked at in each turn
  variables   settings and histories of any size and content, found at a start
  chips       sensor chips of any content that change, fail and refuse, and a board's driver on them

  --seconds N, --minutes N   time for each target; 15 seconds unless told
  --at-once N                that many targets at a time, and as many compilers; one a processor unless told
  --fast                     without sanitizers, and optimised: what is looked at in each turn alone tells of faults
  --in-all N                 seconds for all targets together; the more of the console a target reaches, the more it gets

Seeds are in fuzz/corpus/; what is found along the way is kept in build/fuzz-corpus/. An input that breaks something is
left in build/ as TARGET-crash-..., and build/fuzz/fuzz/fuzz_TARGET FILE plays it again. Exit status 1 when something broke.
TEXT
}

say() { printf 'ventara: %s\n' "$*" >&2; }

picked=()
seconds=15
in_all=0
at_once=$(nproc)
folder=build/fuzz
options=(-DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g1" -DVENTARA_SANITIZE=ON)
while [ $# -gt 0 ]; do
  case "$1" in
    --help | -h) usage; exit 0 ;;
    --seconds | --minutes | --in-all)
      [[ "${2:-}" =~ ^[0-9]+$ ]] || { say "$1 wants a number"; exit 2; }
      seconds=$2
      in_all=0
      [ "$1" != --minutes ] || seconds=$(($2 * 60))
      [ "$1" != --in-all ] || in_all=$2
      shift 2 ;;
    --at-once)
      [[ "${2:-}" =~ ^[1-9][0-9]*$ ]] || { say "$1 wants a number"; exit 2; }
      at_once=$2
      shift 2 ;;
    --fast)
      folder=build/fuzz-fast
      options=(-DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE="-O2")
      shift ;;
    *)
      printf '%s\n' "${targets[@]}" | grep -qx -- "$1" || { usage >&2; say "unknown target '$1'"; exit 2; }
      picked+=("$1")
      shift ;;
  esac
done
[ ${#picked[@]} -gt 0 ] || picked=("${targets[@]}")

command -v clang++ >/dev/null || { say "clang isn't installed (Debian: apt-get install clang)"; exit 1; }
mkdir -p build
[ -f "$folder/build.ninja" ] || CC=clang CXX=clang++ cmake -S . -B "$folder" -G Ninja "${options[@]}" -DVENTARA_FUZZ=ON \
  >build/fuzz.log || { say "configuring failed; see build/fuzz.log"; exit 1; }
cmake --build "$folder" -j "$at_once" --target "${picked[@]/#/fuzz_}" >&2

shares=0
for target in "${picked[@]}"; do
  shares=$((shares + share[$target]))
done
seconds_of() {
  if [ "$in_all" -gt 0 ]; then echo $((in_all * share[$1] / shares)); else echo "$seconds"; fi
}

run_one() {
  local target=$1 log=build/fuzz-$1.log
  mkdir -p "build/fuzz-corpus/$target"
  if "$folder/fuzz/fuzz_$target" -max_total_time="$(seconds_of "$target")" -timeout=60 -rss_limit_mb=4096 \
    -max_len=4096 -len_control=0 -print_final_stats=1 -artifact_prefix="build/$target-" \
    "build/fuzz-corpus/$target" "fuzz/corpus/$target" >"$log" 2>&1; then
    say "$target: $(sed -n 's/^Done \(.*\)$/\1/p' "$log")$(sed -n 's/^turns: \(.*\)$/, \1 turns/p' "$log"), nothing broke"
  else
    say "$target broke; the end of $log:"
    tail -40 "$log" >&2
    return 1
  fi
}

status=0
running=0
for target in "${picked[@]}"; do
  run_one "$target" &
  running=$((running + 1))
  if [ "$running" -ge "$at_once" ]; then
    wait -n || status=1
    running=$((running - 1))
  fi
done
while [ "$running" -gt 0 ]; do
  wait -n || status=1
  running=$((running - 1))
done
exit "$status"
