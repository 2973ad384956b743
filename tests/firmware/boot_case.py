"""What the tests on firmware share: disk images to boot, reference pictures, and the places on the screen.

Where the firmware images are comes from VENTARA_FIRMWARE (build/firmware), the hosted command for reference pictures from
VENTARA_HOSTED (build/release/ventara). VENTARA_ACCEL names QEMU's accelerator (tcg). With VENTARA_PICTURES set to a
folder, the screens that were looked at are left there.
"""
import os
import shutil
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tools"))
import image  # noqa: E402
import qemu  # noqa: E402
from console_screen import HOSTED, make_hosted_picture  # noqa: E402
from machine import difference, part  # noqa: E402

FIRMWARE = os.environ.get("VENTARA_FIRMWARE", os.path.join(ROOT, "build", "firmware"))

FIRST_TAB = (275, 118, 98, 62)  # the first fan's tab looks different while its page isn't on top
SECOND_TAB = (420, 140)         # a place to click
READOUTS = ((181, 304, 40, 19), (181, 341, 40, 19), (281, 189, 40, 19), (380, 189, 40, 19))


def keep(picture, name):
    folder = os.environ.get("VENTARA_PICTURES")
    if folder:
        os.makedirs(folder, exist_ok=True)
        picture.save(os.path.join(folder, name.replace(" ", "-").removesuffix(".png") + ".png"))
    return picture


def differ(picture, other, box):
    """Whether two screens differ in the box (x, y, width, height)."""
    return difference(part(picture, *box), part(other, *box)) is not None


def shows_other_page(picture, other):
    return differ(picture, other, FIRST_TAB)


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
        path = os.path.join(self.folder, f"disk{len(os.listdir(self.folder))}.img")
        image.make_image(path, places)
        return path

    def hosted_picture(self, *script, **picture):
        """What the hosted console shows, before anybody has touched it or as make_hosted_picture is told."""
        if not os.path.exists(HOSTED):
            self.skipTest(f"{HOSTED} isn't built")
        return make_hosted_picture(*script, **picture)

    def problem_of(self, machine):
        """Waits for the starter to tell of a problem, and gives what it says as one line."""
        end = "ventara: problem\n"
        machine.wait_for(end)
        page = machine.log()[:machine.marks["debug.log"]].split(end)[-2]
        lines = [line[len("ventara: | "):] for line in page.splitlines() if line.startswith("ventara: | ")]
        return " ".join(" ".join(lines).split())


def main():
    try:
        qemu.find_qemu()
        qemu.find_firmware()
    except qemu.MissingTool as problem:
        sys.exit(str(problem))
    unittest.main(verbosity=2)
