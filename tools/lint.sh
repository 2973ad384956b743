#!/usr/bin/env bash
# The checkers over src/ and platform/: cppcheck with its suppressions (each with its reason in
# tools/cppcheck-suppressions.txt), then clang-tidy with the checks of .clang-tidy.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  echo "usage: ./ventara lint [FILE ...]   checks all of src/ and platform/, or these sources"
  exit 0
fi
for tool in cppcheck clang-tidy; do
  command -v "$tool" >/dev/null || { echo "ventara: $tool isn't installed (Debian: apt-get install $tool)" >&2; exit 1; }
done

# Sources of the hosted build; those of the firmware images are compiled for another target.
if [ $# -gt 0 ]; then
  sources=("$@")
else
  mapfile -t sources < <(find src platform/board platform/host -name '*.cpp' ! -path '*/freestanding/*' | sort)
fi
[ -f build/debug/compile_commands.json ] || cmake --preset debug >/dev/null

cppcheck --quiet --std=c++20 --language=c++ --enable=warning,performance,portability --inline-suppr --error-exitcode=1 \
  --suppressions-list=<(grep -v '^#' tools/cppcheck-suppressions.txt) -I src -I . -j "$(nproc)" "${sources[@]}"
printf '%s\n' "${sources[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy --quiet -p build/debug --extra-arg=-Wno-unknown-warning-option 2>/dev/null
echo "ventara: the checkers have nothing to say" >&2
