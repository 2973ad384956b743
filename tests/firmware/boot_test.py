#!/usr/bin/python3
"""Boots the firmware images in QEMU and tries them as a person would. It takes the environment of boot_case.py."""
import json
import os
import re
import shutil
import subprocess
import time

from PIL import Image

import boot_case  # and with it the way to tools/
import image
from boot_case import BootCase, FIRMWARE, READOUTS, ROOT, SECOND_TAB, differ, keep, shows_other_page
from console_screen import EXIT, HOSTED, LIVE, SIMULATED, UNTOUCHED, on_panel, see_console
from machine import Machine, difference, part
import qemu
import tour

ABOUT = (805, 96)
ABOUT_BOX = (300, 240, 60, 137)  # the left of the About page's box: of the chart behind it nothing moves there
CHECK_BOX = (289, 234, 6, 14)    # the left of the box of the first page; the pointer's tip stands beside it
CHART = (300, 258, 474, 250)     # a walk of other length leaves other curves in the chart
LEGEND = (836, 250, 120, 130)    # the list of nodes beside the chart
ALL_GAUGES = "tick 40"  # have had their turn
ALL_READOUTS = "turn 30\n"
WHOLE = "tour-full.png"
FULL_CHART = f"pointer 20 760\ntick 420\nscreenshot {WHOLE}\n"
DROPPED_NODE = (599, 300, 14, 14)                    # where the tour drops it, above all curves
SHELL_TEXT = (240, 105)  # where the shell's text begins: 100 columns by 31 rows in the middle of 1280 by 800


def is_black(picture):
    return picture.getbbox() is None


class FirstSteps(BootCase):
    """What the quick test run has of firmware."""

    def test_the_console_comes_up_a_click_opens_a_page_and_another_one_leaves(self):
        with Machine(self.make_image()) as machine:
            first = keep(see_console(machine, self.hosted_picture()), "first")
            machine.click(*SECOND_TAB, shows=lambda now: shows_other_page(now, first), what="another page")
            self.assertEqual(machine.click(*EXIT, says="ventara: returned "), "Success")
            machine.wait_for("ventara: menu")


class ConsoleOnFirmware(BootCase):
    def test_the_console_comes_back_and_keeps_its_view_until_the_reset(self):
        with Machine(self.make_image()) as machine:
            machine.wait_for_console()
            first = machine.look()
            with self.subTest("the pointer is where it was moved to"):
                self.check_pointer(machine)
            with self.subTest("readouts live"):
                machine.look_until(lambda now: any(differ(now, first, box) for box in READOUTS), what="another reading")
            with self.subTest("Escape comes back with success"):
                machine.click(*SECOND_TAB, shows=lambda now: shows_other_page(now, first), what="another page")
                machine.key("esc")
                self.assertEqual(machine.wait_for("ventara: returned "), "Success")
                machine.wait_for("ventara: menu")
                keep(machine.look(), "menu")
            with self.subTest("a second start in the same boot shows the page that was left"):
                machine.key("ret")
                machine.wait_for_console()
                self.assertTrue(shows_other_page(keep(machine.look(), "second-start"), first))
                machine.button(True, False, name="right")
                self.assertEqual(machine.wait_for("ventara: returned "), "Success")
                machine.wait_for("ventara: menu")
            with self.subTest("after a reset the first page is back"):
                machine.key("r")
                machine.wait_for("ventara: reset")
                machine.wait_for_console()
                self.assertFalse(shows_other_page(keep(machine.look(), "after-reset"), first))
            with self.subTest("the firmware's boot menu is a key away"):
                machine.key("esc")
                machine.wait_for("ventara: menu")
                machine.key("b")
                self.assertEqual(machine.wait_for("ventara: board driver unloaded: "), "Success")
                machine.wait_for("ventara: boot menu")
                machine.look_until(lambda now: now.size != first.size or differ(now, first, (0, 0, 100, 30)),
                                   what="the firmware's menu")

    def check_pointer(self, machine):
        # On the plain margin left of the frame and right of it: the arrow's tip is the pixel moved to.
        clean = machine.look()
        for x, y in ((10, 300), (1000, 420)):
            machine.move_to(x, y)
            box = (0 if x < 512 else 986, y - 40, 38, 80)

            def tip(now):
                changed = difference(part(now, *box), part(clean, *box))
                return changed and (box[0] + changed[0], box[1] + changed[1])

            machine.look_until(lambda now: tip(now) == (x, y), what=f"the pointer's tip at {x}, {y}")


