#!/usr/bin/env python3
"""Boots the firmware images in QEMU and tries them as a person would.

Where the images are comes from VENTARA_FIRMWARE (build/firmware), the hosted command for reference pictures from
VENTARA_HOSTED (build/release/ventara). VENTARA_ACCEL names QEMU's accelerator (tcg). With VENTARA_PICTURES set to a
folder, the screens that were looked at are left there.
"""
import os
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tools"))
import image  # noqa: E402
import qemu  # noqa: E402
from console_screen import HOSTED, LIVE, make_hosted_picture  # noqa: E402
from machine import Machine, bounds  # noqa: E402

FIRMWARE = os.environ.get("VENTARA_FIRMWARE", os.path.join(ROOT, "build", "firmware"))

# A corner of the screen outside the frame, as a place for the pointer where it covers nothing that is compared.
OUT_OF_THE_WAY = (8, 740)

# The first fan's tab looks different while its page isn't on top.
ABOUT_BUTTON = (805, 95)
CHECK_BOX = (289, 234, 6, 14)  # the left of the box of the first page; the pointer's tip stands beside it
ABOUT_BOX = (300, 240, 60, 137)  # the left of the About page's box: of the chart behind it nothing moves there
FIRST_TAB = (275, 118, 98, 62)
SHELL_TEXT = (240, 105)  # where the shell's text begins: 100 columns by 31 rows in the middle of 1280 by 800
READOUTS = ((181, 304, 40, 19), (181, 341, 40, 19), (281, 189, 40, 19), (380, 189, 40, 19))


def keep(picture, name):
    folder = os.environ.get("VENTARA_PICTURES")
    if folder:
        os.makedirs(folder, exist_ok=True)
        picture.save(os.path.join(folder, name + ".ppm"))
    return picture


def is_black(picture):
    return not any(picture.pixels)


def check_box(now):
    return now.crop(*CHECK_BOX).pixels


def is_parked(picture):
    """Whether the pointer, the only thing that bright there, is out of the way."""
    spot = picture.crop(*OUT_OF_THE_WAY, 10, 16)
    return any(min(spot.at(x, y)) > 220 for y in range(spot.height) for x in range(spot.width))


def park(machine, wanted=lambda picture: True):
    """Moves the pointer out of the way; gives the picture once it is there and shows what is wanted."""
    machine.move_to(*OUT_OF_THE_WAY)
    return machine.look_until(lambda now: is_parked(now) and wanted(now), what="the picture wanted behind the pointer")


def shows_other_page(picture, other):
    return not picture.crop(*FIRST_TAB).same(other.crop(*FIRST_TAB))


class BootCase(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="ventara-test-")
        self.addCleanup(shutil.rmtree, self.folder, True)

    def make_image(self, starter="BOOTX64.efi", console="ventara.efi", driver="ventara-board.efi", extra=()):
        """A disk image with these files in the three places, and more; None leaves a place empty."""
        places = []
        for source, place in ((starter, "EFI/BOOT/BOOTX64.EFI"), (console, "ventara.efi"),
                              (driver, "ventara-board.efi"), *extra):
            if source is not None:
                places.append((os.path.join(FIRMWARE, source), place))
        path = os.path.join(self.folder, "disk.img")
        image.make_image(path, places)
        return path

    def hosted_picture(self, script):
        """What the hosted console shows at the end of the script's lines."""
        if not os.path.exists(HOSTED):
            self.skipTest(f"{HOSTED} isn't built")
        return make_hosted_picture(script)

    def problem_of(self, machine):
        """Waits for the starter to tell of a problem, and gives what it says as one line."""
        machine.wait_for("ventara: problem")
        lines = [line[len("ventara: | "):] for line in machine.log().splitlines() if line.startswith("ventara: | ")]
        return " ".join(" ".join(lines).split())


