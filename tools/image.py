#!/usr/bin/env python3
"""Makes ventara.img, a disk image for a USB stick or for QEMU: a GPT disk with one EFI system partition.

The same files give the same bytes: every identifier in the image is fixed, and so is the time stamp of its files.
Needs mtools. The SHA-256 of the image is written beside it.
"""
import argparse
import binascii
import hashlib
import os
import shutil
import struct
import subprocess
import sys
import tempfile
import uuid

SECTOR = 512
PARTITION_START = 2048  # sectors; a megabyte, as partitioning tools do it
PARTITION_SECTORS = 48 * 2048
TABLE_SECTORS = 32  # 128 entries of 128 bytes
DISK_SECTORS = PARTITION_START + PARTITION_SECTORS + 1 + TABLE_SECTORS

DISK_GUID = uuid.UUID("5d1c8b3e-7c43-4a0e-9d41-2b8f0a6c1e57")
PARTITION_GUID = uuid.UUID("a3f2c60d-91be-4f7c-8a55-6e0d4b17c928")
EFI_SYSTEM_PARTITION = uuid.UUID("c12a7328-f81f-11d2-ba4b-00a0c93ec93b")
VOLUME_ID = "56454e54"
DEFAULT_TIME = 1767225600  # 2026-01-01; SOURCE_DATE_EPOCH takes its place

# Where a file of build/firmware goes on the volume.
PLACES = (
    ("BOOTX64.efi", "EFI/BOOT/BOOTX64.EFI"),
    ("ventara.efi", "ventara.efi"),
    ("ventara-board.efi", "ventara-board.efi"),
)


def make_protective_mbr(disk_sectors):
    entry = struct.pack("<B3sB3sII", 0, b"\x00\x02\x00", 0xEE, b"\xff\xff\xff", 1, disk_sectors - 1)
    return bytes(446) + entry + bytes(48) + b"\x55\xaa"


def make_header(own_sector, other_sector, table_sector, table):
    head = struct.pack("<8sIIIIQQQQ16sQIII", b"EFI PART", 0x10000, 92, 0, 0, own_sector, other_sector,
                       2 + TABLE_SECTORS, DISK_SECTORS - TABLE_SECTORS - 2, DISK_GUID.bytes_le, table_sector,
                       128, 128, binascii.crc32(table))
    crc = binascii.crc32(head)
    return (head[:16] + struct.pack("<I", crc) + head[20:]).ljust(SECTOR, b"\x00")


def make_table():
    entry = struct.pack("<16s16sQQQ72s", EFI_SYSTEM_PARTITION.bytes_le, PARTITION_GUID.bytes_le, PARTITION_START,
                        PARTITION_START + PARTITION_SECTORS - 1, 0, "Ventara".encode("utf-16-le"))
    return entry.ljust(TABLE_SECTORS * SECTOR, b"\x00")


def run_mtools(arguments, time):
    # mtools reads its own clock from SOURCE_DATE_EPOCH; the zone decides how that is written down.
    environment = dict(os.environ, SOURCE_DATE_EPOCH=str(time), TZ="UTC", MTOOLS_SKIP_CHECK="1", LC_ALL="C")
    done = subprocess.run(arguments, env=environment, stdin=subprocess.DEVNULL, capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"{' '.join(arguments)}: {done.stderr.strip() or done.stdout.strip()}")


def make_volume(path, places, time):
    with open(path, "wb") as volume:
        volume.truncate(PARTITION_SECTORS * SECTOR)
    run_mtools(["mformat", "-i", path, "-F", "-c", "1", "-H", str(PARTITION_START), "-T", str(PARTITION_SECTORS),
                "-h", "16", "-s", "63", "-v", "VENTARA", "-N", VOLUME_ID, "::"], time)
    made = set()
    for source, place in places:
        folder = ""
        for part in place.split("/")[:-1]:
            folder += "/" + part
            if folder not in made:
                run_mtools(["mmd", "-i", path, "::" + folder], time)
                made.add(folder)
        with tempfile.NamedTemporaryFile(dir=os.path.dirname(path)) as copy:
            shutil.copyfile(source, copy.name)
            os.utime(copy.name, (time, time))
            run_mtools(["mcopy", "-m", "-i", path, copy.name, "::/" + place], time)


def make_image(output, places, time=None):
    """Writes the image with places, pairs of a file and its path on the volume; gives its SHA-256."""
    if time is None:
        time = int(os.environ.get("SOURCE_DATE_EPOCH", DEFAULT_TIME))
    table = make_table()
    with tempfile.TemporaryDirectory() as folder:
        volume_path = os.path.join(folder, "volume")
        make_volume(volume_path, places, time)
        with open(volume_path, "rb") as volume:
            content = volume.read()
    disk = (make_protective_mbr(DISK_SECTORS) + make_header(1, DISK_SECTORS - 1, 2, table) + table)
    disk = disk.ljust(PARTITION_START * SECTOR, b"\x00") + content
    disk += table + make_header(DISK_SECTORS - 1, 1, DISK_SECTORS - TABLE_SECTORS - 1, table)
    digest = hashlib.sha256(disk).hexdigest()
    os.makedirs(os.path.dirname(os.path.abspath(output)), exist_ok=True)
    with open(output, "wb") as image:
        image.write(disk)
    with open(output + ".sha256", "w", encoding="ascii") as sums:
        sums.write(f"{digest}  {os.path.basename(output)}\n")
    return digest


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--firmware", default=os.path.join(root, "build", "firmware"), metavar="FOLDER",
                        help="where the images are (default: build/firmware)")
    parser.add_argument("--output", default=os.path.join(root, "build", "ventara.img"), metavar="FILE",
                        help="the image to write (default: build/ventara.img)")
    options = parser.parse_args()
    for tool in ("mformat", "mmd", "mcopy"):
        if shutil.which(tool) is None:
            sys.exit(f"{tool} isn't installed: apt-get install mtools")
    places = []
    for name, place in PLACES:
        source = os.path.join(options.firmware, name)
        if not os.path.isfile(source):
            sys.exit(f"{source} isn't there: build the firmware images first (./ventara build)")
        places.append((source, place))
    digest = make_image(options.output, places)
    print(f"{options.output}\n{digest}")


if __name__ == "__main__":
    main()
