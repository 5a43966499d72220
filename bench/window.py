# SPDX-License-Identifier: GPL-3.0-or-later
"""Time until the window appears, and how long it does not respond while a thousand videos are checked before a run,
and while a thousand photos of 12 megapixels are listed.

The window is in a new X server. The time to the window runs from the start of the program until its window is mapped.
The longest stop is the longest time that the program's interface thread takes to answer a request of the accessibility
bus, from the press on the start button to the alert that ends the check. The bus itself takes time too; the stops of an
idle window show how much.
"""
import argparse
import ctypes
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

import measure

PROGRAM = pathlib.Path(os.environ.get("LUMETWIN", measure.SOURCE / "build/release/app/lumetwin"))
STARTS, ROUNDS, CANDIDATES = 9, 9, 1000
TIMEOUT = 60  # seconds
TESTS = measure.SOURCE / "tests/endtoend"


class Screen:
    """Connects to the X server to notice when a window is mapped."""

    MAP_NOTIFY, SUBSTRUCTURE_NOTIFY = 19, 1 << 19  # X.h

    def __init__(self):
        self.x = ctypes.CDLL("libX11.so.6")
        self.x.XOpenDisplay.restype = ctypes.c_void_p
        self.x.XDefaultRootWindow.restype = ctypes.c_ulong
        self.display = ctypes.c_void_p(self.x.XOpenDisplay(None))
        root = ctypes.c_ulong(self.x.XDefaultRootWindow(self.display))
        self.x.XSelectInput(self.display, root, ctypes.c_long(self.SUBSTRUCTURE_NOTIFY))
        self.x.XSync(self.display, 1)

    def wait_for_window(self):
        event = (ctypes.c_long * 24)()  # XEvent
        end = time.monotonic() + TIMEOUT
        while time.monotonic() < end:
            if not self.x.XPending(self.display):
                time.sleep(0.0005)
                continue
            self.x.XNextEvent(self.display, ctypes.byref(event))
            if ctypes.cast(event, ctypes.POINTER(ctypes.c_int))[0] == self.MAP_NOTIFY:
                return
        raise SystemExit("no window appeared")


def time_to_window():
    screen = Screen()
    began = time.monotonic()
    with subprocess.Popen([PROGRAM], stderr=subprocess.DEVNULL) as process:
        screen.wait_for_window()
        took = time.monotonic() - began
        process.kill()
    return took


class Stopwatch:
    """Sends requests to the program and records the longest time of an answer, in seconds."""

    def __init__(self):
        self.longest = 0

    def ask(self, question, *arguments):
        began = time.monotonic()
        answer = question(*arguments)
        self.longest = max(self.longest, time.monotonic() - began)
        return answer

    def windows(self, root):
        each = [self.ask(root.get_child_at_index, i) for i in range(self.ask(root.get_child_count))]
        return [self.ask(one.get_name) for one in each if one]


def watch(root, ended):
    """The longest stop, in seconds, until ended(names of the program's windows) is true."""
    stopwatch, limit = Stopwatch(), time.monotonic() + TIMEOUT
    while not ended(stopwatch.windows(root)):
        if time.monotonic() > limit:
            raise SystemExit("the expected window did not appear")
    return stopwatch.longest


def stops(folder):
    """The longest stop of each round, in seconds: of the idle window, and during the check."""
    from window_test import Scene
    from gi.repository import Atspi
    options = argparse.Namespace(language="en", program=PROGRAM, batch=measure.BATCH, stack=measure.stack(),
                                 texts=measure.SOURCE / "resources/text")
    scene = Scene(options, folder)
    (folder / "in").mkdir()
    for number in range(CANDIDATES):
        os.link(scene.clip, folder / f"in/clip{number:04}.mp4")
    program = scene.start(folder / "in")
    scene.choose_output(program)
    program.root.set_cache_mask(Atspi.Cache.NONE)
    title = scene["alert.direction.spatial2sbs.title"]
    idle, busy = [], []
    for _ in range(ROUNDS):
        end = time.monotonic() + 1
        idle.append(watch(program.root, lambda names: time.monotonic() > end))  # noqa: B023
        program.press("push button", scene["button.start.conversion"])
        busy.append(watch(program.root, lambda names: title in names))
        program.press("push button", scene["button.fix.direction"])
        watch(program.root, lambda names: title not in names)
    program.process.kill()
    program.process.wait()
    return idle, busy


