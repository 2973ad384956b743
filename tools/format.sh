#!/usr/bin/env bash
# Lays the sources out as .clang-format says. A file of one's own hand-made table is kept by `// clang-format off`.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

say() { printf 'ventara: %s\n' "$*" >&2; }

how=-i
case "${1:-}" in
  --help | -h)
    echo "usage: ./ventara format [--check]   lays out all C++ sources, or tells which aren't"
    exit 0
    ;;
  --check) how="--dry-run -Werror" ;;
  "") ;;
  *) say "format: '$1' isn't --check"; exit 2 ;;
esac
command -v clang-format >/dev/null || { say "clang-format isn't installed (Debian: apt-get install clang-format)"; exit 1; }

# shellcheck disable=SC2086
find src platform artwork tests bench fuzz docs/examples \( -name '*.cpp' -o -name '*.h' \) -print0 |
  xargs -0 -n 20 -P "$(nproc)" clang-format $how ||
  { say "these sources aren't laid out as the others: ./ventara format does it"; exit 1; }
