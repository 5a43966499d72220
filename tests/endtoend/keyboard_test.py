# SPDX-License-Identifier: GPL-3.0-or-later
"""A whole conversion with nothing but the keyboard."""
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
    walk_to(program, "push button", scene["button.start.conversion"])
    hands.press_key("space")
    program.wait_text(scene["alert.conversion.success"])
    wait_for("the alert's button", lambda: focused(program) == ("push button", "OK"))
    hands.press_key("Return")
    wait_for("the sheet's button", lambda: focused(program) == ("push button", scene["button.close"]))
    hands.press_key("Escape")
    wait_for("the form", lambda: not program.find("progress bar", None))
    assert scene.names() == ["clip_spatial.mov"], scene.names()
    scene.quit(program)


if __name__ == "__main__":
    play(convert)
