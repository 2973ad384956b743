"""What the console's first screen has to look like, on whatever machine."""
import math
import os
import subprocess
import tempfile

from PIL import Image

from machine import HEIGHT, WIDTH, difference

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))

HOSTED = os.environ.get("VENTARA_HOSTED", os.path.join(ROOT, "build", "release", "ventara"))

# Where the screen holds live numbers and pictures of them. All else is the same in both worlds, letters included.
LIVE = (
    (281, 189, 634, 19),                       # fan readouts
    (181, 304, 40, 94),                        # readouts of the temperature sources
    (600, 262, 173, 241),                      # the newest half minute of the chart
    (66, 625, 895, 19), (66, 662, 895, 19),    # voltages, and their bars
)

EXIT = (956, 96)  # on the Exit button

# Machines on which the console works, with what stands out about them; the arguments are those of Machine.
MACHINES = {
    "a usual machine": {},
    "128 MiB": {"memory": 128},
    "4 GiB": {"memory": 4096},
    "no mouse": {"pointer": "none", "keyboard": "usb"},
    "no keyboard": {"pointer": "tablet", "keyboard": "none"},
    "a network card": {"network": "e1000"},
    "a virtual network card": {"network": "virtio"},
    "two displays": {"graphics": "two"},
    "displays of two kinds": {"graphics": "mixed"},
}


# What the board driver says on the console's screen where it has found no chip, as in a virtual machine.
SIMULATED = "string 22 Voltages - a simulation: all numbers here are invented"
# The hosted console as the machine's looks before anybody has moved the mouse.
UNTOUCHED = (SIMULATED, "pointer 512 384", "turn 3", "tick 3")


def on_panel(box, size):
    """Where the box (x, y, width, height) of the console's picture stands on a display of that size."""
    times = min(size[0] // WIDTH, size[1] // HEIGHT) or min(size[0] / WIDTH, size[1] / HEIGHT)
    left, top = int(size[0] - times * WIDTH) // 2, int(size[1] - times * HEIGHT) // 2
    x, y, width, height = box
    x_end, y_end = math.ceil((x + width) * times), math.ceil((y + height) * times)
    x, y = int(x * times), int(y * times)
    return left + x, top + y, x_end - x, y_end - y


def make_hosted_picture(script=UNTOUCHED, size=(WIDTH, HEIGHT)):
    """What the hosted console shows on a display of that size at the end of the script's lines."""
    with tempfile.TemporaryDirectory(prefix="ventara-hosted-") as folder:
        path, picture = os.path.join(folder, "script"), os.path.join(folder, "hosted.png")
        with open(path, "w", encoding="ascii") as file:
            file.write("\n".join(script) + f"\nscreenshot {picture}\n")
        subprocess.run([HOSTED, "--panel", f"{size[0]}x{size[1]}", "--script", path], check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                       timeout=60)
        with Image.open(picture) as hosted:
            return hosted.convert("RGB")


def see_console(machine, hosted):
    """Waits for the console, until the screen is the hosted one outside live numbers; gives the picture."""
    machine.wait_for_console()
    live = [on_panel(box, hosted.size) for box in LIVE]
    return machine.look_until(lambda now: not difference(now, hosted, live), what="the console's first screen")


def leave_console(machine):
    """Leaves the console by what the machine has to leave it by; gives the status that it returned."""
    if machine.keyboard != "none":
        machine.key("esc")
        status = machine.wait_for("ventara: returned ")
    else:
        machine.move_tablet(*EXIT)
        status = machine.press(says="ventara: returned ")
    machine.wait_for("ventara: menu")
    return status