def peak_memory(process):
    """The largest resident memory of a process, in MiB."""
    status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
    return int(next(line for line in status.splitlines() if line.startswith("VmHWM")).split()[1]) / 1024


def list_photos(folder):
    """The longest stop in seconds while a thousand photos are looked at in the list, how long that takes, and the
    memory of the window in MiB (without its workers)."""
    from hands import user
    from screen_reader import everything_below, role_of, wait_for
    from window_test import Scene
    from gi.repository import Atspi
    options = argparse.Namespace(language="en", program=PROGRAM, batch=measure.BATCH, stack=measure.stack(),
                                 texts=measure.SOURCE / "resources/text")
    scene = Scene(options, folder)
    photo = folder / "photo.jpg"
    scene.run("convert", "-seed", 3, "-size", "5656x2121", "plasma:fractal", "-quality", 90, photo)
    (folder / "photos").mkdir()
    for number in range(CANDIDATES):
        os.link(photo, folder / f"photos/photo{number:04}.jpg")
    program = scene.start(folder / "photos")
    wait_for("the window in front", program.is_in_front)
    began = time.monotonic()
    user.press_key("F9")

    def last_row():
        items = [thing for thing in everything_below(program.root) if role_of(thing) == "list item"]
        return next((item for item in items if item.get_name().startswith(f"photo{CANDIDATES - 1:04}")), None)

    row = wait_for("the last row", last_row)
    program.root.set_cache_mask(Atspi.Cache.NONE)
    stopwatch = Stopwatch()
    while scene["files.state.looking"] in stopwatch.ask(row.get_name):
        stopwatch.windows(program.root)
        if time.monotonic() > began + 600:
            raise SystemExit("the photos were not looked at in time")
    took, memory = time.monotonic() - began, peak_memory(program.process)
    program.process.kill()
    program.process.wait()
    return stopwatch.longest, took, memory


def in_milliseconds(times):
    return f"{statistics.median(times) * 1000:6.0f} ms (median of {len(times)}, longest {max(times) * 1000:.0f})"


def main():
    if os.environ.get("LUMETWIN_BENCH_DESKTOP") != "1":
        os.environ["LUMETWIN_BENCH_DESKTOP"] = "1"
        os.environ["LUMETWIN_CACHE"] = str(measure.stack().parent)  # the desktop has another home folder
        os.execv(TESTS / "desktop.sh", [str(TESTS / "desktop.sh"), "x11", str(pathlib.Path(__file__).resolve())])
    sys.path.insert(0, str(TESTS))
    time_to_window()  # the first start reads from the disk and is not counted
    times = [time_to_window() for _ in range(STARTS)]
    with tempfile.TemporaryDirectory(prefix="lumetwin-bench-") as folder:
        idle, busy = stops(pathlib.Path(folder))
    with tempfile.TemporaryDirectory(prefix="lumetwin-bench-") as folder:
        listing, took, memory = list_photos(pathlib.Path(folder))
    print(f"window up                  {in_milliseconds(times)}  limit 500")
    print(f"longest stop, at rest      {in_milliseconds(idle)}")
    print(f"longest stop, {CANDIDATES} videos  {in_milliseconds(busy)}  limit 50")
    print(f"longest stop, {CANDIDATES} photos in the list  {listing * 1000:6.0f} ms  limit 50")
    print(f"{CANDIDATES} photos of 12 megapixels looked at in {took:.0f} s; memory of the window {memory:.0f} MiB  limit 500")


if __name__ == "__main__":
    main()