class Tour(BootCase):
    def test_the_tour_can_be_walked_on_firmware_and_shows_what_the_hosted_one_shows(self):
        """The steps of docs/tour.txt, by the machine's own mouse and keyboard, pixel for pixel.

        The board's readings stand still. Until the chart is full of them it tells how many moments have passed, and is left
        out; then nothing is.
        """
        if not os.path.exists(HOSTED):
            self.skipTest(f"{HOSTED} isn't built")
        with open(os.path.join(ROOT, "docs", "tour.txt"), encoding="utf-8") as file:
            script, _ = tour.add_frames(file.read())
        way_out = script.index("# The way out.")
        script = script[:way_out] + FULL_CHART + script[way_out:]
        script = script.replace("screenshot", ALL_READOUTS + "screenshot")
        with open(os.path.join(self.folder, "tour.txt"), "w", encoding="utf-8") as file:
            file.write("\n".join((SIMULATED, *self.still_readings(), ALL_GAUGES, script)))
        subprocess.run([os.path.abspath(HOSTED), "--script", "tour.txt"], cwd=self.folder, check=True)
        steps = re.sub(r"left down\nturn \d+\nleft up\n", "click\n", script)
        # With all that a processor has: the other boots show the pixel work of an old one.
        with Machine(self.make_image(driver="ventara-still.efi"), processor="max") as machine:
            machine.wait_for_console()
            held, clicked, at = False, False, None
            for words in filter(None, (line.split("#")[0].split() for line in steps.splitlines())):
                if words[0] == "pointer":
                    to = int(words[1]), int(words[2])
                    if held:
                        machine.move_by(to[0] - at[0], to[1] - at[1], step=4)
                    else:
                        machine.move_to(*to)
                    at = to
                elif words[0] == "click":
                    clicked = True  # pressed when it is known what it has to show
                elif words == ["left", "down"]:
                    held = True
                    machine.hold()
                elif words == ["left", "up"]:
                    held = False
                    machine.let_go()
                elif words[0] == "key":
                    machine.key({"enter": "ret"}.get(words[1], words[1]))
                elif words[0] == "screenshot":
                    with Image.open(os.path.join(self.folder, words[1])) as hosted:
                        wanted = hosted.convert("RGB")
                    whole = words[1] == WHOLE
                    without = () if whole else (CHART,)
                    spots = [DROPPED_NODE] if words[1] == "tour-curve-changed.png" else []  # in the chart
                    look = machine.press if clicked else machine.look_until
                    patience = {"timeout": 200} if whole else {}
                    keep(look(lambda now: not difference(now, wanted, without) and
                              not any(differ(now, wanted, spot) for spot in spots), what=words[1], **patience), words[1])
                    clicked = False
            self.assertTrue(clicked, "the tour ends with a click on Exit")
            self.assertEqual(machine.press(says="ventara: returned "), "Success")


    def still_readings(self):
        """What the simulated board shows at first, as lines of a script."""
        with open(os.path.join(self.folder, "first.txt"), "w", encoding="ascii") as file:
            file.write("turn 40\n")
        subprocess.run([os.path.abspath(HOSTED), "--script", "first.txt", "--trace", "first.json"], cwd=self.folder,
                       check=True)
        with open(os.path.join(self.folder, "first.json"), encoding="utf-8") as file:
            calls = [json.loads(line) for line in file if '"GetItemValue"' in line]
        return [f"reading {item} {value}" for item, value in {call["item"]: call["value"] for call in calls}.items()]


