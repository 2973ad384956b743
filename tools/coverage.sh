#!/usr/bin/env bash
# What the tests reach of the console: lines and branches of src/, by gcovr. Less than the goal is a failure.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  echo "usage: ./ventara coverage   tests with counters; table on the screen, pages in build/coverage/report/"
  exit 0
fi
command -v gcovr >/dev/null || { echo "ventara: gcovr isn't installed (Debian: apt-get install gcovr)" >&2; exit 1; }

goal_lines=95
goal_branches=88

[ -f build/coverage/build.ninja ] || cmake --preset coverage >/dev/null
cmake --build --preset coverage -j "$(nproc)" >&2
find build/coverage -name '*.gcda' -delete
# Copies of a process that has a failure end without leaving their counters; the sweeps are for other builds.
(cd build/coverage && ctest -j "$(nproc)" -LE 'release-only' -E 'EveryFailure|Soak|Firmware' --output-on-failure) || true
mkdir -p build/coverage/report
gcovr --root . --filter 'src/' --gcov-ignore-parse-errors --exclude-throw-branches --exclude-unreachable-branches \
  --html-details build/coverage/report/index.html --print-summary \
  --fail-under-line "$goal_lines" --fail-under-branch "$goal_branches" build/coverage
