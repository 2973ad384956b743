#!/usr/bin/env python3
"""Tries the disk image that tools/image.py makes: its partition table, its volume, and that it can be made again."""
import binascii
import hashlib
import os
import struct
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
        with open(path, "rb") as disk:
            content = disk.read()
        sectors = len(content) // 512
        for sector, table_sector in ((1, 2), (sectors - 1, sectors - 33)):
            header = content[512 * sector:512 * sector + 92]
            (signature, _, size, crc, _, own, other, first, last, _, table, count, entry_size,
             table_crc) = struct.unpack("<8sIIIIQQQQ16sQIII", header)
            self.assertEqual((signature, size, own, other), (b"EFI PART", 92, sector, sectors - sector))
            self.assertEqual(binascii.crc32(header[:16] + b"\0\0\0\0" + header[20:]), crc)
            self.assertEqual(table, table_sector)
            entries = content[512 * table:512 * table + count * entry_size]
            self.assertEqual(binascii.crc32(entries), table_crc)
            start, end = struct.unpack_from("<QQ", entries, 32)
            self.assertEqual(entries[:16].hex(), "28732ac11ff8d211ba4b00a0c93ec93b")
            self.assertFalse(any(entries[entry_size:]), "a second partition")
            self.assertTrue(first <= start < end <= last)
            self.assertEqual(content[512 * start + 510:512 * start + 512], b"\x55\xaa")

    def test_the_volume_holds_the_three_images_as_they_are(self):
        path, _ = make(self.folder)
        volume = f"{path}@@{image.PARTITION_START * 512}"
        for source, place in image.PLACES:
            read = subprocess.run(["mtype", "-i", volume, "::/" + place], check=True, stdout=subprocess.PIPE).stdout
            with open(os.path.join(FIRMWARE, source), "rb") as file:
                self.assertEqual(read, file.read(), place)


if __name__ == "__main__":
    unittest.main(verbosity=2)
