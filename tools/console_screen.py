"""What the console's first screen has to look like, on whatever machine."""
import os
import subprocess
import tempfile

from PIL import Image

from machine import difference

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))

HOSTED = os.environ.get("VENTARA_HOSTED", os.path.join(ROOT, "build", "release", "ventara"))

# Where the screen holds text (the two worlds have fonts of their own) or live numbers and pictures of them.
LIVE = (
    (774, 86, 64, 19), (855, 86, 64, 19), (936, 86, 44, 19),  # titles of About, Help and Exit
    (300, 156, 634, 21), (276, 189, 690, 19),  # fan titles, fan readouts
    (109, 304, 51, 94), (181, 304, 57, 94),    # names and readouts of the temperature sources
    (310, 232, 90, 19),                        # title of the chart panel
    (872, 260, 86, 106),                       # the legend's numbers
    (600, 262, 173, 241),                      # the newest half minute of the chart
    (535, 562, 130, 19), (682, 562, 130, 19), (829, 562, 130, 19),  # titles of the command buttons
    (66, 601, 80, 19), (66, 625, 895, 19),     # caption of the gauges, voltages
    (66, 662, 895, 19), (66, 686, 895, 19),    # bars, names
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


# The hosted console as the machine's looks before anybody has moved the mouse.
UNTOUCHED = ("pointer 512 384", "turn 3", "tick 3")


def make_hosted_picture(script=UNTOUCHED):
    """What the hosted console shows at the end of the script's lines."""
    with tempfile.TemporaryDirectory(prefix="ventara-hosted-") as folder:
        path, picture = os.path.join(folder, "script"), os.path.join(folder, "hosted.png")
        with open(path, "w", encoding="ascii") as file:
            file.write("\n".join(script) + f"\nscreenshot {picture}\n")
        subprocess.run([HOSTED, "--script", path], check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                       timeout=60)
        with Image.open(picture) as hosted:
            return hosted.convert("RGB")


def see_console(machine, hosted):
    """Waits for the console, until the screen is the hosted one outside text and live numbers; gives the picture."""
    machine.wait_for_console()
    return machine.look_until(lambda now: not difference(now, hosted, LIVE), what="the console's first screen")


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
