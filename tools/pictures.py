#!/usr/bin/env python3
"""Compares the reference pictures of the whole screen with what the console shows.

Each script in tests/pictures plays on the virtual clock and ends with a screenshot, which is held against the picture
of the same name beside it. A line `# board NAME` in a script picks its board. For each picture that differs, a picture
of three parts goes to the output folder: the reference, the screen as it is now, and the pixels that differ.
"""
import argparse
import os
import re
import subprocess
import sys
import tempfile

import pngfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDER = os.path.join(ROOT, "tests", "pictures")
INVISIBLE_STEPS = 3  # what another version of the SVG renderer may round differently, and nobody sees
MARK = b"\xff\x00\xff"


def scripts(names):
    known = sorted(name[:-len(".txt")] for name in os.listdir(FOLDER) if name.endswith(".txt") and name != "CMakeLists.txt")
    for name in names:
        if name not in known:
            sys.exit(f"there is no picture {name}; there are: {' '.join(known)}")
    return names or known


def board_of(script):
    match = re.search(r"^# board (\S+)$", script, re.MULTILINE)
    return match[1] if match else "full"


def show(program, name):
    """The screen at the end of a script."""
    path = os.path.join(FOLDER, name + ".txt")
    with open(path, encoding="utf-8") as file:
        board = board_of(file.read())
    with tempfile.TemporaryDirectory(prefix="ventara-pictures-") as folder:
        run = subprocess.run([os.path.abspath(program), "--board", board, "--script", path], cwd=folder,
                             capture_output=True, text=True, check=False)
        if run.returncode != 0:
            sys.exit(f"{name}: the console ended with {run.returncode}\n{run.stderr}")
        return pngfile.read(os.path.join(folder, name + ".png"))


def differing_pixels(old, new):
    """Places (x, y) at which a person might see a difference, and the largest step of a colour channel."""
    places, largest = [], 0
    for y, (a, b) in enumerate(zip(old.rows, new.rows)):
        if a == b:
            continue
        for x in range(old.width):
            step = max(abs(a[at] - b[at]) for at in range(3 * x, 3 * x + 3))
            if step > INVISIBLE_STEPS:
                places.append((x, y))
                largest = max(largest, step)
    return places, largest


def write_difference(path, old, new, places):
    """Reference, present screen, and the differing pixels on a dark copy of the reference, side by side."""
    marked = [bytearray(value // 3 for value in row) for row in old.rows]
    for x, y in places:
        marked[y][3 * x:3 * x + 3] = MARK
    rows = [bytes(a) + bytes(b) + bytes(c) for a, b, c in zip(old.rows, new.rows, marked)]
    pngfile.write(path, pngfile.Picture(3 * old.width, old.height, rows))


def compare(name, new, output):
    """One line on what a picture shows; true when it is as the reference."""
    reference = os.path.join(FOLDER, name + ".png")
    difference = os.path.join(output, name + ".png")
    if os.path.exists(difference):
        os.remove(difference)
    if not os.path.exists(reference):
        print(f"{name}: there is no reference picture; --renew makes it")
        return False
    old = pngfile.read(reference)
    if (old.width, old.height) != (new.width, new.height):
        print(f"{name}: the screen is {new.width} by {new.height}, the reference {old.width} by {old.height}")
        return False
    places, largest = differing_pixels(old, new)
    if not places:
        print(f"{name}: as the reference")
        return True
    os.makedirs(output, exist_ok=True)
    write_difference(difference, old, new, places)
    xs, ys = [x for x, _ in places], [y for _, y in places]
    print(f"{name}: {len(places)} pixels differ, by up to {largest} steps, in x {min(xs)} to {max(xs)}, "
          f"y {min(ys)} to {max(ys)}; see {difference}")
    return False


def main():
    parser = argparse.ArgumentParser(prog="ventara pictures", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("names", nargs="*", metavar="NAME", help="only these pictures (default: all)")
    parser.add_argument("--renew", action="store_true", help="make the screen as it is now the reference")
    parser.add_argument("--program", default=os.path.join(ROOT, "build", "release", "ventara"), metavar="FILE",
                        help="the hosted console (default: build/release/ventara)")
    parser.add_argument("--output", default=os.path.join(ROOT, "build", "pictures"), metavar="FOLDER",
                        help="where pictures of differences go (default: build/pictures)")
    options = parser.parse_args()
    if not os.path.isfile(options.program):
        sys.exit(f"{options.program} isn't there: make it with ./ventara build")
    same = True
    for name in scripts(options.names):
        new = show(options.program, name)
        if options.renew:
            pngfile.write(os.path.join(FOLDER, name + ".png"), new)
            print(f"{name}: renewed")
        else:
            same = compare(name, new, options.output) and same
    sys.exit(0 if same else 1)


if __name__ == "__main__":
    main()
