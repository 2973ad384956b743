#!/usr/bin/env bash
# What the tests reach of the console: lines and branches of src/, by gcovr. Less than the goal is a failure, and so is a
# test that fails.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  echo "usage: ./ventara coverage   tests with counters; table on the screen, pages in build/coverage/report/"
  exit 0
fi

say() { printf 'ventara: %s\n' "$*" >&2; }

command -v gcovr >/dev/null || { say "gcovr isn't installed (Debian: apt-get install gcovr)"; exit 1; }

goal_lines=95
goal_branches=88

[ -f build/coverage/build.ninja ] || cmake --preset coverage >/dev/null
cmake --build --preset coverage -j "$(nproc)" >&2
find build/coverage -name '*.gcda' -delete

# What is repeated often elsewhere is done a few times here, where the code isn't optimised. A copy of a sweep's process
# that crashes leaves no counters behind; all others do, when the console's image is unloaded.
status=0
(cd build/coverage && VENTARA_SWEEP=7 VENTARA_SOAK_TURNS=8000 VENTARA_KERNEL_CASES=1000 \
  ctest -j "$(nproc)" -LE 'nightly|boot|check' --output-on-failure) || { say "a test failed; what is missing below may be due to it"; status=1; }

# src/ is compiled for the console, and a part of it again for the tests of its support functions.
mkdir -p build/coverage/report
gcovr --root . --filter 'src/' --exclude-throw-branches --exclude-unreachable-branches \
  --html-details build/coverage/report/index.html --txt build/coverage/report/table.txt --print-summary \
  --fail-under-line "$goal_lines" --fail-under-branch "$goal_branches" \
  build/coverage/CMakeFiles/console_objects.dir build/coverage/tests/support ||
  { say "fewer than $goal_lines % of the lines or $goal_branches % of the branches"; status=1; }
cat build/coverage/report/table.txt
exit "$status"
