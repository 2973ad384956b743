"""A machine under QEMU that is driven as a person would do it: looks at its screen, moves its mouse, presses its keys.

    with Machine(image) as machine:
        machine.wait_for_console()
        machine.click(790, 90)
        picture = machine.look()

Progress is read from the machine's debug log, into which the starter and the board driver write.
"""
import json
import os
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

import pngfile
import qemu

WIDTH = 1024
HEIGHT = 768


class Picture:
    """A screen: width, height and the pixels, three bytes each, red first, row after row."""

    def __init__(self, width, height, pixels):
        self.width = width
        self.height = height
        self.pixels = pixels

    @staticmethod
    def from_ppm(data):
        fields = data.split(None, 4)  # "P6", width, height, 255; then one white space and the pixels
        width, height = int(fields[1]), int(fields[2])
        return Picture(width, height, data[len(data) - 3 * width * height:])

    @staticmethod
    def load(path):
        """The picture in a PNG file."""
        png = pngfile.read(path)
        return Picture(png.width, png.height, b"".join(png.rows))

    def at(self, x, y):
        start = 3 * (y * self.width + x)
        return tuple(self.pixels[start:start + 3])

    def crop(self, x, y, width, height):
        rows = [self.pixels[3 * ((y + row) * self.width + x):3 * ((y + row) * self.width + x + width)]
                for row in range(height)]
        return Picture(width, height, b"".join(rows))

    def same(self, other):
        return (self.width, self.height, self.pixels) == (other.width, other.height, other.pixels)

    def differences(self, other, without=()):
        """Pixels that differ, as (x, y), outside the rectangles (x, y, width, height) given."""
        if (self.width, self.height) != (other.width, other.height):
            raise ValueError(f"{self.width} by {self.height} against {other.width} by {other.height}")
        found = []
        for y in range(self.height):
            row = slice(3 * y * self.width, 3 * (y + 1) * self.width)
            mine, theirs = self.pixels[row], other.pixels[row]
            if mine == theirs:
                continue
            for x in range(self.width):
                if mine[3 * x:3 * x + 3] != theirs[3 * x:3 * x + 3] and not any(
                        left <= x < left + width and top <= y < top + height for left, top, width, height in without):
                    found.append((x, y))
        return found

    def bounds_of_differences(self, other, without=()):
        """The smallest rectangle around what differs, as (x, y, width, height); None if nothing does."""
        return bounds(self.differences(other, without))

    def save(self, path):
        with open(path, "wb") as file:
            file.write(b"P6\n%d %d\n255\n" % (self.width, self.height) + self.pixels)


def bounds(points):
    if not points:
        return None
    left, right = min(x for x, _ in points), max(x for x, _ in points)
    top, bottom = min(y for _, y in points), max(y for _, y in points)
    return left, top, right - left + 1, bottom - top + 1


