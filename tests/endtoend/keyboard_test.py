# SPDX-License-Identifier: GPL-3.0-or-later
"""A whole conversion with the keyboard only."""
import pathlib

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from hands import user
from screen_reader import has, wait_for
from window_test import run_tests

MAXIMUM_STEPS = 40  # more than the number of controls


def focused(program):
    """(role, name) of the focused control. When a group passes its focus to a control inside, this is that control."""
    def find_focus():
        found = None
        for thing, states, role in program.shown():
            # Qt reports the current item of a list as focused even when the list has not the focus.
            if states.contains(Atspi.StateType.FOCUSED) and not (role == "list item" and not has(thing.get_parent(),
                                                                                               Atspi.StateType.FOCUSED)):
                found = role, thing.get_name()
        return found
    return wait_for("a focus", find_focus)


def press_until_focus_moves(program, key, before):
    """Presses a key, and returns what has the focus then."""
    user.press_key(key)
    return wait_for("the next focus", lambda: (now := focused(program)) != before and now)


def tab_to(program, role, name):
    """Presses the Tab key until that control has the focus."""
    now = focused(program)
    for _ in range(MAXIMUM_STEPS):
        if now == (role, name):
            return
        now = press_until_focus_moves(program, "Tab", now)
    raise AssertionError(f"the Tab key never reached {role} “{name}”")


def convert(scene):
    program = scene.start(scene.clip)
    tab_to(program, "radio button", scene["direction.spatial.to.sbs"])
    user.press_key("Down")
    wait_for("the other direction", lambda: program.checked("radio button", scene["direction.sbs.to.spatial"]))
    tab_to(program, "push button", scene["section.output.folder"])  # the drop target
    user.press_key("space")
    wait_for("the file dialog's field", lambda: focused(program)[0] == "text")
    user.type_text(str(scene.output))
    user.press_key("Return")
    program.wait_text(str(scene.output))
    user.press_key("ctrl+Return")
    program.wait_text(scene["alert.conversion.success"])
    wait_for("the alert's button", lambda: focused(program) == ("push button", "OK"))
    user.press_key("Return")
    wait_for("the sheet's button", lambda: focused(program) == ("push button", scene["button.close"]))
    user.press_key("Escape")
    wait_for("the form", lambda: not program.find("progress bar", None))
    assert scene.output_names() == ["clip_spatial.mov"], scene.output_names()
    open_help(scene, program)
    open_menu(scene, program)
    scene.quit(program)


def open_help(scene, program):
    """F1 opens the installed help page in the user's language."""
    wait_for("the window in front", program.is_in_front)
    user.press_key("F1")
    opened = wait_for("the browser", scene.opened_pages)[0]
    page = "index.html" if scene.options.language == "ja" else "index_en.html"
    assert opened.startswith("file:///") and opened.endswith(f"/mac/lumetw/{page}"), opened
    assert pathlib.Path(opened.removeprefix("file://")).is_file(), opened


def open_menu(scene, program):
    wait_for("the window in front", program.is_in_front)
    user.press_key("F10")
    program.wait("menu item", scene["menu.about"])
    user.press_key("Escape")
    user.press_key("Escape")
    wait_for("the menu's end", lambda: not program.find("menu item", scene["menu.about"]))


if __name__ == "__main__":
    run_tests(convert)
