#!/usr/bin/env python3
"""Compares what the console shows with the reference pictures in tests/pictures, or renews these.

tests/pictures/BOARD.txt is a script that is played on that simulated board; each of its screenshots has a reference of
its name. A pixel counts as different when a channel is off by more than 32 of 255, so that another version of the
program that renders the artwork isn't taken for a mistake. What differs is left in build/pictures, beside a picture
that shows where.
"""
import argparse
import glob
import os
import subprocess
import sys
import tempfile

import pngfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
REFERENCES = os.path.join(ROOT, "tests", "pictures")
CHANNEL_TOLERANCE = 32
PIXEL_TOLERANCE = 40  # of 786432


def play(program, board, script, folder):
    """The screenshots of a script, by name."""
    subprocess.run([os.path.abspath(program), "--board", board, "--script", script], cwd=folder, check=True)
    return {os.path.basename(path): path for path in sorted(glob.glob(os.path.join(folder, "*.png")))}


def compare(reference, shown):
    """Number of different pixels, and a picture of where they are: white on the dimmed picture shown."""
    count, rows = 0, []
    for a, b in zip(reference.rows, shown.rows):
        row = bytearray(value // 3 for value in b)
        if a != b:
            for at in range(0, len(a), 3):
                if any(abs(a[at + i] - b[at + i]) > CHANNEL_TOLERANCE for i in range(3)):
                    row[at:at + 3] = b"\xff\xff\xff"
                    count += 1
        rows.append(bytes(row))
    return count, pngfile.Picture(shown.width, shown.height, rows)


def main():
    parser = argparse.ArgumentParser(prog="ventara pictures", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--renew", action="store_true", help="make what the console shows now the reference")
    parser.add_argument("--program", default=os.path.join(ROOT, "build", "release", "ventara"), metavar="FILE",
                        help="the hosted console (default: build/release/ventara)")
    parser.add_argument("--output", default=os.path.join(ROOT, "build", "pictures"), metavar="FOLDER",
                        help="where pictures that differ go (default: build/pictures)")
    options = parser.parse_args()
    wrong, compared = [], set()
    for script in sorted(glob.glob(os.path.join(REFERENCES, "*.txt"))):
        board = os.path.basename(script)[:-len(".txt")]
        with tempfile.TemporaryDirectory(prefix="ventara-pictures-") as folder:
            for name, path in play(options.program, board, script, folder).items():
                compared.add(name)
                target, shown = os.path.join(REFERENCES, name), pngfile.read(path)
                if options.renew:
                    pngfile.write(target, shown)
                    continue
                if not os.path.isfile(target):
                    wrong.append(f"{name} has no reference")
                    continue
                count, difference = compare(pngfile.read(target), shown)
                if count > PIXEL_TOLERANCE:
                    os.makedirs(options.output, exist_ok=True)
                    pngfile.write(os.path.join(options.output, name), shown)
                    pngfile.write(os.path.join(options.output, "where-" + name), difference)
                    wrong.append(f"{name}: {count} pixels differ; see {options.output}")
    for name in sorted(os.listdir(REFERENCES)):
        if name.endswith(".png") and name not in compared:
            wrong.append(f"{name} is a reference that no script shows")
    for text in wrong:
        print(text)
    if wrong:
        sys.exit(1)
    print(f"{len(compared)} pictures {'renewed' if options.renew else 'are as they should be'}")


if __name__ == "__main__":
    main()