class Machine:
    """One boot of an image. Always closed, and with it its QEMU, also when a test fails."""

    def __init__(self, image, pointer="ps2", keyboard="ps2", accel=None, show_log=True, **machine):
        """machine is what qemu.make_arguments takes besides."""
        self.folder = tempfile.mkdtemp(prefix="ventara-boot-")
        self.show_log = show_log
        self.pointer = pointer
        self.keyboard = keyboard
        self.process = None
        self.qmp = None
        self.position = None  # where the console's pointer is, once it is known
        self.marks = {}  # of each log, where the next wait begins
        try:
            arguments = qemu.make_arguments(image, self.folder, pointer=pointer, keyboard=keyboard,
                                            accel=accel or os.environ.get("VENTARA_ACCEL", "tcg"), **machine)
            # QEMU ends with the test even if the test is killed.
            self.process = subprocess.Popen(arguments + ["-display", "none"], stdin=subprocess.DEVNULL,
                                            stderr=subprocess.PIPE, text=True, preexec_fn=_die_with_parent)
            self._connect()
        except BaseException:
            self.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, kind, value, trace):
        if kind is not None and self.show_log:
            print(f"debug log of the machine:\n{self.log()}\nserial log:\n{self.log('serial.log')}", file=sys.stderr)
        refused = [line for line in self.log().splitlines() if "ventara: board refused" in line]
        self.close()
        if kind is None and refused:  # whatever a test is about, no fan may get an illegal setting
            raise AssertionError("\n".join(refused))

    def close(self):
        if self.qmp is not None:
            self.qmp.close()
            self.qmp = None
        if self.process is not None:
            self.process.kill()
            self.process.communicate()
            self.process = None
        shutil.rmtree(self.folder, ignore_errors=True)

    # --- The machine's control socket ---

    def _connect(self):
        path = os.path.join(self.folder, "qmp.sock")
        deadline = time.monotonic() + 20
        while True:
            if self.process.poll() is not None:
                raise RuntimeError(f"QEMU ended: {self.process.stderr.read()}")
            connection = socket.socket(socket.AF_UNIX)
            try:
                connection.connect(path)
                break
            except OSError:
                connection.close()
                if time.monotonic() > deadline:
                    raise
                time.sleep(0.05)
        connection.settimeout(60)
        self.qmp = connection
        self._lines = connection.makefile("r", encoding="utf-8")
        self._lines.readline()
        self.command("qmp_capabilities")

    def command(self, name, **arguments):
        message = {"execute": name}
        if arguments:
            message["arguments"] = arguments
        self.qmp.sendall((json.dumps(message) + "\n").encode())
        while True:
            line = self._lines.readline()
            if not line:
                raise RuntimeError("QEMU closed its socket")
            answer = json.loads(line)
            if "return" in answer:
                return answer["return"]
            if "error" in answer:
                raise RuntimeError(f"{name}: {answer['error']['desc']}")

    # --- Progress ---

    def log(self, name="debug.log"):
        try:
            with open(os.path.join(self.folder, name), encoding="latin-1") as file:
                return file.read()
        except FileNotFoundError:
            return ""

    def _run_time(self):
        """Seconds of processor time that the machine has had."""
        with open(f"/proc/{self.process.pid}/stat", encoding="ascii") as file:
            fields = file.read().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def _patience(self, timeout):
        """A function that says whether a wait of that many seconds is over. They count only while the machine gets to
        run, so that a busy host fails no test; on the clock a wait ends after five times as many."""
        began, ran = time.monotonic(), self._run_time()

        def is_over():
            passed = time.monotonic() - began
            return passed > timeout and (passed > 5 * timeout or self._run_time() - ran > timeout / 2)

        return is_over

    def wait_for(self, text, timeout=90, log_name="debug.log"):
        """Waits until the log holds the text behind what was waited for last; gives the rest of its line."""
        is_over = self._patience(timeout)
        while True:
            log = self.log(log_name)
            found = log.find(text, self.marks.get(log_name, 0))
            end = log.find("\n", found + len(text) - 1) if found >= 0 else -1
            if end >= 0:
                self.marks[log_name] = end + 1
                return log[found + len(text):end]
            if self.process.poll() is not None:
                raise RuntimeError(f"QEMU ended: {self.process.stderr.read()}")
            if is_over():
                raise TimeoutError(f"no {text!r} within {timeout} s")
            time.sleep(0.05)

    def wait_for_console(self):
        """Waits until the console's first screen stands and the mouse is heard."""
        self.wait_for("ventara: first screen")
        if self.pointer == "ps2":
            self.wait_for("ventara: PS/2 mouse")

    # --- Screen ---

    def look(self):
        path = os.path.join(self.folder, "screen.ppm")
        self.command("screendump", filename=path)
        with open(path, "rb") as file:
            return Picture.from_ppm(file.read())

    def look_until(self, wanted, timeout=20, what="the picture wanted"):
        """Looks until wanted(picture) holds; gives that picture."""
        is_over = self._patience(timeout)
        while True:
            picture = self.look()
            if wanted(picture):
                return picture
            if is_over():
                raise TimeoutError(f"the screen didn't show {what} within {timeout} s")
            time.sleep(0.1)

    # --- Keyboard ---

    def key(self, *names):
        """One stroke of the key, or of the keys together, by QEMU's names: "esc", "ret", "f"."""
        self.command("send-key", keys=[{"type": "qcode", "data": name} for name in names])
        time.sleep(0.2)

    def type(self, text):
        """Types the text as on a keyboard of the US layout."""
        names = {" ": ["spc"], "\n": ["ret"], "\\": ["backslash"], ":": ["shift", "semicolon"], ".": ["dot"], "-": ["minus"],
                 "_": ["shift", "minus"], "/": ["slash"]}
        for character in text:
            self.key(*names.get(character, [character.lower()]))

    # --- Mouse ---

    def _input(self, *events):
        self.command("input-send-event", events=list(events))

    def move_by(self, x, y, step=100):
        """Moves the mouse by that many counts, step at most in a report. One count moves the console's pointer by one
        pixel."""
        while x or y:
            # The mouse keeps some four reports for a guest that is slow to take them.
            for _ in range(4):
                step_x, step_y = max(-step, min(step, x)), max(-step, min(step, y))
                if step_x or step_y:
                    self._input({"type": "rel", "data": {"axis": "x", "value": step_x}},
                                {"type": "rel", "data": {"axis": "y", "value": step_y}})
                x, y = x - step_x, y - step_y
            try:
                self.wait_for("ventara: pointer ", timeout=5)
            except TimeoutError:
                pass  # whether it arrived is looked at in the end

    def _is_at(self, x, y, timeout=3):
        """Whether the console's pointer comes to rest there, or rested there last."""
        if f"{x} {y}" == self._last_place():
            return True
        try:
            self.wait_for(f"ventara: pointer {x} {y}\n", timeout=timeout)
        except TimeoutError:
            return False
        return True

    def _last_place(self):
        places = [line for line in self.log().splitlines() if line.startswith("ventara: pointer ")]
        return places[-1][len("ventara: pointer "):] if places else ""

    def move_to(self, x, y):
        """Puts the console's pointer on a pixel, by way of the top left corner: the only place that a mouse finds without
        looking."""
        for _ in range(5):
            self.move_by(-WIDTH, -HEIGHT)
            if not self._is_at(0, 0):
                continue
            if (x, y) != (0, 0):
                self.move_by(x, y)
            if self._is_at(x, y):
                self.position = (x, y)
                return
        raise TimeoutError(f"the pointer didn't come to {x}, {y}; it is at {self._last_place()}")

    def drag_to(self, x, y):
        """Holds the left button where move_to has put the pointer, moves on as a hand does, and lets go."""
        self.button("left", True)
        time.sleep(0.5)  # a hold, and not a click
        self.move_by(x - self.position[0], y - self.position[1], step=4)
        if not self._is_at(x, y):
            raise TimeoutError(f"the pointer didn't come to {x}, {y}; it is at {self._last_place()}")
        self.position = (x, y)
        time.sleep(0.3)
        self.button("left", False)

    def move_tablet(self, x, y):
        """For a machine with a tablet: puts the pointer on a pixel at once."""
        self._input({"type": "abs", "data": {"axis": "x", "value": (x * 0x7FFF + WIDTH // 2) // (WIDTH - 1)}},
                    {"type": "abs", "data": {"axis": "y", "value": (y * 0x7FFF + HEIGHT // 2) // (HEIGHT - 1)}})
        if not self._is_at(x, y, timeout=20):
            raise TimeoutError(f"the pointer didn't come to {x}, {y}; it is at {self._last_place()}")
        self.position = (x, y)

    def button(self, name, down):
        self._input({"type": "btn", "data": {"button": name, "down": down}})

    def press(self, name="left", hold=0):
        """Presses and releases a button where the pointer stands. The console counts a press of under 0.185 s as a
        click; without a hold the two reports follow at once, and the guest sees them in two turns of its loop."""
        self.button(name, True)
        if hold:
            time.sleep(hold)
        self.button(name, False)
        time.sleep(0.3)

    def click(self, x, y, name="left"):
        self.move_to(x, y)
        self.press(name)


def _die_with_parent():
    import ctypes
    ctypes.CDLL("libc.so.6").prctl(1, signal.SIGKILL)