class OtherMice(BootCase):
    def test_a_tablet_and_mice_at_usb_point_and_click_and_can_be_pulled_out(self):
        # A keyboard at USB too: its keys arrive only while nothing holds the task priority up.
        with Machine(self.make_image(), pointer="tablet", keyboard="usb") as machine:
            machine.wait_for("ventara: USB tablet")
            machine.wait_for_console()
            first = machine.look()

            def shows_about(now):
                return differ(now, first, ABOUT_BOX)

            def check_box(now):
                return part(now, *CHECK_BOX).tobytes()

            for close in ("key", "button"):
                machine.move_tablet(*ABOUT)
                machine.press(shows=shows_about, what="the page")
                if close == "key":
                    machine.key("ret")
                    machine.look_until(lambda now: not shows_about(now), what="the screen behind the page")
                else:
                    machine.move_tablet(447, 350)
                    machine.press(shows=lambda now: not shows_about(now), what="the screen behind the page")
            # Press, release and press again faster than the console's turns: one click, and nothing while it is held.
            machine.move_tablet(296, 241)
            hovered = machine.look_until(lambda now: check_box(now) != check_box(first), what="the hovered box")
            machine.button(True, False, True)
            machine.button_down_seen()
            machine.button_up_seen()
            machine.button_down_seen()
            clicked = machine.look_until(lambda now: check_box(now) != check_box(hovered), what="the clicked box")
            for _ in range(8):
                time.sleep(0.1)
                self.assertEqual(check_box(machine.look()), check_box(clicked), "the click is repeated")
            machine.let_go()
            machine.press(shows=lambda now: check_box(now) == check_box(hovered), what="the box clicked again")
            machine.move_tablet(*SECOND_TAB)
            machine.press(shows=lambda now: shows_other_page(now, first), what="another page")
            for device in ("tablet", "mouse"):
                before = machine.look()
                machine.command("device_del", id="pointer")
                machine.wait_for(f"ventara: USB {device} gone")
                machine.look_until(lambda now: any(differ(now, before, box) for box in READOUTS),
                                   what="another reading without a pointer")
                machine.command("device_add", driver="usb-mouse", id="pointer")
                machine.wait_for("ventara: USB mouse")
            self.assertEqual(machine.click(*EXIT, says="ventara: returned "), "Success")


class ByKeys(BootCase):
    def test_a_node_is_dragged_without_a_mouse(self):
        moved = self.hosted_picture((*UNTOUCHED, "hand tab 2", "hand grab", "hand right", "hand up", "tick 2", "hand grab",
                                     "turn 3", "tick 20"))
        for pointer, keyboard in (("none", "usb"), ("ps2", "ps2")):
            with self.subTest(keyboard), Machine(self.make_image(), pointer=pointer, keyboard=keyboard) as machine:
                first = see_console(machine, self.hosted_picture())
                # From the middle of the screen to the nearest node, on to the next, to and fro.
                for stroke, place in ((["tab"], "487 397"), (["tab"], "577 337"), (["shift", "tab"], "487 397"),
                                      (["shift", "right"], "488 397"), (["tab"], "577 337")):
                    machine.key(*stroke)
                    machine.wait_for(f"ventara: pointer {place}\n")
                self.assertFalse(differ(machine.look(), first, LEGEND))
                for stroke, place in (("g", None), ("right", "607 337"), ("up", "607 307"), ("g", None)):
                    machine.key(stroke)
                    if place:
                        machine.wait_for(f"ventara: pointer {place}\n")
                keep(machine.look_until(lambda now: not differ(now, moved, LEGEND) and differ(now, first, LEGEND),
                                        what="the node's new place in the list"), f"keys-{keyboard}")
                machine.key("tab")  # from the node to the next one, and so to the temperatures
                machine.key("tab")
                machine.wait_for("ventara: pointer 108 312\n")
                machine.key("esc")
                self.assertEqual(machine.wait_for("ventara: returned "), "Success")


