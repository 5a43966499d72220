# SPDX-License-Identifier: GPL-3.0-or-later
"""The entries in the menu of files of GNOME's file manager; needs its package for Python extensions."""
import subprocess

from gi.repository import Gio, GLib, GObject, Nautilus

APPLICATION = "example.lumetwin.Lumetwin.desktop"
# The directions, with their names in English and Japanese.
DIRECTIONS = {
    "sbsToSpatial": ("Convert to Spatial", "空間メディアに変換"),
    "spatialToSBS": ("Convert to Side by Side", "サイドバイサイドに変換"),
}


def label(direction):
    in_japanese = GLib.get_language_names()[0].startswith("ja")
    return DIRECTIONS[direction][1 if in_japanese else 0]


def convert(_item, direction, files):
    subprocess.Popen(["lumetwin", "--direction", direction, "--", *(file.get_uri() for file in files)],
                     start_new_session=True)


class LumetwinMenu(GObject.GObject, Nautilus.MenuProvider):
    """Offers both directions for files that the program opens, and for folders."""

    def get_file_items(self, *arguments):
        files = arguments[-1]  # before version 43 the window comes first
        application = Gio.DesktopAppInfo.new(APPLICATION)
        if not files or not application:
            return []
        types = application.get_supported_types()
        if not all(file.is_directory() or file.get_mime_type() in types for file in files):
            return []
        items = []
        for direction in DIRECTIONS:
            item = Nautilus.MenuItem(name=f"Lumetwin::{direction}", label=label(direction))
            item.connect("activate", convert, direction, files)
            items.append(item)
        return items
