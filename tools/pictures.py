#!/usr/bin/python3
"""Compares the reference pictures of the whole screen with what the console shows.

Each script in tests/pictures plays on the virtual clock and ends with a screenshot, which is held against the picture
of the same name beside it. A line `# board NAME` in a script picks its board. For each picture that differs, a picture
of three parts goes to the output folder: the reference, the screen as it is now, and the pixels that differ.
"""
import argparse
import functools
import os
import re
import subprocess
import sys
import tempfile

from PIL import Image, ImageChops

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDER = os.path.join(ROOT, "tests", "pictures")
INVISIBLE_STEPS = 3  # what another version of the SVG renderer may round differently, and nobody sees
MARK = (255, 0, 255)


def scripts(names):
    known = sorted(name[:-len(".txt")] for name in os.listdir(FOLDER) if name.endswith(".txt") and name != "CMakeLists.txt")
    for name in names:
        if name not in known:
            sys.exit(f"there is no picture {name}; there are: {' '.join(known)}")
    return names or known


def board_of(script):
    match = re.search(r"^# board (\S+)$", script, re.MULTILINE)
    return match[1] if match else "full"


def read(path):
    with Image.open(path) as picture:
        return picture.convert("RGB")


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
        return read(os.path.join(folder, name + ".png"))


def largest_steps(old, new):
    """For each pixel the largest step of a colour channel between two pictures."""
    return functools.reduce(ImageChops.lighter, ImageChops.difference(old, new).split())


def write_difference(path, old, new, places):
    """Reference, present screen, and the differing pixels on a dark copy of the reference, side by side."""
    parts = Image.new("RGB", (3 * old.width, old.height))
    parts.paste(old, (0, 0))
    parts.paste(new, (old.width, 0))
    parts.paste(old.point(lambda value: value // 3), (2 * old.width, 0))
    parts.paste(MARK, (2 * old.width, 0), places)
    parts.save(path)


def compare(name, new, output):
    """One line on what a picture shows; true when it is as the reference."""
    reference = os.path.join(FOLDER, name + ".png")
    difference = os.path.join(output, name + ".png")
    if os.path.exists(difference):
        os.remove(difference)
    if not os.path.exists(reference):
        print(f"{name}: there is no reference picture; --renew makes it")
        return False
    old = read(reference)
    if old.size != new.size:
        print(f"{name}: the screen is {new.width} by {new.height}, the reference {old.width} by {old.height}")
        return False
    steps = largest_steps(old, new)
    places = steps.point(lambda step: 255 if step > INVISIBLE_STEPS else 0)
    if places.getbbox() is None:
        print(f"{name}: as the reference")
        return True
    os.makedirs(output, exist_ok=True)
    write_difference(difference, old, new, places)
    left, top, right, bottom = places.getbbox()
    print(f"{name}: {places.histogram()[255]} pixels differ, by up to {steps.getextrema()[1]} steps, in x {left} to {right - 1}, "
          f"y {top} to {bottom - 1}; see {difference}")
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
            new.save(os.path.join(FOLDER, name + ".png"), optimize=True)
            print(f"{name}: renewed")
        else:
            same = compare(name, new, options.output) and same
    sys.exit(0 if same else 1)


if __name__ == "__main__":
    main()