class TakingHome(BootCase):
    def test_f12_leaves_a_picture_and_a_report_on_the_volume_or_says_why_not(self):
        filler = os.path.join(self.folder, "filler")
        with open(filler, "wb") as file:
            file.truncate((image.PARTITION_SECTORS - 8192) * image.SECTOR)  # and there is no room for two pictures
        for extra, words in (((), "ventara-002.png and ventara-002.txt were written."),
                             (((filler, "filler"),), "Only ventara-002.txt was written, no picture: the volume is full.")):
            disk = self.make_image(extra=extra)
            with self.subTest(words), Machine(disk, pointer="none", keyboard="usb", keep=True) as machine:
                shown = see_console(machine, self.hosted_picture())
                for _ in range(2):
                    machine.key("f12")
                    machine.wait_for("ventara: taken home")
                    machine.key("tab")  # or the next F12 might pass for the same one, held down
                    machine.wait_for("ventara: pointer ")
                machine.key("esc")
                machine.wait_for(f"ventara: | F12: {words}")
                machine.wait_for("ventara: menu")
                keep(machine.look(), "menu-f12")
            self.assertIn(b"Sensors and fans", self.read_file(disk, "ventara-002.txt"))
            picture = os.path.join(self.folder, "home.png")
            with open(picture, "wb") as file:
                file.write(self.read_file(disk, "ventara-001.png"))
            with Image.open(picture) as home:
                self.assertIsNone(difference(home.convert("RGB"), shown, LIVE))

    def read_file(self, disk, name):
        volume = f"{disk}@@{image.SECTOR * image.PARTITION_START}"
        return subprocess.run(["mtype", "-i", volume, f"::{name}"], check=True, capture_output=True).stdout


class Displays(BootCase):
    def test_the_console_is_shown_whatever_the_display_can_do(self):
        for graphics, size in (("small", (800, 600)), ("packed", (1024, 768)), ("virtio", (1024, 768)),
                               ("dense", (3840, 2160))):
            with self.subTest(graphics), Machine(self.make_image(), graphics=graphics) as machine:
                before = keep(see_console(machine, self.hosted_picture(size=size)), f"display-{graphics}")
                self.assertIn(f"ventara: display {size[0]}x{size[1]}, by a layer", machine.log())
                box = on_panel(ABOUT_BOX, size)
                machine.click(*ABOUT, shows=lambda now: differ(now, before, box), what="the page that About opens")
                machine.key("ret")
                machine.look_until(lambda now: not differ(now, before, box), what="the screen behind the page")
                machine.key("esc")
                self.assertEqual(machine.wait_for("ventara: returned "), "Success")
                machine.wait_for("ventara: menu")
                machine.key("v")
                machine.wait_for("ventara: display ")

    def test_a_machine_without_a_display_is_told_in_words(self):
        with Machine(self.make_image(), graphics="none") as machine:
            self.assertIn("no graphics display", self.problem_of(machine))
            machine.key("spc")
            machine.wait_for("ventara: menu")


