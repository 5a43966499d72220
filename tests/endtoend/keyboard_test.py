# SPDX-License-Identifier: GPL-3.0-or-later
"""A whole conversion with nothing but the keyboard."""
import pathlib

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from hands import hands
from screen_reader import has, role_of, wait_for
from window_test import play

MOST_STEPS = 40  # more than there are controls


def focused(program):
    """(role, name) of what has the focus; a group that hands its focus to a control within comes before that one."""
    def look():
        found = None
        for thing in program.shown():
            if has(thing, Atspi.StateType.FOCUSED):
                found = role_of(thing), thing.get_name()
        return found
    return wait_for("a focus", look)


def walk_to(program, role, name):
    """Presses the tabulator until that control has the focus."""
    for _ in range(MOST_STEPS):
        before = focused(program)
        if before == (role, name):
            return
        hands.press_key("Tab")
        wait_for("the next focus", lambda: focused(program) != before)  # noqa: B023
    raise AssertionError(f"the tabulator never reached {role} “{name}”")


def convert(scene):
    program = scene.start(scene.clip)
    walk_to(program, "radio button", scene["direction.spatial.to.sbs"])
    hands.press_key("Down")
    wait_for("the other direction", lambda: program.checked("radio button", scene["direction.sbs.to.spatial"]))
    walk_to(program, "push button", scene["section.output.folder"])  # the drop target
    hands.press_key("space")
    wait_for("the file dialog's field", lambda: focused(program)[0] == "text")
    hands.type_words(str(scene.output))
    hands.press_key("Return")
    program.wait_text(str(scene.output))
    hands.press_key("ctrl+Return")
    program.wait_text(scene["alert.conversion.success"])
    wait_for("the alert's button", lambda: focused(program) == ("push button", "OK"))
    hands.press_key("Return")
    wait_for("the sheet's button", lambda: focused(program) == ("push button", scene["button.close"]))
    hands.press_key("Escape")
    wait_for("the form", lambda: not program.find("progress bar", None))
    assert scene.names() == ["clip_spatial.mov"], scene.names()
    open_help(scene, program)
    open_menu(scene, program)
    scene.quit(program)


def open_help(scene, program):
    """The page in the user's language, of those beside the program."""
    wait_for("the window in front", program.is_in_front)
    hands.press_key("F1")
    opened = wait_for("the browser", scene.opened_pages)[0]
    page = "index.html" if scene.options.language == "ja" else "index_en.html"
    assert opened.startswith("file:///") and opened.endswith(f"/mac/lumetw/{page}"), opened
    assert pathlib.Path(opened.removeprefix("file://")).is_file(), opened


def open_menu(scene, program):
    wait_for("the window in front", program.is_in_front)
    hands.press_key("F10")
    program.wait("menu item", scene["menu.about"])
    hands.press_key("Escape")
    hands.press_key("Escape")
    wait_for("the menu's end", lambda: not program.find("menu item", scene["menu.about"]))


if __name__ == "__main__":
    play(convert)
