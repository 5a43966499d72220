# SPDX-License-Identifier: GPL-3.0-or-later
"""The hands and eyes of a user, in an X server and in a Wayland session: keys, a pointer, and what is on the screen."""
import atexit
import json
import os
import subprocess

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from virtual_pointer import VirtualPointer  # noqa: E402


def extents(thing):
    """Where a program says that a part of it is. (Relative to the window, Qt 6.4 tells wrong sizes.)"""
    area = Atspi.Component.get_extents(thing.get_component_iface(), Atspi.CoordType.SCREEN)
    return area.x, area.y, area.width, area.height


def run(*command):
    return subprocess.run([str(word) for word in command], check=True, capture_output=True).stdout


class HandsInX:
    in_wayland = False

    def press_key(self, combination):
        run("xdotool", "key", "--clearmodifiers", combination)

    def type_words(self, words):
        run("xdotool", "type", "--clearmodifiers", words)

    def move(self, x, y):
        run("xdotool", "mousemove", x, y)

    def button(self, pressed):
        run("xdotool", "mousedown" if pressed else "mouseup", 1)

    def window_at(self, title):
        """The place of a window's upper left corner, or None."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$", "getwindowgeometry",
                                "--shell"], capture_output=True, text=True).stdout
        place = dict(line.split("=") for line in found.split())
        return (int(place["X"]), int(place["Y"])) if place else None

    def area_of(self, thing):
        """x, y, width, height on the screen of a part of the program's window."""
        return extents(thing)

    def photograph(self, picture):
        run("import", "-silent", "-window", "root", picture)


class HandsInWayland:
    in_wayland = True

    def __init__(self):
        self.pointer = None
        # Without a keyboard that stays, programs would begin to listen when the key is already over.
        self.keyboard = subprocess.Popen(["wtype", "-s", str(2**31 - 1)])
        atexit.register(self.keyboard.kill)

    def press_key(self, combination):
        *modifiers, key = combination.split("+")
        held = [word for modifier in modifiers for word in ("-M", modifier)]
        run("wtype", *held, *(["-k", key] if len(key) > 1 else [key]))

    def type_words(self, words):
        run("wtype", words)

    def move(self, x, y):
        if not self.pointer:
            screen = json.loads(run("swaymsg", "-t", "get_outputs"))[0]["rect"]
            self.pointer = VirtualPointer(screen["width"], screen["height"])
        self.pointer.move(x, y)

    def button(self, pressed):
        self.pointer.button(pressed)

    def window_at(self, title):
        def search(node):
            if node["name"] == title and node["type"] in ("con", "floating_con"):
                return node["rect"]["x"], node["rect"]["y"]
            inner = (search(child) for child in node["nodes"] + node["floating_nodes"])
            return next((place for place in inner if place), None)
        return search(json.loads(run("swaymsg", "-t", "get_tree")))

    def area_of(self, thing):
        left, top = self.window_at("Lumetwin")  # which no Wayland client knows itself
        x, y, width, height = extents(thing)
        return left + x, top + y, width, height

    def photograph(self, picture):
        run("grim", picture)


hands = HandsInWayland() if "WAYLAND_DISPLAY" in os.environ else HandsInX()