class FromTheShell(BootCase):
    """Without a starter in its usual place the firmware finds nothing to boot and opens its shell, which runs a script from
    the first disk. So many disks can be tried in one boot."""

    def test_what_is_missing_or_damaged_is_told_and_all_images_start_from_the_shell_and_leave_with_it(self):
        broken = (
            ({"driver": None}, r"The file \ventara-board.efi is missing"),
            ({"driver": self.cut("ventara-board.efi")}, r"The file \ventara-board.efi is damaged"),
            ({"console": None}, r"The file \ventara.efi is missing"),
            ({"console": self.cut("ventara.efi")}, r"The file \ventara.efi is damaged"),
        )
        script = os.path.join(self.folder, "startup.nsh")
        with open(script, "w", encoding="ascii") as file:
            file.writelines(f"fs{disk}:\\start.efi\n" for disk in range(1, 1 + len(broken)))
            file.write("fs0:\\probe.efi\nload fs0:\\ventara-board.efi\nfs0:\\ventara.efi -v\nfs0:\\ventara.efi\n"
                       "fs0:\\start.efi\n")
        start = ("BOOTX64.efi", "start.efi")
        disks = [self.make_image(starter=None, extra=(start, ("ventara-probe.efi", "probe.efi"), (script, "startup.nsh"))),
                 *(self.make_image(starter=None, extra=(start,), **files) for files, _ in broken)]
        with Machine(disks[0], more_images=disks[1:]) as machine:
            machine.wait_for("startup.nsh", log_name="serial.log", line_end="")
            machine.key("spc")  # not to wait for its seconds to pass
            for files, words in broken:
                self.try_broken(machine, words, with_driver=files.get("driver", True) is True)
            self.check_probe(machine)
            self.check_shell(machine)

    def cut(self, name):
        path = os.path.join(self.folder, "cut-" + name)
        with open(os.path.join(FIRMWARE, name), "rb") as whole, open(path, "wb") as damaged:
            damaged.write(whole.read()[:1500])
        return path

    def try_broken(self, machine, words, with_driver):
        problem = self.problem_of(machine)
        self.assertIn(words, problem)
        self.assertIn("Press any key", problem)
        keep(machine.look(), "problem")
        machine.key("spc")
        machine.wait_for("ventara: menu")
        machine.key("ret")  # tries again, and finds it so again
        self.assertIn(words, self.problem_of(machine))
        machine.key("spc")
        machine.wait_for("ventara: menu")
        machine.key("b")
        if with_driver:
            self.assertEqual(machine.wait_for("ventara: board driver unloaded: "), "Success")

    def check_probe(self, machine):
        """Without a board the console ends, and the driver leaves nothing behind."""
        self.assertEqual(machine.wait_for("probe: console without a board: "), "Protocol Error")
        free = []
        for _ in range(4):
            self.assertEqual(machine.wait_for("probe: driver started: "), "Success")
            self.assertEqual(machine.wait_for("probe: services while loaded: "), "8")
            self.assertNotEqual(machine.wait_for("probe: second copy: "), "Success")
            self.assertEqual(machine.wait_for("probe: services with a second copy: "), "8")
            self.assertEqual(machine.wait_for("probe: driver unloaded: "), "Success")
            self.assertEqual(machine.wait_for("probe: services after unloading: "), "0")
            self.assertEqual(machine.wait_for("probe: drivers left behind: "), "0")
            free.append(int(machine.wait_for("probe: free pages: ")))
        # The first rounds leave the firmware's own pool larger than it was.
        self.assertEqual(free[2], free[3])

    def check_shell(self, machine):
        self.assertEqual(machine.wait_for("ventara: board services installed: "), "Success")
        machine.wait_for("Version 0.9.0 Kestrin", log_name="serial.log")
        machine.wait_for_console()
        machine.key("esc")
        machine.wait_for("ventara: pointer closed")
        machine.wait_for("ventara: starter")
        loaded = machine.log().count("board driver loaded")
        machine.wait_for_console()
        self.assertEqual(machine.log().count("board driver loaded"), loaded, "the services are there already")
        machine.key("esc")
        self.assertEqual(machine.wait_for("ventara: returned "), "Success")
        machine.wait_for("ventara: menu")
        machine.key("b")
        machine.wait_for("ventara: boot menu")
        # The shell gets its display back: in its mode, with nothing on it but its prompt, and with a cursor.
        prompt = SHELL_TEXT[0] + len("Shell> ") * 8, SHELL_TEXT[1]
        machine.look_until(lambda now: now.size == (1280, 800) and is_black(part(now, 0, 200, 1280, 600)) and
                           is_black(part(now, prompt[0] + 8, prompt[1], 200, 19)) and
                           not is_black(part(now, *prompt, 8, 19)), what="the shell's prompt")


