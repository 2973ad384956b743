#!/usr/bin/python3
"""Times the console on OVMF in QEMU, display by display, and tells where the time goes.

An image of its own stands in the starter's place and starts the console again and again in one boot, half of the times with
a clock around each firmware call. For each display it tells
  - the start, from the entry to the whole first picture, in milliseconds,
  - a turn of the console left alone, in microseconds: the mean over the shortest of each of the round's fourteen turns,
  - turns in a second then, its five ticks included,
  - the blocks of one pixel in the start, and what each of them takes,
  - and, of the start, of a turn at rest and of a tick, how long each kind of firmware call took and how many there were.
Where a display layer shows the picture in its own size, the console is played without the layer too: each block is then
sent by itself.

Of the kinds, `console` is the console's own work, with that of the firmware's timers in it; `display` its blocks, without
what the layer sends on from them, which is `adapter`; `identity` what identifiers are made of, the calendar above all.

The processor is emulated (QEMU's TCG), which makes vector instructions dearer than on a machine, and access to a device
cheaper or dearer. The figures compare displays and versions of the console, and don't tell what a machine takes. Accounts are
those of the quickest start, of the quickest half second and of the quickest play; how much of a processor the machine got
stands in the last column. Where that is less than all, take the least times for the true ones.
"""
import argparse
import os
import sys
import tempfile
import time

import image
from machine import Machine
import qemu

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
DISPLAYS = ("std", "virtio", "packed", "small")  # of qemu.GRAPHICS
WAYS = {"as-it-is": "as it is", "layer": "layer", "no-layer": "no layer"}
CASES = {"start": ("a start", "ms", 1e3), "rest": ("a turn at rest", "us", 1), "tick": ("a turn with a tick", "us", 1)}


class Account:
    """What was said of one display and way; times in microseconds."""

    def __init__(self):
        self.starts, self.rests, self.turns, self.singles, self.single_times = [], [], [], 0, []
        self.shares = {}  # of a case: (times, calls) of the shortest
        self.share_of_processor = 0  # that the machine got

    def add(self, what, numbers, clock, places):
        if what == "plain":
            start, self.singles, single_time, rest, *windows = numbers
            self.starts.append(start / clock)
            self.rests.append(rest / clock)
            self.single_times.append(single_time / clock / max(self.singles, 1))
            self.turns += [turns * clock / took * 1e6 for turns, took in zip(windows[::2], windows[1::2])]
            return
        of, times, calls = max(numbers[0], 1), numbers[1:places + 1], numbers[places + 1:]
        times, calls = [each / of / clock for each in times], [each / of for each in calls]
        if what not in self.shares or sum(times) < sum(self.shares[what][0]):
            self.shares[what] = times, calls


def measure(display, images, accounts):
    """Boots on the display until everything is said; gives the names of the places."""
    with tempfile.TemporaryDirectory(prefix="ventara-bench-") as folder:
        disk = os.path.join(folder, "disk.img")
        image.make_image(disk, [(os.path.join(images, name), place) for name, place in (
            ("ventara-bench.efi", "EFI/BOOT/BOOTX64.EFI"), ("ventara.efi", "ventara.efi"),
            ("ventara-board.efi", "ventara-board.efi"))])
        with Machine(disk, graphics=display, show_log=False) as machine:
            clock, places, began, ran = 1, [], time.monotonic(), machine.run_time()
            while True:
                word, *words = machine.wait_for("bench: ", timeout=180).split()
                if word == "clock":
                    clock = int(words[0]) / 1000
                elif word == "places":
                    places, began, ran = words, time.monotonic(), machine.run_time()
                elif word == "done":
                    return places
                elif word in WAYS:
                    account = accounts.setdefault((display, word), Account())
                    account.share_of_processor = (machine.run_time() - ran) / (time.monotonic() - began)
                    account.add(words[0], [int(number) for number in words[1:]], clock, len(places))
                    if words[0] == "plain":
                        print(f"{display}, {WAYS[word]}: play {len(account.starts)}", file=sys.stderr, flush=True)
                else:
                    raise RuntimeError(" ".join(["the bench's image said:", word, *words]))


def span(numbers, form):
    least, most = format(min(numbers), form), format(max(numbers), form)
    return least if least == most else f"{least} to {most}"


def print_accounts(accounts, places):
    names = {key: f"{qemu.GRAPHICS[key[0]][0]}, {WAYS[key[1]]}" for key in accounts}
    width = max(map(len, names.values()))
    print(f"\n{'':{width}}  {'start, ms':>14}  {'turn, us':>14}  {'turns in a second':>18}  {'single pixels':>13}  {'us each':>14}  {'processor':>9}")
    for key, account in accounts.items():
        print(f"{names[key]:{width}}  {span([start / 1000 for start in account.starts], '.0f'):>14}  "
              f"{span(account.rests, '.1f'):>14}  {span(account.turns, '.0f'):>18}  {account.singles:13}  {span(account.single_times, '.2f'):>14}  {account.share_of_processor:9.0%}")
    for case, (title, unit, scale) in CASES.items():
        print(f"\n{title}, {unit}, and calls\n{'':{width}} " + "".join(f"{name:>9}" for name in ("all", *places)))
        for key, account in accounts.items():
            times, calls = account.shares[case]
            print(f"{names[key]:{width}} " + "".join(f"{each / scale:9.1f}" for each in (sum(times), *times)))
            print(f"{'':{width}} " + " " * 9 + "".join(f"{each:9.0f}" if case == "start" else f"{each:9.1f}" for each in calls))


def main():
    parser = argparse.ArgumentParser(prog="ventara bench --firmware", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("displays", nargs="*", metavar="DISPLAY",
                        help=f"{', '.join(name for name in qemu.GRAPHICS if name != 'none')} (default: {' '.join(DISPLAYS)})")
    parser.add_argument("--images", default=os.path.join(ROOT, "build", "firmware"), metavar="FOLDER",
                        help="where the firmware images are (default: build/firmware)")
    options = parser.parse_args()
    unknown = [name for name in options.displays if name not in qemu.GRAPHICS or name == "none"]
    if unknown:
        parser.error(f"there is no display {unknown[0]!r}")
    if not os.path.isfile(os.path.join(options.images, "ventara-bench.efi")):
        sys.exit(f"{options.images}/ventara-bench.efi isn't there: build the firmware images first (./ventara build)")
    accounts, places = {}, []
    try:
        for display in options.displays or DISPLAYS:
            places = measure(display, options.images, accounts)
    except (qemu.MissingTool, RuntimeError, TimeoutError) as problem:
        sys.exit(str(problem))
    except KeyboardInterrupt:
        sys.exit(130)
    print_accounts(accounts, places)


if __name__ == "__main__":
    main()
