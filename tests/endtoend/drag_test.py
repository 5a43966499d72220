# SPDX-License-Identifier: GPL-3.0-or-later
"""Files that are dragged out of another program's window into the drop targets, by the pointer."""
import json
import pathlib
import subprocess
import sys

from hands import hands, run
from screen_reader import wait_for
from services_test import Services
from window_test import play

SOURCE = pathlib.Path(__file__).with_name("drag_source.py")
TITLE = "drag source"
URIS = "text/uri-list"
TRANSFER = "application/vnd.portal.filetransfer"
EMPTY, HIGHLIGHTED, FILLED, REFUSED = (26, 28, 38), (26, 64, 128), (20, 46, 26), (61, 23, 23)


class Drag:
    """A drag of offers (TYPE=DATA) that has begun in another program's window."""

    def __init__(self, scene, *offers):
        self.log = scene.folder / "drag"
        with self.log.open("wb") as log:
            self.source = subprocess.Popen([sys.executable, SOURCE, TITLE, *offers], stdout=log)
        self.origin = wait_for("the other window", lambda: hands.window_at(TITLE))
        self.move_until("entered", 0)
        hands.button(True)
        self.move_until("began", 30)

    def move_until(self, word, distance):
        def said():
            self.back(distance)
            return word in self.said()
        wait_for(f"“{word}” from the other window", said)

    def said(self):
        return self.log.read_text().split()

    def move(self, x, y):
        for step in (20, 10, 0):  # motion, not one leap
            hands.move(x + step, y)

    def back(self, distance=0):
        """Over the window that it comes from."""
        self.move(self.origin[0] + 40 + distance, self.origin[1] + 30)

    def over(self, area):
        x, y, width, height = area
        self.move(x + width // 2, y + height // 2)

    def drop(self):
        """Lets go. The answer is the way the drag ended."""
        hands.button(False)
        end = wait_for("the end of the drag", lambda: [word for word in self.said() if word in ("taken", "refused")])
        self.source.kill()
        self.source.wait()
        return end[0]


class Target:
    """One of the window's drop targets."""

    def __init__(self, scene, name):
        self.scene = scene
        self.name = name

    def area(self):
        return hands.area_of(self.scene.program.wait("push button", self.name))

    def text(self):
        return self.scene.program.wait("push button", self.name).get_description()

    def colour(self):
        """The ground's colour beside the text, as it is on the screen."""
        x, y, width, height = self.area()
        picture = self.scene.folder / "screen.png"
        hands.photograph(picture)
        return tuple(run("convert", picture, "-crop", f"1x1+{x + width - 12}+{y + height // 2}", "-depth", 8, "rgb:-"))

    def wait_colour(self, colour):
        wait_for(f"the colour {colour} of “{self.name}”", lambda: self.colour() == colour)

    def drag(self, *offers):
        """A drag that hovers over the target, which shows that it can be used."""
        drag = Drag(self.scene, *offers)

        def hovers():
            drag.over(self.area())
            return self.colour() == HIGHLIGHTED
        wait_for("the highlight", hovers)
        return drag

    def take(self, text, *offers):
        assert self.drag(*offers).drop() == "taken"
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
    refused.over(source.area())
    assert refused.drop() == "refused"
    ended = source.drag(uris(note)).drop()
    assert ended == "refused" or hands.in_wayland, ended  # where Qt finishes every drop that was made
    source.wait_colour(EMPTY)
    assert source.text() == empty

    wrong = Drag(scene, uris(scene.clip))

    def says_so():
        wrong.over(output.area())
        return output.colour() == REFUSED
    wait_for("the output's refusal of a file", says_so)
    ended = wrong.drop()
    assert ended == "refused" or hands.in_wayland, ended
    assert output.text() == scene["drop.refused.no.folder"]
    output.wait_colour(EMPTY)

    left = source.drag(uris(scene.clip))
    left.back()
    source.wait_colour(EMPTY)
    assert left.drop() == "refused"

    source.take(folder.name, "text/plain=words", uris(folder))
    scene.program.wait_text(str(folder))
    source.take(scene.clip.name, uris(note, scene.clip))
    source.take(scene["label.files.selected.format"].replace("%d", "2"), uris(folder, scene.clip))
    output.take(folder.name, uris(folder))
    scene.program.wait_text(str(folder))


def transfer(scene):
    """The portal's type alone, as a confined program offers it."""
    services = Services(scene.folder)
    try:
        source = Target(scene, scene["panel.select.input.title"])
        source.take(scene.clip.name, TRANSFER + "=" + json.dumps([str(scene.clip)]))
        assert services.calls("org.freedesktop.portal.FileTransfer", "RetrieveFiles")
        scene.program.wait_text(str(scene.clip))
    finally:
        services.close()


def convert(scene):
    """What was dropped is what is converted."""
    output = Target(scene, scene["section.output.folder"])
    output.take(scene.output.name, uris(scene.output))
    scene.program.press("radio button", scene["direction.sbs.to.spatial"])
    scene.program.press("push button", scene["button.start.conversion"])
    scene.see_end(scene.program, scene["alert.conversion.success"])
    assert scene.names() == ["clip_spatial.mov"], scene.names()
    scene.quit(scene.program)


if __name__ == "__main__":
    play(files_and_folders, transfer, convert)
