#!/usr/bin/env python3
"""Boots ventara.img in QEMU with OVMF, in a window or without one.

The firmware's variable store is copied for every run, and the image is written to a snapshot that is thrown away, so
that nothing of a run stays behind.
"""
import argparse
import os
import shutil
import signal
import subprocess
import sys
import tempfile

FIRMWARE_PAIRS = (
    ("/usr/share/OVMF/OVMF_CODE_4M.fd", "/usr/share/OVMF/OVMF_VARS_4M.fd"),
    ("/usr/share/OVMF/OVMF_CODE.fd", "/usr/share/OVMF/OVMF_VARS.fd"),
    ("/usr/share/edk2/x64/OVMF_CODE.4m.fd", "/usr/share/edk2/x64/OVMF_VARS.4m.fd"),
    ("/usr/share/edk2/ovmf/OVMF_CODE.fd", "/usr/share/edk2/ovmf/OVMF_VARS.fd"),
)
# A firmware with Secure Boot on, which trusts a key that everybody has: for trying signed images.
SECURE_BOOT_PAIR = ("/usr/share/OVMF/OVMF_CODE_4M.secboot.fd", "/usr/share/OVMF/OVMF_VARS_4M.snakeoil.fd")
SECURE_BOOT_KEY = ("/usr/share/ovmf/PkKek-1-snakeoil.key", "/usr/share/ovmf/PkKek-1-snakeoil.pem")
SECURE_BOOT_PASSWORD = "snakeoil"

# What stands for a mouse and for a keyboard, as USB devices. The PS/2 ones sit at one controller, so a machine has both of
# them or neither: it has them if one is asked for, and a machine whose mouse is to be missing needs a USB keyboard. A
# tablet gives the window a pointer without grabbing it.
POINTERS = {"ps2": [], "tablet": ["usb-tablet,id=pointer"], "mouse": ["usb-mouse,id=pointer"], "none": []}
KEYBOARDS = {"ps2": [], "usb": ["usb-kbd"], "none": []}

# What stands for a graphics adapter: a usual one; one whose memory is too small for 1024 by 768; one with three bytes a
# pixel; one that takes pictures by the firmware's calls alone; the same with a dense display; two usual ones; two kinds
# together; or none.
GRAPHICS = {
    "std": ["VGA"],
    "small": ["VGA,vgamem_mb=2"],
    "packed": ["cirrus-vga"],
    "virtio": ["virtio-gpu-pci"],
    "dense": ["virtio-gpu-pci,edid=on,xres=3840,yres=2160"],
    "two": ["VGA", "secondary-vga"],
    "mixed": ["VGA", "virtio-gpu-pci"],
    "none": [],
}

NETWORKS = {"none": [], "e1000": ["e1000,netdev=net"], "virtio": ["virtio-net-pci,netdev=net"]}


class MissingTool(Exception):
    pass


def find_qemu():
    path = shutil.which("qemu-system-x86_64")
    if path is None:
        raise MissingTool("qemu-system-x86_64 isn't installed: apt-get install qemu-system-x86")
    return path


def find_firmware():
    """The code image and the variable store of OVMF."""
    for code, variables in FIRMWARE_PAIRS:
        if os.path.isfile(code) and os.path.isfile(variables):
            return code, variables
    raise MissingTool("OVMF, the firmware for QEMU, isn't installed: apt-get install ovmf")


