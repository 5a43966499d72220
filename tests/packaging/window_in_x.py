# SPDX-License-Identifier: GPL-3.0-or-later
"""The window in a real X server tells the desktop what the desktop entry says, and brings its icon."""
import os
import subprocess
import tempfile
import unittest

from packaging import PROGRAM, desktop_entry, main, run

PATIENCE = 200  # seconds until a machine counts as stuck


class WindowInX(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        reading, writing = os.pipe()
        server = self.started("Xvfb", "-displayfd", writing, "-screen", "0", "1366x768x24", "-nolisten", "tcp",
                              pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as numbers:
            number = numbers.readline().strip()
        self.assertTrue(number, f"Xvfb ended with {server.poll()}")
        self.environment = {name: value for name, value in os.environ.items() if not name.startswith(("DBUS_", "QT_"))}
        self.environment.update(DISPLAY=f":{number}", QT_QPA_PLATFORM="xcb", HOME=scratch.name,
                                XDG_RUNTIME_DIR=scratch.name, LC_ALL="C.UTF-8", LANGUAGE="")
        self.environment.pop("WAYLAND_DISPLAY", None)

    def started(self, *command, **options):
        program = subprocess.Popen([str(part) for part in command], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, **options)
        self.addCleanup(program.wait)
        self.addCleanup(program.terminate)
        return program

    def test_desktop_finds_the_entry_of_the_window(self):
        self.started(PROGRAM, env=self.environment)
        found = run("xdotool", "search", "--sync", "--onlyvisible", "--name", "^Lumetwin$", env=self.environment,
                    timeout=PATIENCE)
        window = found.stdout.split()[0]
        said = run("xprop", "-id", window, "WM_CLASS", env=self.environment).stdout
        self.assertIn(f'"{desktop_entry()["StartupWMClass"]}"', said)
        icon = run("xprop", "-id", window, "_NET_WM_ICON", env=self.environment).stdout
        self.assertTrue("Icon (64 x 64)" in icon, "the window has no icon")


if __name__ == "__main__":
    main("Xvfb", "xdotool", "xprop")
