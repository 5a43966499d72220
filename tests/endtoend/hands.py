# SPDX-License-Identifier: GPL-3.0-or-later
"""Simulated input of a user and colours of the screen, in an X server and in a Wayland session."""
import atexit
import json
import os
import subprocess

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from virtual_pointer import VirtualPointer  # noqa: E402


def extents(thing):
    """The position and size that a program reports for a control, on the screen: Qt 6.4 reports wrong relative sizes."""
    area = Atspi.Component.get_extents(thing.get_component_iface(), Atspi.CoordType.SCREEN)
    return area.x, area.y, area.width, area.height


def run(*command):
    return subprocess.run([str(word) for word in command], check=True, capture_output=True).stdout


class X11User:
    in_wayland = False

    def press_key(self, combination):
        run("xdotool", "key", "--clearmodifiers", combination)

    def type_text(self, words):
        run("xdotool", "type", "--clearmodifiers", words)

    def move(self, x, y):
        run("xdotool", "mousemove", x, y)

    def button(self, pressed):
        run("xdotool", "mousedown" if pressed else "mouseup", 1)

    def window_at(self, title):
        """The position of a window's upper left corner, or None."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$", "getwindowgeometry",
                                "--shell"], capture_output=True, text=True).stdout
        place = dict(line.split("=") for line in found.split())
        return (int(place["X"]), int(place["Y"])) if place else None

    def area_of(self, thing):
        """x, y, width, height on the screen of a control."""
        return extents(thing)

    def colour_at(self, x, y):
        """The red, green and blue of a place on the screen, 0 to 255."""
        return tuple(run("import", "-silent", "-window", "root", "-crop", f"1x1+{x}+{y}", "-depth", 8, "rgb:-"))


class WaylandUser:
    in_wayland = True

    def __init__(self):
        self.pointer = None
        # Keeps a virtual keyboard connected. Otherwise programs would get a keyboard only after the key was released.
        self.keyboard = subprocess.Popen(["wtype", "-s", str(2**31 - 1)])
        atexit.register(self.keyboard.kill)

    def press_key(self, combination):
        *modifiers, key = combination.split("+")
        held = [word for modifier in modifiers for word in ("-M", modifier)]
        run("wtype", *held, *(["-k", key] if len(key) > 1 else [key]))

    def type_text(self, words):
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
        left, top = self.window_at("Lumetwin")  # a Wayland client does not know its own position
        x, y, width, height = extents(thing)
        return left + x, top + y, width, height

    def colour_at(self, x, y):
        # A portable pixmap of one pixel ends with its three samples.
        return tuple(run("grim", "-t", "ppm", "-g", f"{x},{y} 1x1", "-")[-3:])


user = WaylandUser() if "WAYLAND_DISPLAY" in os.environ else X11User()
