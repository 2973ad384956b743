#!/usr/bin/env bash
# Builds the benchmarks as released and runs them.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

usage() {
  cat <<'TEXT'
usage: ./ventara bench [--json FILE] [--sse2]
       ./ventara bench --firmware [DISPLAY ...]

Times everything that is done pixel by pixel, and prints for each the goal, what was measured, and what other
libraries take for the same work. Times are told as multiples of plain copies of the same pixels by the same process.
Then times the turns of the whole console and its start, and tells where the time goes.

  --json FILE   write the pixel figures to FILE too, with the times in nanoseconds
  --sse2        time the pixel work as a processor without SSE4.1 does it
  --firmware    time the console on OVMF in QEMU instead, display by display (./ventara bench --firmware --help)

Google Benchmark (libbenchmark-dev) is needed. pixman (libpixman-1-dev), SDL2 (libsdl2-dev) and Cairo (libcairo2-dev)
are measured beside it where they are installed. On a busy machine run it twice: the least figures are the true ones.
TEXT
}

say() { printf 'ventara: %s\n' "$*" >&2; }

arguments=()
while [ $# -gt 0 ]; do
  case "$1" in
    --help | -h) usage; exit 0 ;;
    --json)
      [ $# -gt 1 ] || { say "--json wants a file"; exit 2; }
      arguments+=(--json "$2")
      shift 2 ;;
    --sse2) arguments+=(--sse2); shift ;;
    *) usage >&2; say "unknown option '$1'"; exit 2 ;;
  esac
done

if ! dpkg-query -W -f='${Status}' libbenchmark-dev 2>/dev/null | grep -q '^install ok installed$' &&
  [ ! -e /usr/include/benchmark/benchmark.h ]; then
  say "Google Benchmark isn't installed. On Debian: apt-get install libbenchmark-dev"
  say "and, for the libraries to compare with: apt-get install libpixman-1-dev libcairo2-dev"
  exit 1
fi

mkdir -p build
log=build/bench.log
# Configured anew each time, so that libraries that were installed since are found.
if ! { cmake --preset release && cmake --build --preset release -j "$(nproc)" --target pixel_bench turn_bench; } >"$log" 2>&1; then
  tail -n 20 "$log" >&2
  say "building failed; see $log"
  exit 1
fi
build/release/bench/pixel_bench "${arguments[@]}"
echo
exec build/release/bench/turn_bench
