#!/usr/bin/env bash
# What takes too long for each change: every failure of every scenario, long use, many boots, long fuzzing, coverage and
# checkers.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

usage() {
  cat <<'TEXT'
usage: ./ventara nightly [--minutes N] [--boots N]

Tries every allocation and every call that can fail in every scenario, with and without sanitizers; uses the console
for ten million turns; boots it on machines of all kinds, starts it a hundred times in one boot, runs it hardened, and
boots it N times in a row (200); sets a fan through a chip's driver in Debian's kernel; fuzzes each target for N
minutes (20), the events once more without sanitizers; decodes a hundred million damaged pictures; compares the kernels
with their plain twins in two million cases each; counts the instructions of three scenes; runs the checkers; and
measures coverage. Takes hours. What went wrong is told at the end; the logs are in build/nightly-*.log. What it found
so far: docs/reliability.md.
TEXT
}

say() { printf 'ventara: %s\n' "$*" >&2; }

minutes=20
boots=200
while [ $# -gt 0 ]; do
  case "$1" in
    --help | -h) usage; exit 0 ;;
    --minutes | --boots)
      [[ "${2:-}" =~ ^[0-9]+$ ]] || { say "$1 wants a number"; exit 2; }
      declare "${1#--}=$2"
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
pictures() { VENTARA_DECODER_RUNS=100000000 build/release/tests/board/board_tests --gtest_filter='DecoderRuns.*'; }
kernels() { VENTARA_KERNEL_CASES=2000000 build/release/tests/graphics/kernels_tests; }
soak() { VENTARA_SOAK_TURNS=$2 "build/$1/tests/faults/faults_tests" --gtest_filter='Soak.*'; }

# The firmware images, and the same ones hardened.
build_firmware() {
  local folder=$1
  shift
  [ -f "build/$folder/build.ninja" ] || cmake -S platform/firmware -B "build/$folder" -G Ninja \
    --toolchain "$PWD/cmake/firmware-toolchain.cmake" "$@" >/dev/null
  cmake --build "build/$folder" -j "$(nproc)" >/dev/null
}
hardened() {
  tests/firmware/machines_test.py Hardened &&
    VENTARA_FIRMWARE=$PWD/build/hardened tests/firmware/boot_test.py ConsoleOnFirmware Tour &&
    VENTARA_FIRMWARE=$PWD/build/hardened VENTARA_STARTS=20 tests/firmware/machines_test.py Starts
}

mkdir -p build
build release
cmake --build --preset release -j "$(nproc)" --target ventara ventara-console kernels_tests board_tests >/dev/null
build_firmware firmware
build_firmware hardened -DVENTARA_HARDEN=ON
build debug
step sweep-release sweep release
step sweep-debug sweep debug
step soak-release soak release 10000000
step soak-debug soak debug 200000
step machines tests/firmware/machines_test.py MoreMachines
step starts tests/firmware/machines_test.py Starts
step hardened hardened
step hwmon-vm tools/hwmon_vm.py
step boots tools/boots.py --boots "$boots"
step fuzz tools/fuzz.sh --minutes "$minutes"
step fuzz-fast tools/fuzz.sh events --fast --minutes "$minutes"
step lint tools/lint.sh
step kernels kernels
step pictures pictures
step instructions tools/callgrind.sh
step coverage tools/coverage.sh

if [ ${#failed[@]} -gt 0 ]; then
  say "failed: ${failed[*]}"
  exit 1
fi
say "all well"