class ConsoleOnFirmware(BootCase):
    def test_the_console_runs_comes_back_and_keeps_its_view_until_the_reset(self):
        with Machine(self.make_image()) as machine:
            machine.wait_for_console()
            first = keep(park(machine), "first")
            with self.subTest("the picture is the hosted one outside text and live numbers"):
                self.check_against_hosted(first)
            with self.subTest("the pointer is where it was moved to"):
                self.check_pointer(machine)
            with self.subTest("readouts live"):
                machine.look_until(lambda now: any(not now.crop(*box).same(first.crop(*box)) for box in READOUTS),
                                   what="another reading")
            with self.subTest("a click changes the page, Escape comes back with success"):
                machine.click(420, 140)
                second_page = keep(park(machine, lambda now: shows_other_page(now, first)), "second-page")
                machine.key("esc")
                self.assertEqual(machine.wait_for("ventara: returned "), "Success")
                machine.wait_for("ventara: menu")
                keep(machine.look(), "menu")
            with self.subTest("a second start in the same boot shows the page that was left"):
                machine.key("ret")
                machine.wait_for_console()
                again = keep(park(machine), "second-start")
                self.assertFalse(shows_other_page(again, second_page))
                machine.click(956, 96)  # the Exit button
                self.assertEqual(machine.wait_for("ventara: returned "), "Success")
                machine.wait_for("ventara: menu")
            with self.subTest("after a reset the first page is back"):
                machine.key("r")
                machine.wait_for("ventara: reset")
                machine.wait_for_console()
                after_reset = keep(park(machine), "after-reset")
                self.assertFalse(shows_other_page(after_reset, first))
            with self.subTest("the firmware's boot menu is a key away"):
                machine.press("right")
                self.assertEqual(machine.wait_for("ventara: returned "), "Success")
                machine.wait_for("ventara: menu")
                machine.key("b")
                self.assertEqual(machine.wait_for("ventara: board driver unloaded: "), "Success")
                machine.wait_for("ventara: boot menu")
                machine.look_until(lambda now: (now.width, now.height) != (1024, 768) or
                                   not now.crop(0, 0, 100, 30).same(first.crop(0, 0, 100, 30)),
                                   what="the firmware's menu")

    def test_a_page_of_information_opens_and_a_node_can_be_dragged(self):
        middle, node, above = (300, 300, 420, 170), (385, 445, 24, 24), (385, 395, 24, 24)
        with Machine(self.make_image()) as machine:
            machine.wait_for_console()
            first = park(machine)
            machine.click(805, 96)  # About
            keep(park(machine, lambda now: not now.crop(*middle).same(first.crop(*middle))), "about")
            machine.key("esc")
            park(machine, lambda now: now.crop(*middle).same(first.crop(*middle)))
            machine.move_to(397, 457)  # the first node
            machine.drag_to(397, 407)
            dragged = keep(park(machine, lambda now: not now.crop(*node).same(first.crop(*node))), "dragged")
            self.assertFalse(dragged.crop(*above).same(first.crop(*above)), "the node isn't where it was dropped")

    def check_against_hosted(self, first):
        x, y = OUT_OF_THE_WAY
        hosted = keep(self.hosted_picture([f"pointer {x} {y}", "turn 3", "tick 3"]), "hosted")
        different = first.differences(hosted, LIVE)
        self.assertEqual(bounds(different), None, f"{len(different)} pixels differ")

    def check_pointer(self, machine):
        # On the plain margin left of the frame and right of it: the arrow's tip is the pixel moved to.
        clean = machine.look()
        for x, y in ((10, 300), (1000, 420)):
            machine.move_to(x, y)
            box = (0 if x < 512 else 986, y - 40, 38, 80)

            def tip(now):
                changed = bounds(now.crop(*box).differences(clean.crop(*box)))
                return changed and (box[0] + changed[0], box[1] + changed[1])

            machine.look_until(lambda now: tip(now) == (x, y), what=f"the pointer's tip at {x}, {y}")


