#!/usr/bin/env python3
"""Tries the console on a chip's driver in the real kernel: Debian's, in a virtual machine, with a stub for the chip.

Usage: hwmon_vm.py [--program FILE] [--packages DIR] [--log FILE]

The stub, i2c-stub, holds registers and nothing else; the driver nct7802 takes it for its chip and offers a curve of five
points. The hosted console runs on that in the machine's first file system: it drags a node and is left, it cancels, and
it is killed after a drag, the second time when the driver has been loaded again and the chip's folder has become that of
another one. After each step the stubs' registers are compared with what they should hold. The packages of
kernel and busybox are taken from DIR, and fetched into it with apt-get where they aren't there. Takes a few minutes; what
the machine said is in FILE.
"""
import argparse
import glob
import os
import re
import subprocess
import sys
import tempfile

ADDRESS, OTHER = "0x28", "0x29"
TURNING = [(0x24, 0x07), (0x10, 0x40), (0x13, 0x00)]  # tachometer 1 on, and a count that makes it turn
CURVE = [(30, 64), (45, 110), (60, 160), (75, 220), (90, 255)]  # degrees and duty of the five points
FIRST_TEMPERATURE, FIRST_DUTY, MODE = 0x80, 0x85, 0x64  # registers of fan 1; the fifth point's duty has none

# The fourth node of the first page, from 75 degrees and 87.5 % to 85 degrees and 100 %.
DRAG = """tick 3
pointer 607 307
turn 2
left down
turn 4
pointer 640 290
turn 2
pointer 667 277
turn 2
advance 400000
left up
turn 4
"""
DRAGGED = [(40, 64), (45, 96), (60, 159), (85, 255), (90, 255)]
SCRIPTS = {"drag": DRAG, "cancel": DRAG + "key c\nturn 4\n", "wait": DRAG + "turn 100000000\n"}

INIT = """#!/bin/busybox sh
/bin/busybox mkdir -p /proc /sys /dev /tmp
/bin/busybox --install -s /bin
export PATH=/bin
mount -t proc none /proc; mount -t sysfs none /sys; mount -t devtmpfs none /dev
echo 1 > /proc/sys/kernel/printk
insmod /i2c-dev.ko; insmod /i2c-stub.ko chip_addr={address},{other}; insmod /nct7802.ko
for n in /sys/bus/i2c/devices/i2c-*; do
  grep -q 'SMBus stub' $n/name && bus=${{n##*-}}
done
{presets}
echo nct7802 {address} > /sys/bus/i2c/devices/i2c-$bus/new_device
cd /sys/class/hwmon/hwmon0
{points}
echo 2 > pwm1_enable
registers() {{
  echo; echo "== $1"; cat fan1_input pwm1_enable | tr '\\n' ' '; echo
  i2cdump -f -y $bus ${{2-{address}}} b | tail -n +2
}}
end() {{ kill -9 $(pidof ventara | tr ' ' '\\n' | sort -n | head -n 1); sleep 5; registers $1; }}
bind() {{ echo $bus-00${{2#0x}} > /sys/bus/i2c/drivers/nct7802/$1; }}
run() {{ /ventara --board linux --set-fans --script /$1.txt 2>&1; echo "exit $?"; }}
/ventara --list-sensors 2>&1
registers start
run drag; registers drag
cd /sys/class/hwmon/hwmon0
{points}
registers again
run cancel; registers cancel
run wait & sleep {wait}; registers wait
end killed
run wait & sleep {wait}; registers wait-again
echo nct7802 {other} > /sys/bus/i2c/devices/i2c-$bus/new_device
bind unbind {address}; bind unbind {other}; bind bind {other}; bind bind {address}
cd /sys/class/hwmon/hwmon1
registers other {other}
end moved; registers other-moved {other}
echo; echo "== end"
poweroff -f
"""


def fetch(folder, package, depends=False):
    """The package's file in the folder."""
    if depends:
        text = subprocess.run(["apt-cache", "depends", package], capture_output=True, text=True, check=True).stdout
        names = re.findall(r"Depends: (\S+)", text)
        if not names:
            sys.exit(f"hwmon_vm: apt doesn't know {package}; as root: apt-get update")
        package = names[0]
    found = glob.glob(os.path.join(folder, package + "_*.deb"))
    if not found:
        if subprocess.run(["apt-get", "download", package], cwd=folder, stdout=subprocess.DEVNULL).returncode != 0:
            sys.exit(f"hwmon_vm: {package} can't be fetched; is there a network? Perhaps, as root: apt-get update")
        found = glob.glob(os.path.join(folder, package + "_*.deb"))
    return found[0]


def unpack(deb, folder):
    subprocess.run(["dpkg-deb", "-x", deb, folder], check=True)


def copy(source, root, target):
    path = os.path.join(root, target.lstrip("/"))
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(source, "rb") as file, open(path, "wb") as out:
        out.write(file.read())
    os.chmod(path, 0o755)


def libraries(program):
    """The shared libraries of a program, and its loader."""
    text = subprocess.run(["ldd", program], capture_output=True, text=True, check=True).stdout
    return re.findall(r"(/\S+) \(0x", text)


