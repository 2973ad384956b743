#!/usr/bin/env bash
# What takes too long for each change: every failure of every scenario, long use, long fuzzing, coverage and checkers.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

usage() {
  cat <<'TEXT'
usage: ./ventara nightly [--minutes N]

Tries every allocation and every call that can fail in every scenario, with and without sanitizers; uses the console for
ten million turns; fuzzes each target for N minutes (20); runs the checkers; and measures coverage. Takes hours. What
went wrong is told at the end; the logs are in build/nightly-*.log. What it found so far: docs/reliability.md.
TEXT
}

say() { printf 'ventara: %s\n' "$*" >&2; }

minutes=20
while [ $# -gt 0 ]; do
  case "$1" in
    --help | -h) usage; exit 0 ;;
    --minutes)
      [[ "${2:-}" =~ ^[0-9]+$ ]] || { say "--minutes wants a number"; exit 2; }
      minutes=$2
      shift 2 ;;
    *) usage >&2; say "unknown option '$1'"; exit 2 ;;
  esac
done

failed=()
step() {
  local name=$1
  shift
  say "$name"
  "$@" >"build/nightly-$name.log" 2>&1 || failed+=("$name")
}

build() {
  [ -f "build/$1/build.ninja" ] || cmake --preset "$1" >/dev/null
  cmake --build --preset "$1" -j "$(nproc)" --target faults_tests >/dev/null
}

sweep() { (cd "build/$1" && VENTARA_SWEEP=full ctest -R 'EveryFailure' --timeout 0 -j "$(nproc)" --output-on-failure); }
kernels() { VENTARA_KERNEL_CASES=2000000 build/release/tests/graphics/kernels_tests; }
soak() { VENTARA_SOAK_TURNS=$2 "build/$1/tests/faults/faults_tests" --gtest_filter='Soak.*'; }

mkdir -p build
build release
build debug
step sweep-release sweep release
step sweep-debug sweep debug
step soak-release soak release 10000000
step soak-debug soak debug 200000
step fuzz tools/fuzz.sh --minutes "$minutes"
step lint tools/lint.sh
step kernels kernels
step instructions tools/callgrind.sh
step coverage tools/coverage.sh

if [ ${#failed[@]} -gt 0 ]; then
  say "failed: ${failed[*]}"
  exit 1
fi
say "all well"