class Tour(BootCase):
    def test_the_tour_can_be_walked_on_firmware(self):
        """The steps of docs/tour.txt, by the machine's own mouse and keyboard."""
        with open(os.path.join(ROOT, "docs", "tour.txt"), encoding="utf-8") as file:
            steps = [line.split("#")[0].split() for line in file]
        with Machine(self.make_image()) as machine:
            machine.wait_for_console()
            held, last, at = False, None, (0, 0)
            for words in filter(None, steps):
                if words[0] == "pointer":
                    to = int(words[1]), int(words[2])
                    if held:
                        machine.move_by(to[0] - at[0], to[1] - at[1], step=4)
                    else:
                        machine.move_to(*to)
                    at = to
                elif words[0] == "left":
                    held = words[1] == "down"
                    machine.button("left", held)
                    time.sleep(0.02)  # a click is shorter than 185 ms
                elif words[0] == "key":
                    machine.key({"enter": "ret"}.get(words[1], words[1]))
                elif words[0] == "screenshot":
                    with self.subTest(words[1]):
                        last = keep(machine.look_until(lambda now, before=last: before is None or not now.same(before),
                                                       what=f"anything new at {words[1]}"), words[1])
                elif words[0] == "tick":
                    time.sleep(0.2)
            self.assertEqual(machine.wait_for("ventara: returned "), "Success")


class OtherMice(BootCase):
    def test_a_tablet_at_usb_points_and_clicks(self):
        # A keyboard at USB too: its keys arrive only while nothing holds the task priority up.
        with Machine(self.make_image(), pointer="tablet", keyboard="usb") as machine:
            machine.wait_for("ventara: USB tablet")
            machine.wait_for_console()
            machine.move_tablet(*OUT_OF_THE_WAY)
            first = machine.look_until(is_parked, what="the pointer")
            for close in ("key", "button"):
                machine.move_tablet(805, 94)
                machine.press()
                machine.look_until(lambda now: now.crop(*ABOUT_BOX).differences(first.crop(*ABOUT_BOX)), what="the page")
                if close == "key":
                    machine.key("ret")
                else:
                    machine.move_tablet(447, 350)
                    machine.press()
                machine.move_tablet(*OUT_OF_THE_WAY)
                machine.look_until(lambda now: is_parked(now) and
                                   not now.crop(*ABOUT_BOX).differences(first.crop(*ABOUT_BOX)),
                                   what=f"the screen behind the page, closed by {close}")
            # Press, release and press again faster than the console's turns: one click, and nothing while it is held.
            machine.move_tablet(296, 241)
            hovered = machine.look_until(lambda now: check_box(now) != check_box(first), what="the hovered box")
            for down in (True, False, True):
                machine.button("left", down)
            machine.look_until(lambda now: check_box(now) != check_box(hovered), what="the clicked box")
            time.sleep(1)
            clicked = machine.look()
            self.assertNotEqual(check_box(clicked), check_box(hovered))
            for _ in range(8):
                time.sleep(0.1)
                self.assertEqual(check_box(machine.look()), check_box(clicked), "the click is repeated")
            machine.button("left", False)
            time.sleep(0.5)
            machine.press()
            machine.look_until(lambda now: check_box(now) == check_box(hovered), what="the box clicked again")
            machine.move_tablet(420, 140)
            machine.press()
            machine.move_tablet(*OUT_OF_THE_WAY)
            machine.look_until(lambda now: is_parked(now) and shows_other_page(now, first), what="another page")
            machine.move_tablet(956, 96)
            machine.press()
            self.assertEqual(machine.wait_for("ventara: returned "), "Success")

    def test_a_mouse_at_usb_points_and_clicks_also_after_it_was_pulled_out(self):
        with Machine(self.make_image(), pointer="mouse") as machine:
            machine.wait_for("ventara: USB mouse")
            machine.wait_for_console()
            for _ in range(2):
                machine.command("device_del", id="pointer")
                time.sleep(2)  # the console goes on without it
                machine.command("device_add", driver="usb-mouse", id="pointer")
                machine.wait_for("ventara: USB mouse")
            machine.click(956, 96)
            self.assertEqual(machine.wait_for("ventara: returned "), "Success")