def make_arguments(image, folder, *, memory=256, accel="tcg", pointer="ps2", keyboard="ps2", graphics="std",
                   network="none", processor=None, secure_boot=False, more_images=(), trace=(), keep=False):
    """The command line up to what shows the display. folder takes the copied variable store and the logs; more_images are
    disks behind the first, and trace names events that go into trace.log. With keep, what is written to the disks stays in
    their images."""
    code, variables = SECURE_BOOT_PAIR if secure_boot else find_firmware()
    store = os.path.join(folder, "variables.fd")
    shutil.copyfile(variables, store)
    os.chmod(store, 0o600)
    machine = f"q35,accel={accel}"
    if secure_boot:
        machine += ",smm=on"
    if "ps2" not in (pointer, keyboard):
        machine += ",i8042=off"
    usb = POINTERS[pointer] + KEYBOARDS[keyboard]
    devices = GRAPHICS[graphics] + (["qemu-xhci"] if usb else []) + usb + NETWORKS[network]
    return [
        find_qemu(), "-machine", machine, "-m", str(memory), "-nodefaults", "-no-user-config", "-vga", "none",
        "-drive", f"if=pflash,format=raw,unit=0,readonly=on,file={code}",
        "-drive", f"if=pflash,format=raw,unit=1,file={store}",
        *(argument for disk in (image, *more_images)
          for argument in ("-drive", f"if=ide,format=raw,snapshot={'off' if keep else 'on'},file={disk}")),
        "-debugcon", f"file:{os.path.join(folder, 'debug.log')}", "-global", "isa-debugcon.iobase=0x402",
        "-serial", f"file:{os.path.join(folder, 'serial.log')}",
        *(["-cpu", processor] if processor else []),  # else an old one, with SSE3 at most
        "-qmp", f"unix:{os.path.join(folder, 'qmp.sock')},server=on,wait=off",
        *(["-netdev", "user,id=net,restrict=on"] if NETWORKS[network] else []),
        *(argument for device in devices for argument in ("-device", device)),
        *(argument for event in trace for argument in ("-trace", event)),
        *(("-D", os.path.join(folder, "trace.log")) if trace else ()),
        # Only the firmware itself may write the variable store, or Secure Boot would be a word.
        *(["-global", "driver=cfi.pflash01,property=secure,value=on"] if secure_boot else []),
    ]


def find_display(qemu):
    """The window that this QEMU can open."""
    listed = subprocess.run([qemu, "-display", "help"], capture_output=True, text=True, check=False).stdout.split()
    for name in ("gtk", "sdl"):
        if name in listed:
            return name
    raise MissingTool("this QEMU can't open a window: apt-get install qemu-system-gui, or use --headless")


def run(arguments):
    """Runs the machine to its end. It doesn't outlive this command."""
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    with subprocess.Popen(arguments, stdin=subprocess.DEVNULL) as process:
        try:
            return process.wait()
        finally:
            process.kill()


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    parser = argparse.ArgumentParser(prog="ventara qemu", description=__doc__)
    parser.add_argument("--image", default=os.path.join(root, "build", "ventara.img"), metavar="FILE",
                        help="the disk image (default: build/ventara.img)")
    parser.add_argument("--memory", type=int, default=256, metavar="MIB", help="memory in MiB (default: 256)")
    parser.add_argument("--accel", default="tcg", metavar="NAME",
                        help="accelerator: tcg works everywhere, kvm is faster where it works (default: tcg)")
    parser.add_argument("--pointer", choices=sorted(POINTERS), default=None,
                        help="the machine's pointing device (default: tablet with a window, ps2 without)")
    parser.add_argument("--headless", action="store_true",
                        help="no window: QMP socket, debug log and serial log in a folder, which is printed")
    options = parser.parse_args()
    if not os.path.isfile(options.image):
        sys.exit(f"{options.image} isn't there: make it with ./ventara image")
    pointer = options.pointer or ("ps2" if options.headless else "tablet")
    try:
        with tempfile.TemporaryDirectory(prefix="ventara-qemu-") as folder:
            arguments = make_arguments(options.image, folder, memory=options.memory, accel=options.accel,
                                       pointer=pointer)
            if options.headless:
                arguments += ["-display", "none"]
                for name in ("qmp.sock", "debug.log", "serial.log"):
                    print(os.path.join(folder, name), flush=True)
            else:
                arguments += ["-display", find_display(arguments[0])]
            sys.exit(run(arguments))
    except MissingTool as problem:
        sys.exit(str(problem))
    except KeyboardInterrupt:
        sys.exit(130)


if __name__ == "__main__":
    main()
