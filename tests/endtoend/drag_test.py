# SPDX-License-Identifier: GPL-3.0-or-later
"""Drags files with the pointer from another program's window to the drop targets."""
import json
import pathlib
import subprocess
import sys

from hands import user
from screen_reader import wait_for
from services_test import Services
from window_test import run_tests

SOURCE = pathlib.Path(__file__).with_name("drag_source.py")
TITLE = "drag source"
URIS = "text/uri-list"
TRANSFER = "application/vnd.portal.filetransfer"
EMPTY, HIGHLIGHTED, FILLED, REFUSED = (26, 28, 38), (26, 64, 128), (20, 46, 26), (61, 23, 23)


class Drag:
    """A drag that has begun in another program's window. offers: TYPE=DATA each."""

    def __init__(self, scene, *offers):
        self.log = scene.folder / "drag"
        with self.log.open("wb") as log:
            self.source = subprocess.Popen([sys.executable, SOURCE, TITLE, *offers], stdout=log)
        self.origin = wait_for("the other window", lambda: user.window_at(TITLE))
        self.move_until("entered", 0)
        user.button(True)
        self.move_until("began", 30)

    def move_until(self, word, distance):
        def has_message():
            self.move_to_source(distance)
            return word in self.messages()
        wait_for(f"“{word}” from the other window", has_message)

    def messages(self):
        return self.log.read_text().split()

    def move(self, x, y):
        for step in (20, 10, 0):  # several steps, not one jump
            user.move(x + step, y)

    def move_to_source(self, distance=0):
        """Moves the pointer to the window that the drag comes from."""
        self.move(self.origin[0] + 40 + distance, self.origin[1] + 30)

    def move_to(self, area):
        x, y, width, height = area
        self.move(x + width // 2, y + height // 2)

    def drop(self):
        """Releases the button. Returns "accepted" or "refused"."""
        user.button(False)
        end = wait_for("the end of the drag",
                       lambda: [word for word in self.messages() if word in ("accepted", "refused")])
        self.source.kill()
        self.source.wait()
        return end[0]


class Target:
    """One of the window's drop targets."""

    def __init__(self, scene, name):
        self.scene = scene
        self.name = name

    def area(self):
        return user.area_of(self.scene.program.wait("push button", self.name))

    def text(self):
        return self.scene.program.wait("push button", self.name).get_description()

    def colour(self):
        """The background colour beside the text, on the screen."""
        x, y, width, height = self.area()
        return user.colour_at(x + width - 12, y + height // 2)

    def wait_colour(self, colour):
        wait_for(f"the colour {colour} of “{self.name}”", lambda: self.colour() == colour)

    def drag(self, *offers):
        """Begins a drag and moves it over the target, until the target is highlighted."""
        drag = Drag(self.scene, *offers)

        def hovers():
            drag.move_to(self.area())
            return self.colour() == HIGHLIGHTED
        wait_for("the highlight", hovers)
        return drag

    def expect_accepted(self, text, *offers):
        assert self.drag(*offers).drop() == "accepted"
        wait_for(f"“{text}” in “{self.name}”", lambda: self.text() == text)
        self.wait_colour(FILLED)


def uris(*files):
    return URIS + "=" + "".join(file.as_uri() + "\r\n" for file in files)


def files_and_folders(scene):
    folder = scene.folder / "two words 双子"
    folder.mkdir()
    picture = folder / "picture.JPG"
    note = folder / "note.txt"
    for file in (picture, note):
        file.touch()
    scene.start()
    source, output = Target(scene, scene["panel.select.input.title"]), Target(scene, scene["section.output.folder"])
    empty = source.text()
    source.wait_colour(EMPTY)

    refused = Drag(scene, "text/plain=" + str(scene.clip))
    refused.move_to(source.area())
    assert refused.drop() == "refused"
    ended = source.drag(uris(note)).drop()
    assert ended == "refused" or user.in_wayland, ended  # on Wayland, Qt reports every drop as accepted
    source.wait_colour(EMPTY)
    assert source.text() == empty

    wrong = Drag(scene, uris(scene.clip))

    def shows_refusal():
        wrong.move_to(output.area())
        return output.colour() == REFUSED
    wait_for("the output's refusal of a file", shows_refusal)
    ended = wrong.drop()
    assert ended == "refused" or user.in_wayland, ended
    assert output.text() == scene["drop.refused.no.folder"]
    output.wait_colour(EMPTY)

    left = source.drag(uris(scene.clip))
    left.move_to_source()
    source.wait_colour(EMPTY)
    assert left.drop() == "refused"

    source.expect_accepted(folder.name, "text/plain=words", uris(folder))
    scene.program.wait_text(str(folder))
    source.expect_accepted(scene.clip.name, uris(note, scene.clip))
    source.expect_accepted(scene["label.files.selected.format"].replace("%d", "2"), uris(folder, scene.clip))
    output.expect_accepted(folder.name, uris(folder))
    scene.program.wait_text(str(folder))


def transfer(scene):
    """Only the portal's type is offered, as a sandboxed program does it."""
    services = Services(scene.folder)
    try:
        source = Target(scene, scene["panel.select.input.title"])
        source.expect_accepted(scene.clip.name, TRANSFER + "=" + json.dumps([str(scene.clip)]))
        assert services.calls("org.freedesktop.portal.FileTransfer", "RetrieveFiles")
        scene.program.wait_text(str(scene.clip))
    finally:
        services.close()


def convert(scene):
    """The dropped files are the ones that are converted."""
    output = Target(scene, scene["section.output.folder"])
    output.expect_accepted(scene.output.name, uris(scene.output))
    scene.program.press("radio button", scene["direction.sbs.to.spatial"])
    scene.program.press("push button", scene["button.start.conversion"])
    scene.close_result(scene.program, scene["alert.conversion.success"])
    assert scene.output_names() == ["clip_spatial.mov"], scene.output_names()
    scene.quit(scene.program)


if __name__ == "__main__":
    run_tests(files_and_folders, transfer, convert)
