"""A machine under QEMU that is driven as a person would do it: looks at its screen, moves its mouse, presses its keys.

    with Machine(image) as machine:
        machine.wait_for_console()
        machine.click(790, 90, shows=lambda picture: ...)

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

from PIL import Image, ImageChops

import qemu

WIDTH = 1024
HEIGHT = 768
CLICK_LIMIT = 185  # milliseconds; a press that is as long or longer is no click


def part(picture, x, y, width, height):
    return picture.crop((x, y, x + width, y + height))


def difference(picture, other, without=()):
    """The rectangle (left, top, right, bottom) around the pixels that differ outside those (x, y, width, height) given;
    None if none does."""
    if picture.size != other.size:
        return 0, 0, *max(picture.size, other.size)
    changed = ImageChops.difference(picture, other)
    for x, y, width, height in without:
        changed.paste((0, 0, 0), (x, y, x + width, y + height))
    return changed.getbbox()


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
        return self._commands((name, arguments))

    def _commands(self, *commands):
        """Sends them in one piece, so that nothing comes between them here; gives the last one's answer."""
        self.qmp.sendall("".join(json.dumps({"execute": name, "arguments": arguments}) + "\n"
                                 for name, arguments in commands).encode())
        for name, _ in commands:
            answer = self._read_answer(name)
        return answer

    def _read_answer(self, name):
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

    def run_time(self):
        """Seconds of processor time that the machine has had."""
        with open(f"/proc/{self.process.pid}/stat", encoding="ascii") as file:
            fields = file.read().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def _patience(self, timeout):
        """A function that says whether a wait of that many seconds is over. They count only while the machine gets to
        run, so that a busy host fails no test; on the clock a wait ends after five times as many."""
        began, ran = time.monotonic(), self.run_time()

        def is_over():
            passed = time.monotonic() - began
            return passed > timeout and (passed > 5 * timeout or self.run_time() - ran > timeout / 2)

        return is_over

    def wait_for(self, text, timeout=90, log_name="debug.log", line_end="\n"):
        """Waits until the log holds the text behind what was waited for last; gives the rest of its line."""
        is_over = self._patience(timeout)
        while True:
            log = self.log(log_name)
            found = log.find(text, self.marks.get(log_name, 0))
            end = log.find(line_end, found + len(text) - 1) if found >= 0 else -1
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
        with Image.open(path) as picture:
            return picture.convert("RGB")

    def look_until(self, wanted, timeout=20, what="the picture wanted"):
        """Looks until wanted(picture) holds; gives that picture."""
        is_over = self._patience(timeout)
        while True:
            picture = self.look()
            if wanted(picture):
                return picture
            if is_over():
                raise TimeoutError(f"the screen didn't show {what} within {timeout} s")
            time.sleep(0.05)

    # --- Keyboard ---

    def key(self, *names):
        """One stroke of the key, or of the keys together, by QEMU's names: "esc", "ret", "f"."""
        self.command("send-key", keys=[{"type": "qcode", "data": name} for name in names])

    # --- Mouse ---

    def _send(self, *reports):
        """Reports of the mouse, each a list of events."""
        self._commands(*(("input-send-event", {"events": events}) for events in reports))

    def move_by(self, x, y, step=120):
        """Moves the mouse by that many counts, step at most in a report. One count moves the console's pointer by one
        pixel."""
        while x or y:
            # The mouse keeps some four reports for a guest that is slow to take them.
            for _ in range(4):
                step_x, step_y = max(-step, min(step, x)), max(-step, min(step, y))
                if step_x or step_y:
                    self._send([{"type": "rel", "data": {"axis": "x", "value": step_x}},
                                {"type": "rel", "data": {"axis": "y", "value": step_y}}])
                x, y = x - step_x, y - step_y
            try:
                self.wait_for("ventara: pointer ", timeout=5)
            except TimeoutError:
                pass  # whether it arrived is looked at in the end

    def _place(self):
        """Where the console's pointer came to rest last; None when nobody knows."""
        last = self.log().rpartition("ventara: pointer ")[2].partition("\n")[0].split()
        return tuple(map(int, last)) if len(last) == 2 and all(map(str.isdigit, last)) else None

    def _is_at(self, x, y, timeout=3):
        """Whether the console's pointer comes to rest there, or rested there last."""
        if self._place() == (x, y):
            return True
        try:
            self.wait_for(f"ventara: pointer {x} {y}\n", timeout=timeout)
        except TimeoutError:
            return False
        return True

    def move_to(self, x, y):
        """Puts the console's pointer on a pixel: from where it rests, or by way of the top left corner, the only place that
        a mouse finds without looking."""
        for _ in range(5):
            place = self._place()
            if place is None:
                self.move_by(-WIDTH, -HEIGHT)
                place = (0, 0)
            self.move_by(x - place[0], y - place[1])
            if self._is_at(x, y):
                return
            self.move_by(-WIDTH, -HEIGHT)
        raise TimeoutError(f"the pointer didn't come to {x}, {y}; it is at {self._place()}")

    def move_tablet(self, x, y):
        """For a machine with a tablet: puts the pointer on a pixel at once."""
        self._send([{"type": "abs", "data": {"axis": "x", "value": (x * 0x7FFF + WIDTH // 2) // (WIDTH - 1)}},
                    {"type": "abs", "data": {"axis": "y", "value": (y * 0x7FFF + HEIGHT // 2) // (HEIGHT - 1)}}])
        if not self._is_at(x, y, timeout=20):
            raise TimeoutError(f"the pointer didn't come to {x}, {y}; it is at {self._place()}")

    def button(self, *downs, name="left"):
        """Reports of a button, True for down. They leave here together, and the machine reads them one after the other, in
        a turn of the console each."""
        self._send(*([{"type": "btn", "data": {"button": name, "down": down}}] for down in downs))

    def button_down_seen(self):
        """Waits until the machine has read that the left button is down."""
        self.wait_for("ventara: left button down\n")

    def button_up_seen(self):
        """Waits until the machine has read that the left button is up; gives for how many milliseconds it was down."""
        return int(self.wait_for("ventara: left button up after ").split()[0])

    def hold(self):
        """Presses the left button, and returns when it has been down for longer than in a click."""
        self.button(True)
        self.button_down_seen()
        time.sleep(1.5 * CLICK_LIMIT / 1000)

    def let_go(self):
        self.button(False)
        self.button_up_seen()

    def press(self, shows=None, says=None, what="what the click does"):
        """Clicks where the pointer stands, until the screen shows what is wanted, or the log says a text; gives the picture,
        or the rest of the text's line.

        The machine's clock goes on while a busy host keeps the machine itself waiting. A press that the machine timed as too
        long for a click is made again if nothing came of it; any other has to be enough.
        """
        for tries in range(10, 0, -1):
            self.button(True, False)
            self.button_down_seen()
            held = self.button_up_seen()
            # The console looks at the clock a moment later than the driver that tells us.
            is_doubtful = held > CLICK_LIMIT - 60 and tries > 1
            timeout = 3 if is_doubtful else 20
            try:
                return self.wait_for(says, timeout) if says else self.look_until(shows, timeout, what)
            except TimeoutError as failure:
                if not is_doubtful:
                    raise TimeoutError(f"{failure}; the button was down for {held} ms") from failure
                print(f"pressed again: the button was down for {held} ms", file=sys.stderr)

    def click(self, x, y, **wanted):
        """press() with the mouse moved to a pixel."""
        self.move_to(x, y)
        return self.press(**wanted)


def _die_with_parent():
    import ctypes
    ctypes.CDLL("libc.so.6").prctl(1, signal.SIGKILL)
