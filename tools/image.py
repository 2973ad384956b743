#!/usr/bin/env python3
"""Makes ventara.img, a disk image for a USB stick or for QEMU: a GPT disk with one EFI system partition.

The same files give the same bytes: every identifier in the image is fixed, and so is the time stamp of its files.
Needs mtools and sfdisk. The SHA-256 of the image is written beside it.
"""
import argparse
import hashlib
import os
import shutil
import subprocess
import sys
import tempfile

SECTOR = 512
PARTITION_START = 2048  # sectors; a megabyte, as partitioning tools do it
PARTITION_SECTORS = 48 * 2048
TABLE_SECTORS = 33  # the second partition table and its header, at the end
PARTITIONS = f"""label: gpt
label-id: 5D1C8B3E-7C43-4A0E-9D41-2B8F0A6C1E57
start={PARTITION_START}, size={PARTITION_SECTORS}, type=C12A7328-F81F-11D2-BA4B-00A0C93EC93B, \
uuid=A3F2C60D-91BE-4F7C-8A55-6E0D4B17C928, name=Ventara
"""
PATH = os.environ.get("PATH", "") + ":/usr/sbin:/sbin"

VOLUME_ID = "56454e54"
DEFAULT_TIME = 1767225600  # 2026-01-01; SOURCE_DATE_EPOCH takes its place

# Where a file of build/firmware goes on the volume.
PLACES = (
    ("BOOTX64.efi", "EFI/BOOT/BOOTX64.EFI"),
    ("ventara.efi", "ventara.efi"),
    ("ventara-board.efi", "ventara-board.efi"),
)


def run(arguments, time, script=None):
    # mtools reads its own clock from SOURCE_DATE_EPOCH; the zone decides how that is written down. sfdisk stands where root
    # alone looks for commands.
    environment = dict(os.environ, SOURCE_DATE_EPOCH=str(time), TZ="UTC", MTOOLS_SKIP_CHECK="1", LC_ALL="C", PATH=PATH)
    done = subprocess.run(arguments, env=environment, input=script or "", capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"{' '.join(arguments)}: {done.stderr.strip() or done.stdout.strip()}")


def copy_files(volume, places, time):
    made = set()
    for source, place in places:
        folder = ""
        for part in place.split("/")[:-1]:
            folder += "/" + part
            if folder not in made:
                run(["mmd", "-i", volume, "::" + folder], time)
                made.add(folder)
        with tempfile.NamedTemporaryFile() as copy:
            shutil.copyfile(source, copy.name)
            os.utime(copy.name, (time, time))
            run(["mcopy", "-m", "-i", volume, copy.name, "::/" + place], time)


def make_image(output, places, time=None):
    """Writes the image with places, pairs of a file and its path on the volume; gives its SHA-256."""
    if time is None:
        time = int(os.environ.get("SOURCE_DATE_EPOCH", DEFAULT_TIME))
    os.makedirs(os.path.dirname(os.path.abspath(output)), exist_ok=True)
    with open(output, "wb") as image:
        image.truncate(SECTOR * (PARTITION_START + PARTITION_SECTORS + TABLE_SECTORS))
    run(["sfdisk", "--quiet", output], time, PARTITIONS)
    volume = f"{output}@@{SECTOR * PARTITION_START}"
    run(["mformat", "-i", volume, "-F", "-c", "1", "-H", str(PARTITION_START), "-T", str(PARTITION_SECTORS), "-h", "16",
         "-s", "63", "-v", "VENTARA", "-N", VOLUME_ID, "::"], time)
    copy_files(volume, places, time)
    with open(output, "rb") as image:
        digest = hashlib.file_digest(image, "sha256").hexdigest()
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
    for tool, package in (("mformat", "mtools"), ("mmd", "mtools"), ("mcopy", "mtools"), ("sfdisk", "fdisk")):
        if shutil.which(tool, path=PATH) is None:
            sys.exit(f"{tool} isn't installed: apt-get install {package}")
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