class SensorPorts(BootCase):
    def test_without_a_known_chip_two_ports_are_asked_and_nothing_else_is_touched(self):
        ident = [0x20, 0x21] * 2
        keys = {0x2E: [0x87, 0x01, 0x55, 0x55], 0x4E: [0x87, 0x01, 0x55, 0xAA]}
        events = ("memory_region_ops_read", "memory_region_ops_write")
        with Machine(self.make_image(), trace=events) as machine:
            machine.wait_for("ventara: starting")
            # The machine goes on writing: the last line isn't whole.
            lines = machine.log("trace.log").rpartition("\n")[0].splitlines()
            accesses = [(words[0].rpartition("_")[2], int(words[6], 16), int(words[8], 16), words[-1].strip("'"))
                        for words in map(str.split, lines)]
        # What the driver said says where in the trace it was looking.
        said, looking = "", []
        for kind, address, value, region in accesses:
            said += chr(value) if (kind, region) == ("write", "isa-debugcon") else ""
            if "ventara: ventara.ini: " in said and "ventara: simulated board" not in said:
                looking.append((kind, address, value, region))
        self.assertIn("ventara: simulated board", said)
        # By a timer's tick the firmware asks its keyboards in between.
        firmwares_own = {"isa-debugcon", "acpi-tmr", "hpet", "apic", "apic-msi", "pic", "serial", "i8042-cmd", "i8042-data"}
        self.assertLessEqual({region for *_, region in looking} - {"io"}, firmwares_own)
        touched = [access[:3] for access in looking if access[3] == "io"]
        self.assertEqual({address for _, address, _ in touched}, {0x2E, 0x2F, 0x4E, 0x4F})
        self.assertEqual([access[1:] for access in touched if access[0] == "write"], [
            (port, each) for port, key in keys.items() for each in (*ident, 0x87, 0x87, *ident, 0xAA, *key, *ident)])


class SecureBoot(BootCase):
    def setUp(self):
        super().setUp()
        for path in (*qemu.SECURE_BOOT_PAIR, *qemu.SECURE_BOOT_KEY):
            if not os.path.exists(path):
                self.skipTest(f"{path} isn't there")
        if shutil.which("sbsign") is None:
            self.skipTest("sbsign isn't installed (apt-get install sbsigntool)")
        self.key = os.path.join(self.folder, "key")
        subprocess.run(["openssl", "pkey", "-in", qemu.SECURE_BOOT_KEY[0], "-out", self.key, "-passin",
                        "pass:" + qemu.SECURE_BOOT_PASSWORD], check=True)

    def sign(self, name):
        path = os.path.join(self.folder, name)
        subprocess.run(["sbsign", "--key", self.key, "--cert", qemu.SECURE_BOOT_KEY[1], "--output", path,
                        os.path.join(FIRMWARE, name)], check=True, stderr=subprocess.PIPE)
        return path

    def test_signed_images_run(self):
        with Machine(self.make_image(*map(self.sign, ("BOOTX64.efi", "ventara.efi", "ventara-board.efi"))),
                     secure_boot=True) as machine:
            machine.wait_for_console()

    def test_an_image_that_is_not_signed_is_told_in_words(self):
        with Machine(self.make_image(self.sign("BOOTX64.efi"), driver=self.sign("ventara-board.efi")),
                     secure_boot=True) as machine:
            self.assertIn(r"Secure Boot refuses the file \ventara.efi", self.problem_of(machine))
            machine.key("spc")
            machine.wait_for("ventara: menu")


if __name__ == "__main__":
    boot_case.main()
