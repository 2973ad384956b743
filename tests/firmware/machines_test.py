#!/usr/bin/python3
"""Boots the firmware images on machines that lack something or have more than usual, starts the console many times in one
boot, and tries hardened images.

It takes the environment of boot_case.py. VENTARA_STARTS says how often Starts starts the console (100), and
VENTARA_HARDENED where hardened images are (build/hardened).
"""
import json
import os
import subprocess
import sys
import tempfile

import boot_case  # and with it the way to tools/
from boot_case import BootCase, READOUTS, ROOT, differ, keep
from console_screen import HOSTED, MACHINES, leave_console, see_console
from machine import Machine
import qemu

HARDENED = os.environ.get("VENTARA_HARDENED", os.path.join(ROOT, "build", "hardened"))


class MoreMachines(BootCase):
    def see_console(self, machine, name):
        return keep(see_console(machine, self.hosted_picture()), name)

    def test_the_console_comes_up_and_leaves_on_every_machine(self):
        for name in MACHINES:
            with self.subTest(name), Machine(self.make_image(), **MACHINES[name]) as machine:
                self.see_console(machine, name)
                self.assertEqual(leave_console(machine), "Success")

    def test_with_neither_keyboard_nor_mouse_the_readings_go_on(self):
        with Machine(self.make_image(), keyboard="none", pointer="none") as machine:
            first = self.see_console(machine, "neither")
            machine.look_until(lambda now: any(differ(now, first, box) for box in READOUTS),
                               what="another reading")

    def test_the_console_comes_up_on_each_graphics_adapter(self):
        for device in ("bochs-display", "qxl-vga", "ramfb", "virtio-vga", "vmware-svga"):
            with self.subTest(device):
                qemu.GRAPHICS[device] = [device]
                with Machine(self.make_image(), graphics=device) as machine:
                    self.see_console(machine, device)
                    self.assertEqual(leave_console(machine), "Success")


class Starts(BootCase):
    def see_calls(self, words):
        """What the start asked of this firmware is what it asks of the hosted one, call for call."""
        here = {words[at]: int(words[at + 1]) for at in range(0, len(words), 2)}
        with tempfile.TemporaryDirectory() as folder:
            script, trace = os.path.join(folder, "script"), os.path.join(folder, "trace")
            with open(script, "w") as out:
                out.write("turn\nkey esc\nturn\n")
            subprocess.run([HOSTED, "--script", script, "--trace", trace, "--trace-pool"], check=True,
                           capture_output=True)
            hosted = dict.fromkeys(here, 0)
            with open(trace) as lines:
                for line in map(json.loads, lines):
                    if line.get("turn") == 0:
                        name = "CreateEvent" if line["call"] == "CreateEventEx" else line["call"]
                        if name in hosted:
                            hosted[name] += 1
        print("calls until the first picture", here, file=sys.stderr)
        self.assertGreater(here["Blt"], 1000, "calls aren't counted")
        self.assertEqual(here, hosted)

    def test_start_after_start_leaves_pages_handles_and_events_as_they_were(self):
        starts = int(os.environ.get("VENTARA_STARTS", "100"))
        with Machine(self.make_image(starter="ventara-soak.efi")) as machine:
            self.assertEqual(machine.wait_for("soak: driver: "), "Success")
            rows = []
            for start in range(starts + 2):
                if start == 1:
                    self.see_calls(machine.wait_for("soak: calls: ").split())
                words = machine.wait_for(f"soak: start {start}: ").split()
                rows.append({words[at]: words[at + 1] for at in range(0, len(words), 2)})
                row = rows[-1]
                if start > 0:
                    self.assertEqual(row["returned"], "Success")
                    self.assertGreater(int(row["turns"]), 0)
                    self.assertGreater(int(row["created"]), int(rows[-2]["created"]), "events aren't counted")
                self.assertEqual(row["handles"], rows[0]["handles"], f"start {start}")
                self.assertEqual(row["created"], row["closed"], f"start {start}")
            # The first start of a boot makes the firmware's own pool larger.
            self.assertEqual({row["pages"] for row in rows[1:]}, {rows[1]["pages"]})
            print(f"{starts} starts: pages, handles, events", [(rows[at]["pages"], rows[at]["handles"],
                  int(rows[at]["created"]) - int(rows[at]["closed"])) for at in (0, 1, -1)], rows[-1]["created"],
                  "events made", file=sys.stderr)


class Hardened(BootCase):
    """Images built with VENTARA_HARDEN; the other cases are run with them by VENTARA_FIRMWARE."""

    def test_as_released_nothing_of_it_is_in_the_images(self):
        for name in ("ventara.efi", "ventara-board.efi", "BOOTX64.efi"):
            for folder, wanted in ((HARDENED, True), (boot_case.FIRMWARE, False)):
                with open(os.path.join(folder, name), "rb") as file:
                    self.assertEqual(b"a written-over stack" in file.read(), wanted, f"{folder}/{name}")


if __name__ == "__main__":
    boot_case.main()
