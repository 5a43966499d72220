# SPDX-License-Identifier: GPL-3.0-or-later
"""The entries in the menus of file managers, and the types of files that they are shown for."""
import configparser
import importlib.util
import os
import pathlib
import stat
import sys
import tempfile
import time
import types
import unittest

from packaging import BUILD, CMAKE, ID, desktop_entry, main, run

DIRECTIONS = {"Convert to Spatial": "sbsToSpatial", "Convert to Side by Side": "spatialToSBS"}


def keys_of(file):
    """The groups and keys of a file in the format of desktop entries."""
    parser = configparser.ConfigParser(interpolation=None, delimiters=("=",), comment_prefixes=("#",))
    parser.optionxform = str
    parser.read(file, "utf-8")
    return parser


class MenuItem:
    """As the one of the file manager."""

    def __init__(self, name, label):
        self.name, self.label = name, label

    def connect(self, signal, *call):
        assert signal == "activate"
        self.call = call

    def activate(self):
        function, *arguments = self.call
        function(self, *arguments)


class SelectedFile:
    def __init__(self, path, mime_type):
        self.path, self.mime_type = path, mime_type

    def is_directory(self):
        return self.mime_type == "inode/directory"

    def get_mime_type(self):
        return self.mime_type

    def get_uri(self):
        return self.path.as_uri()


class FileManagers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.share = pathlib.Path(cls.scratch.name, "share")
        result = run(CMAKE, "--install", BUILD, "--prefix", cls.scratch.name)
        if result.returncode:
            raise RuntimeError(result.stdout + result.stderr)
        cls.types = [kind for kind in desktop_entry()["MimeType"].split(";") if kind]

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def test_dolphin(self):
        menu = keys_of(self.share / "kio/servicemenus/lumetwin.desktop")
        self.assertEqual(menu["Desktop Entry"]["MimeType"].split(";"), [*self.types, "inode/directory", ""])
        actions = menu["Desktop Entry"]["Actions"].strip(";").split(";")
        self.assertEqual({menu[f"Desktop Action {action}"]["Name"]: menu[f"Desktop Action {action}"]["Exec"]
                          for action in actions},
                         {name: f"lumetwin --direction {direction} %F" for name, direction in DIRECTIONS.items()})
        for action in actions:
            self.assertRegex(menu[f"Desktop Action {action}"]["Name[ja]"], "に変換$")

    def test_nemo(self):
        found = {}
        for file in (self.share / "nemo/actions").iterdir():
            action = keys_of(file)["Nemo Action"]
            found[action["Name"]] = action["Exec"]
            self.assertEqual(action["Mimetypes"].split(";"), [*self.types, "inode/directory", ""])
            self.assertEqual(action["Dependencies"], "lumetwin;")
        self.assertEqual(found, {name: f"lumetwin --direction {direction} %F"
                                 for name, direction in DIRECTIONS.items()})

    def test_gnome(self):
        """Loads the extension as the file manager does, opens its menu on files, and chooses from it."""
        bin_folder = pathlib.Path(self.scratch.name, "stand-in")
        bin_folder.mkdir()
        program, called = bin_folder / "lumetwin", bin_folder / "called"
        program.write_text(f'#!/bin/sh\nprintf "%s\\n" "$@" > "{called}.new" && mv "{called}.new" "{called}"\n')
        program.chmod(program.stat().st_mode | stat.S_IXUSR)
        os.environ.update(XDG_DATA_DIRS=str(self.share), XDG_DATA_HOME=self.scratch.name, LC_ALL="C.UTF-8",
                          PATH=f"{bin_folder}:{os.environ['PATH']}")
        import gi.repository
        stand_in = types.ModuleType("gi.repository.Nautilus")
        stand_in.MenuProvider, stand_in.MenuItem = type("MenuProvider", (), {}), MenuItem
        sys.modules["gi.repository.Nautilus"] = gi.repository.Nautilus = stand_in
        place = importlib.util.spec_from_file_location("extension",
                                                       self.share / "nautilus-python/extensions/lumetwin.py")
        extension = importlib.util.module_from_spec(place)
        place.loader.exec_module(extension)
        menu = extension.LumetwinMenu()
        film = SelectedFile(pathlib.Path("/a film.mov"), "video/quicktime")
        photo = SelectedFile(pathlib.Path("/寺.jps"), "image/x-jps")
        folder = SelectedFile(pathlib.Path("/folder"), "inode/directory")
        text = SelectedFile(pathlib.Path("/notes.txt"), "text/plain")
        self.assertEqual(menu.get_file_items([]), [])
        self.assertEqual(menu.get_file_items([film, text]), [])
        self.assertEqual(len(menu.get_file_items("window", [folder])), 2, "older versions name the window first")
        items = {item.label: item for item in menu.get_file_items([film, photo])}
        self.assertEqual(set(items), set(DIRECTIONS))
        for label, direction in DIRECTIONS.items():
            items[label].activate()
            end = time.monotonic() + 60
            while not called.exists() and time.monotonic() < end:
                time.sleep(0.05)
            self.assertEqual(called.read_text("utf-8").splitlines(),
                             ["--direction", direction, "--", film.get_uri(), photo.get_uri()])
            called.unlink()

    def test_types_of_stereo_pictures(self):
        result = run("update-mime-database", "-V", self.share / "mime")
        self.assertEqual(result.returncode, 0, result.stderr)
        globs = (self.share / "mime/globs2").read_text("utf-8").splitlines()
        for kind, ending in (("image/x-jps", "jps"), ("image/x-mpo", "mpo"), ("image/x-pns", "pns")):
            self.assertIn(f"50:{kind}:*.{ending}", globs)
            self.assertIn(kind, self.types)
        self.assertIn("image/x-jps image/jpeg", (self.share / "mime/subclasses").read_text("utf-8").splitlines())
        self.assertTrue((self.share / f"mime/packages/{ID}.xml").exists())


if __name__ == "__main__":
    main("update-mime-database")
