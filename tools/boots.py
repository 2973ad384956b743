#!/usr/bin/python3
"""Boots the console in a virtual PC again and again, on one machine after another.

In each boot the first screen has to be the hosted console's outside text and live numbers, and the console has to return
with success when it is left. Ends at the first boot that goes wrong; its logs and its screen are then in build/boots/.
"""
import argparse
import os
import shutil
import sys
import tempfile
import time

import image
import qemu
from console_screen import HOSTED, MACHINES, leave_console, make_hosted_picture, see_console
from machine import Machine

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def keep_traces(machine, folder):
    """What the machine of a failed boot leaves."""
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    for name in ("debug.log", "serial.log"):
        with open(os.path.join(folder, name), "w", encoding="latin-1") as file:
            file.write(machine.log(name))
    try:
        machine.look().save(os.path.join(folder, "screen.png"))
    except (RuntimeError, OSError):
        pass  # the machine has ended, and its logs say what there is to say


def boot(disk, name, hosted, folder):
    """One boot: None if it went well, else what went wrong."""
    try:
        return visit(disk, name, hosted, folder)
    except AssertionError as refused:
        return str(refused)


def visit(disk, name, hosted, folder):
    with Machine(disk, show_log=False, **MACHINES[name]) as machine:
        try:
            see_console(machine, hosted)
            status = leave_console(machine)
            if status == "Success":
                return None
            problem = f"the console returned {status}"
        except (TimeoutError, RuntimeError, OSError) as failure:
            problem = str(failure)
        keep_traces(machine, folder)
        return problem


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--boots", type=int, default=200, metavar="N", help="how many (default: 200)")
    parser.add_argument("--machine", choices=sorted(MACHINES), action="append",
                        help="a machine to boot; may be given again (default: each in turn)")
    parser.add_argument("--firmware", default=os.path.join(ROOT, "build", "firmware"), metavar="FOLDER",
                        help="where the images are (default: build/firmware)")
    options = parser.parse_args()
    places = [(os.path.join(options.firmware, source), place) for source, place in image.PLACES]
    for path in (HOSTED, *(source for source, _ in places)):
        if not os.path.isfile(path):
            sys.exit(f"{path} isn't there: build it first (./ventara build)")
    names = options.machine or list(MACHINES)
    folder = os.path.join(ROOT, "build", "boots")
    times = {name: [] for name in names}
    with tempfile.TemporaryDirectory(prefix="ventara-boots-") as temporary:
        disk = os.path.join(temporary, "disk.img")
        image.make_image(disk, places)
        hosted = make_hosted_picture()
        for number in range(options.boots):
            name = names[number % len(names)]
            start = time.monotonic()
            problem = boot(disk, name, hosted, folder)
            if problem is not None:
                sys.exit(f"boot {number + 1} of {options.boots}, {name}: {problem}; see {folder}")
            times[name].append(time.monotonic() - start)
            print(f"boot {number + 1} of {options.boots}, {name}: {times[name][-1]:.1f} s", flush=True)
    for name in names:
        if times[name]:
            print(f"{name}: {len(times[name])} boots, {min(times[name]):.1f} to {max(times[name]):.1f} s")
    print(f"{options.boots} boots without a failure")


if __name__ == "__main__":
    try:
        main()
    except qemu.MissingTool as missing:
        sys.exit(str(missing))
    except KeyboardInterrupt:
        sys.exit(130)
