#!/usr/bin/env bash
# The checkers over src/ and platform/: cppcheck with its suppressions (each with its reason in
# tools/cppcheck-suppressions.txt), then clang-tidy with the checks of .clang-tidy.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  echo "usage: ./ventara lint [FILE ...]   checks all of src/ and platform/, or these sources"
  exit 0
fi

say() { printf 'ventara: %s\n' "$*" >&2; }

for tool in cppcheck clang-tidy; do
  command -v "$tool" >/dev/null || { say "$tool isn't installed (Debian: apt-get install $tool)"; exit 1; }
done

if [ $# -gt 0 ]; then
  sources=("$@")
else
  mapfile -t sources < <(find src platform -name '*.cpp' | sort)
fi

# Each source is looked at as it is compiled: for the hosted build, or with the target of the firmware images.
[ -f build/debug/build.ninja ] || cmake --preset debug >/dev/null
[ -f build/firmware/build.ninja ] ||
  cmake -S platform/firmware -B build/firmware -G Ninja --toolchain "$PWD/cmake/firmware-toolchain.cmake" >/dev/null
ninja -C build/debug --quiet platform/board/font/SystemFontTable.inc >/dev/null

status=0
cppcheck --quiet --std=c++20 --language=c++ --enable=warning,performance,portability --inline-suppr --error-exitcode=1 \
  --suppressions-list=<(grep -v '^#' tools/cppcheck-suppressions.txt) -I src -I . -j "$(nproc)" "${sources[@]}" || status=1

# What clang-tidy says is shown when it finds something or can't look: its count of what it left out is of no use to anyone.
tidy='case "$1" in */firmware/*) built=build/firmware ;; *) built=build/debug ;; esac
  found=$(clang-tidy --quiet -p "$built" --extra-arg=-Wno-unknown-warning-option "$1" 2>&1) || {
    printf "%s\n" "$found"
    exit 1
  }'
printf '%s\0' "${sources[@]}" | xargs -0 -P "$(nproc)" -n 1 bash -c "$tidy" lint || status=1

[ "$status" -eq 0 ] || { say "the checkers found something"; exit 1; }
say "the checkers have nothing to say of ${#sources[@]} sources"
