#!/usr/bin/env python3
"""Tries the disk image that tools/image.py makes: its partition table, its volume, and that it can be made again."""
import hashlib
import json
import os
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
sys.path.insert(0, os.path.join(ROOT, "tools"))
import image  # noqa: E402

FIRMWARE = os.environ.get("VENTARA_FIRMWARE", os.path.join(ROOT, "build", "firmware"))


def make(folder, name="disk.img", time=None):
    path = os.path.join(folder, name)
    places = [(os.path.join(FIRMWARE, source), place) for source, place in image.PLACES]
    return path, image.make_image(path, places, time)


class DiskImage(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="ventara-image-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def test_the_same_files_give_the_same_bytes_and_another_date_gives_others(self):
        one, digest = make(self.folder, "one.img", 1000000000)
        two, _ = make(self.folder, "two.img", 1000000000)
        with open(one, "rb") as first, open(two, "rb") as second:
            content = first.read()
            self.assertEqual(content, second.read())
        self.assertEqual(hashlib.sha256(content).hexdigest(), digest)
        with open(one + ".sha256", encoding="ascii") as sums:
            self.assertEqual(sums.read(), f"{digest}  one.img\n")
        self.assertNotEqual(make(self.folder, "three.img", 1000000002)[1], digest)

    def test_both_partition_tables_hold_and_name_one_efi_system_partition(self):
        path, _ = make(self.folder)
        self.check_partition(path)
        with open(path, "r+b") as disk:
            disk.seek(512)
            disk.write(bytes(512))  # without the first header the second one counts
        self.check_partition(path)

    def check_partition(self, path):
        run = subprocess.run(["sfdisk", "--json", path], check=True, stdout=subprocess.PIPE, env={"PATH": image.PATH})
        table = json.loads(run.stdout)["partitiontable"]
        self.assertEqual((table["label"], len(table["partitions"])), ("gpt", 1))
        partition = table["partitions"][0]
        self.assertEqual(partition["type"], "C12A7328-F81F-11D2-BA4B-00A0C93EC93B")
        self.assertEqual(partition["start"], image.PARTITION_START)
        with open(path, "rb") as disk:
            disk.seek(512 * partition["start"] + 510)
            self.assertEqual(disk.read(2), b"\x55\xaa")

    def test_the_volume_holds_the_three_images_as_they_are(self):
        path, _ = make(self.folder)
        volume = f"{path}@@{image.PARTITION_START * 512}"
        for source, place in image.PLACES:
            read = subprocess.run(["mtype", "-i", volume, "::/" + place], check=True, stdout=subprocess.PIPE).stdout
            with open(os.path.join(FIRMWARE, source), "rb") as file:
                self.assertEqual(read, file.read(), place)


if __name__ == "__main__":
    unittest.main(verbosity=2)