def make_root(root, kernel, busybox, program):
    copy(os.path.join(busybox, "bin/busybox"), root, "/bin/busybox")
    for name in ("i2c-dev", "i2c-stub", "nct7802"):
        copy(glob.glob(os.path.join(kernel, f"lib/modules/*/kernel/drivers/*/{name}.ko"))[0], root, f"/{name}.ko")
    console = os.path.join(os.path.dirname(program), "libventara-console.so")
    copy(program, root, "/ventara")
    copy(console, root, "/libventara-console.so")
    for path in set(libraries(program) + libraries(console)):
        copy(path, root, path)
    for name, text in SCRIPTS.items():
        with open(os.path.join(root, name + ".txt"), "w", encoding="ascii") as file:
            file.write(text)
    presets = "\n".join(f"i2cset -y $bus {ADDRESS} {register:#x} {value:#x} b" for register, value in TURNING)
    points = "\n".join(f"echo {degrees * 1000} > pwm1_auto_point{at}_temp" +
                       ("" if at == 5 else f"; echo {duty} > pwm1_auto_point{at}_pwm")
                       for at, (degrees, duty) in enumerate(CURVE, 1))
    with open(os.path.join(root, "init"), "w", encoding="ascii") as file:
        file.write(INIT.format(address=ADDRESS, other=OTHER, presets=presets, points=points, wait=20))
    os.chmod(os.path.join(root, "init"), 0o755)


def boot(kernel, root, busybox, log):
    archive = root + ".cpio"
    with open(archive, "wb") as out:
        find = subprocess.run(["find", "."], cwd=root, capture_output=True, check=True).stdout
        subprocess.run([os.path.join(busybox, "bin/busybox"), "cpio", "-o", "-H", "newc"], cwd=root, input=find,
                       stdout=out, stderr=subprocess.DEVNULL, check=True)
    image = glob.glob(os.path.join(kernel, "boot/vmlinuz-*"))[0]
    with open(log, "wb") as out:
        subprocess.run(["qemu-system-x86_64", "-machine", "q35,accel=tcg", "-m", "1024", "-display", "none", "-nic", "none",
                        "-no-reboot", "-serial", "stdio", "-kernel", image, "-initrd", archive,
                        "-append", "console=ttyS0 quiet panic=-1"],
                       stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.STDOUT, timeout=900, check=True)
    with open(log, encoding="utf-8", errors="replace") as file:
        return file.read().replace("\r", "")


def registers_of(text, step):
    """The 256 registers of the stub after a step."""
    part = text.split(f"== {step}\n", 1)[1].split("\n== ", 1)[0]
    return [int(word, 16) for row in re.findall(r"^[0-9a-f]0:((?: [0-9a-f]{2}){16})", part, re.MULTILINE)
            for word in row.split()]


def with_curve(registers, curve):
    changed = list(registers)
    for at, (degrees, duty) in enumerate(curve):
        changed[FIRST_TEMPERATURE + at] = degrees
        if at < 4:
            changed[FIRST_DUTY + at] = duty
    return changed


def main():
    here = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    parser = argparse.ArgumentParser(usage=__doc__.split("Usage: ")[1].split("\n")[0])
    parser.add_argument("--program", default=os.path.join(here, "build/release/ventara"))
    parser.add_argument("--packages", default=os.path.join(here, "build/hwmon-vm"))
    parser.add_argument("--log", default=os.path.join(here, "build/hwmon-vm.log"))
    options = parser.parse_args()
    os.makedirs(options.packages, exist_ok=True)
    debs = {"kernel": fetch(options.packages, "linux-image-amd64", depends=True),
            "busybox": fetch(options.packages, "busybox-static")}
    with tempfile.TemporaryDirectory(prefix="hwmon-vm-") as folder:
        parts = {name: os.path.join(folder, name) for name in debs}
        for name, deb in debs.items():
            unpack(deb, parts[name])
        root = os.path.join(folder, "root")
        make_root(root, parts["kernel"], parts["busybox"], os.path.abspath(options.program))
        text = boot(parts["kernel"], root, parts["busybox"], options.log)
    if "== end\n" not in text:
        sys.exit(f"hwmon_vm: the machine didn't get to its end; see {options.log}")
    start = registers_of(text, "start")
    faults = []
    for step, wanted in (("drag", with_curve(start, DRAGGED)), ("again", start), ("cancel", start),
                         ("wait", with_curve(start, DRAGGED)), ("killed", start), ("wait-again", with_curve(start, DRAGGED)),
                         ("moved", start), ("other-moved", registers_of(text, "other"))):
        found = registers_of(text, step)
        faults += [f"{step}: register {at:#04x} holds {found[at]:#04x}, not {value:#04x}"
                   for at, value in enumerate(wanted) if found[at] != value]
    if with_curve(start, CURVE) != start:
        faults.append("start: the curve isn't in the registers where it is looked for")
    print("\n".join(faults) or "hwmon_vm: after a drag, Cancel and two kills the registers hold what they should")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