class WhatIsMissing(BootCase):
    def test_a_missing_driver_is_told_in_words_and_a_key_leads_on(self):
        with Machine(self.make_image(driver=None)) as machine:
            problem = self.problem_of(machine)
            self.assertIn(r"The file \ventara-board.efi is missing", problem)
            self.assertIn("Press any key", problem)
            keep(machine.look(), "problem")
            machine.key("spc")
            machine.wait_for("ventara: menu")
            machine.key("ret")  # tries again, and finds it missing again
            machine.wait_for("ventara: problem")

    def test_a_machine_without_a_display_is_told_in_words(self):
        with Machine(self.make_image(), graphics="none") as machine:
            self.assertIn("no graphics display", self.problem_of(machine))
            machine.key("spc")
            machine.wait_for("ventara: menu")

    def test_a_damaged_console_is_told_in_words(self):
        path = os.path.join(self.folder, "damaged.efi")
        with open(os.path.join(FIRMWARE, "ventara.efi"), "rb") as whole, open(path, "wb") as damaged:
            damaged.write(whole.read()[:1500])
        with Machine(self.make_image(console=path)) as machine:
            self.assertIn(r"The file \ventara.efi is damaged", self.problem_of(machine))
            machine.key("spc")
            machine.wait_for("ventara: menu")

    def test_without_a_board_the_console_ends_and_draws_nothing_and_the_driver_leaves_nothing_behind(self):
        with Machine(self.make_image(starter="ventara-probe.efi")) as machine:
            self.assertEqual(machine.wait_for("probe: console without a board: "), "Protocol Error")
            self.assertEqual(machine.wait_for("probe: pixels changed: "), "0")
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


class OtherDisplays(BootCase):
    def test_the_console_is_shown_whatever_the_display_can_do(self):
        for graphics, size in (("small", (800, 600)), ("packed", (1024, 768)), ("virtio", (1024, 768))):
            with self.subTest(graphics), Machine(self.make_image(), graphics=graphics) as machine:
                machine.wait_for_console()
                self.assertIn(f"ventara: display {size[0]}x{size[1]}, by a layer", machine.log())
                before = machine.look()
                self.assertEqual((before.width, before.height), size)
                self.assertFalse(is_black(before))
                machine.click(*ABOUT_BUTTON)
                machine.look_until(lambda now: not now.same(before), what="the page that About opens")
                machine.key("ret")
                machine.key("esc")
                self.assertEqual(machine.wait_for("ventara: returned "), "Success")
                machine.wait_for("ventara: menu")
                machine.key("v")
                machine.wait_for("ventara: display ")


class FromTheShell(BootCase):
    def test_driver_and_console_start_from_the_firmware_shell_and_leave_with_it(self):
        # Without a starter the firmware finds nothing to boot and opens its shell.
        with Machine(self.make_image(starter=None, extra=(("BOOTX64.efi", "start.efi"),))) as machine:
            for _ in range(20):  # until the shell is there to read it; what comes early is dropped
                machine.type("load fs0:\\ventara-board.efi\n")
                if "ventara: board services installed" in machine.log():
                    break
            self.assertEqual(machine.wait_for("ventara: board services installed: "), "Success")
            machine.type("fs0:\\ventara.efi -v\n")
            machine.wait_for("Version 0.9.0 Kestrin", log_name="serial.log")
            self.assertNotIn("ventara: first screen", machine.log(), "the version alone was asked for")
            machine.type("fs0:\\ventara.efi\n")
            machine.wait_for_console()
            machine.key("esc")
            machine.wait_for("ventara: pointer closed")
            shell = machine.look()
            machine.type("fs0:\\start.efi\n")
            machine.wait_for("ventara: starter")
            machine.wait_for_console()
            self.assertNotIn("board driver loaded", machine.log(), "the services are there already")
            machine.key("esc")
            self.assertEqual(machine.wait_for("ventara: returned "), "Success")
            machine.wait_for("ventara: menu")
            machine.key("b")
            machine.wait_for("ventara: boot menu")
            # The shell gets its display back: in its mode, with nothing on it but its prompt, and with a cursor.
            self.assertNotEqual((shell.width, shell.height), (1024, 768), "the starter has a mode to change")
            prompt = SHELL_TEXT[0] + len("Shell> ") * 8, SHELL_TEXT[1]
            machine.look_until(lambda now: (now.width, now.height) == (shell.width, shell.height) and
                               is_black(now.crop(0, 200, shell.width, shell.height - 200)) and
                               is_black(now.crop(prompt[0] + 8, prompt[1], 200, 19)) and
                               not is_black(now.crop(*prompt, 8, 19)),
                               what="the shell's prompt")


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
    try:
        qemu.find_qemu()
        qemu.find_firmware()
    except qemu.MissingTool as problem:
        sys.exit(str(problem))
    unittest.main(verbosity=2)
