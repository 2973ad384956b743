#!/usr/bin/env bash
# What the tests reach: lines and branches of src/ and of platform/, by gcovr. Less of the console than the goal is a
# failure, and so is a test that fails.
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

report() { gcovr --root . --exclude-throw-branches --exclude-unreachable-branches --print-summary "$@"; }

mkdir -p build/coverage/report/platform
report --filter 'src/' --html-details build/coverage/report/index.html --txt build/coverage/report/table.txt \
  --fail-under-line "$goal_lines" --fail-under-branch "$goal_branches" build/coverage/CMakeFiles/console_objects.dir ||
  { say "fewer than $goal_lines % of the lines or $goal_branches % of the branches"; status=1; }
# What the boots alone reach of platform/firmware isn't counted.
report --filter 'platform/' --html-details build/coverage/report/platform/index.html \
  --txt build/coverage/report/platform/table.txt build/coverage/platform build/coverage/tests/firmware || status=1
cat build/coverage/report/table.txt build/coverage/report/platform/table.txt
exit "$status"
