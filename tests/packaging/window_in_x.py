# SPDX-License-Identifier: GPL-3.0-or-later
"""In a real X server the window's properties agree with the desktop entry, and the window has an icon."""
import os
import subprocess
import tempfile
import unittest

from packaging import PROGRAM, desktop_entry, main, run

TIMEOUT = 200  # seconds; a longer wait fails


class WindowInX(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        reading, writing = os.pipe()
        server = self.start("Xvfb", "-displayfd", writing, "-screen", "0", "1366x768x24", "-nolisten", "tcp",
                              pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as numbers:
            number = numbers.readline().strip()
        self.assertTrue(number, f"Xvfb ended with {server.poll()}")
        self.environment = {name: value for name, value in os.environ.items() if not name.startswith(("DBUS_", "QT_"))}
        self.environment.update(DISPLAY=f":{number}", QT_QPA_PLATFORM="xcb", HOME=scratch.name,
                                XDG_RUNTIME_DIR=scratch.name, LC_ALL="C.UTF-8", LANGUAGE="")
        self.environment.pop("WAYLAND_DISPLAY", None)

    def start(self, *command, **options):
        program = subprocess.Popen([str(part) for part in command], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, **options)
        self.addCleanup(program.wait)
        self.addCleanup(program.terminate)
        return program

    def test_window_class_and_icon_match_the_desktop_entry(self):
        self.start(PROGRAM, env=self.environment)
        found = run("xdotool", "search", "--sync", "--onlyvisible", "--name", "^Lumetwin$", env=self.environment,
                    timeout=TIMEOUT)
        window = found.stdout.split()[0]
        said = run("xprop", "-id", window, "WM_CLASS", env=self.environment).stdout
        self.assertIn(f'"{desktop_entry()["StartupWMClass"]}"', said)
        icon = run("xprop", "-id", window, "_NET_WM_ICON", env=self.environment).stdout
        self.assertTrue("Icon (64 x 64)" in icon, "the window has no icon")


if __name__ == "__main__":
    main("Xvfb", "xdotool", "xprop")
