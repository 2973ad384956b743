#!/usr/bin/python3
"""Plays docs/tour.txt on the hosted console and makes the pictures of the documents from it.

Leaves docs/pictures/tour.png, an animated PNG in the tour's own time with one picture for each `tick` line, and the
still pictures of the table below. The tour runs on the virtual clock, so the same console gives the same files.
"""
import argparse
import os
import re
import subprocess
import sys
import tempfile

from PIL import Image, PngImagePlugin

from pictures import largest_steps, read

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
TICK_MILLISECONDS = 200
LAST_MILLISECONDS = 2000  # the last picture stands before the animation starts over

# Pictures of the documents: name, screenshot of the tour, and the part of the screen (left, top, right, bottom).
SCREEN = (0, 0, 1024, 768)
PANEL = (266, 110, 978, 592)
STILLS = (
    ("console.png", "tour-start.png", SCREEN),
    ("temperatures.png", "tour-source.png", (46, 250, 272, 420)),
    ("voltages.png", "tour-start.png", (46, 586, 982, 722)),
    ("chart.png", "tour-curve-changed.png", PANEL),
    ("drag-node.png", "tour-drag-node.png", PANEL),
    ("drag-thumb.png", "tour-drag-thumb.png", PANEL),
    ("fixed-level.png", "tour-level-changed.png", PANEL),
    ("full-speed.png", "tour-full-speed.png", PANEL),
    ("about.png", "tour-about.png", (286, 226, 616, 386)),
    ("help.png", "tour-help.png", (286, 145, 716, 435)),
)


def add_frames(script):
    """The script with a screenshot behind each `tick`, and (file, milliseconds) of each."""
    lines, frames = [], []
    for line in script.splitlines():
        lines.append(line)
        tick = re.fullmatch(r"tick(?:\s+(\d+))?", line.split("#")[0].strip())
        if tick:
            name = f"frame-{len(frames):03}.png"
            frames.append((name, int(tick[1] or 1) * TICK_MILLISECONDS))
            lines.append(f"screenshot {name}")
    return "\n".join(lines) + "\n", frames


def show_change(before, now):
    """The picture, see-through where nothing has changed."""
    change = Image.new("RGBA", now.size, (255, 0, 255, 0))  # of a colour that isn't shown anywhere
    change.paste(now, mask=largest_steps(before, now).point(lambda step: 255 if step else 0))
    return change


def main():
    parser = argparse.ArgumentParser(prog="ventara tour", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", default=os.path.join(ROOT, "build", "release", "ventara"), metavar="FILE",
                        help="the hosted console (default: build/release/ventara)")
    parser.add_argument("--output", default=os.path.join(ROOT, "docs", "pictures"), metavar="FOLDER",
                        help="where the pictures go (default: docs/pictures)")
    options = parser.parse_args()
    if not os.path.isfile(options.program):
        sys.exit(f"{options.program} isn't there: make it with ./ventara build")
    with open(os.path.join(ROOT, "docs", "tour.txt"), encoding="utf-8") as file:
        script, frames = add_frames(file.read())
    os.makedirs(options.output, exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="ventara-tour-") as folder:
        with open(os.path.join(folder, "tour.txt"), "w", encoding="utf-8") as file:
            file.write(script)
        subprocess.run([os.path.abspath(options.program), "--script", "tour.txt"], cwd=folder, check=True)
        for name, shot, part in STILLS:
            read(os.path.join(folder, shot)).crop(part).save(os.path.join(options.output, name), optimize=True)
        times = [time for _, time in frames[:-1]] + [LAST_MILLISECONDS]
        pictures = [read(os.path.join(folder, name)) for name, _ in frames]
        path = os.path.join(options.output, "tour.png")
        pictures[0].convert("RGBA").save(path, save_all=True, append_images=list(map(show_change, pictures, pictures[1:])),
                                         duration=times, loop=0, blend=PngImagePlugin.Blend.OP_OVER, optimize=True)
    with Image.open(path) as animation:
        count = animation.n_frames
    print(f"{path}: {count} pictures, {os.path.getsize(path)} bytes")


if __name__ == "__main__":
    main()
