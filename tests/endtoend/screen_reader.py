# SPDX-License-Identifier: GPL-3.0-or-later
"""A program's window as assistive technology sees it: controls by role and name, pressed and read over AT-SPI."""
import subprocess
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

PATIENCE = 60  # seconds until something that must happen counts as missing


def wait_for(what, condition):
    """The first true answer of the condition. Ends the test when there is none."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        try:
            if answer := condition():
                return answer
        except GLib.Error:
            pass  # what was looked at went away while we looked
        time.sleep(0.02)
    raise AssertionError(f"waited in vain: {what}")


def has(thing, state):
    return thing.get_state_set().contains(state)


def role_of(thing):
    """The name of its role; newer releases of AT-SPI call a push button a button."""
    name = thing.get_role_name()
    return "push button" if name == "button" else name


def everything_below(thing):
    for index in range(thing.get_child_count()):
        child = thing.get_child_at_index(index)
        if child is not None:
            yield child
            yield from everything_below(child)


def shown_below(thing):
    """As a screen reader walks: into what is shown only, and not into what a combo box could hold."""
    for index in range(thing.get_child_count()):
        child = thing.get_child_at_index(index)
        if child is not None and has(child, Atspi.StateType.SHOWING):
            yield child
            if role_of(child) != "combo box":
                yield from shown_below(child)


class Program:
    """A running program and its windows."""

    def __init__(self, *command, errors=None):
        self.process = subprocess.Popen([str(word) for word in command], stderr=errors)
        self.root = wait_for("the program on the accessibility bus", self._find)

    def _find(self):
        assert self.process.poll() is None, f"the program ended with {self.process.returncode}"
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(index)
            if child is not None and child.get_process_id() == self.process.pid and child.get_child_count():
                return child
        return None

    def windows(self):
        each = [self.root.get_child_at_index(index) for index in range(self.root.get_child_count())]
        return [window for window in each if window]

    def shown(self):
        """What is shown in all windows now."""
        self.root.clear_cache()
        return [thing for window in self.windows() for thing in shown_below(window)]

    def find(self, role, name, within=None):
        """What is shown with that role and name now, or None. A name of None stands for any."""
        self.root.clear_cache()
        for thing in everything_below(within or self.root):
            if (role_of(thing) == role and name in (None, thing.get_name())
                    and has(thing, Atspi.StateType.SHOWING)):
                return thing
        return None

    def wait(self, role, name):
        return wait_for(f"{role} “{name}”", lambda: self.find(role, name))

    def wait_text(self, words):
        """Waits until a text is shown anywhere."""
        def shown():
            self.root.clear_cache()
            return any(words in (thing.get_name() or "") and has(thing, Atspi.StateType.SHOWING)
                       for thing in everything_below(self.root))
        wait_for(f"the text “{words}”", shown)

    def press(self, role, name, within=None):
        """Presses or toggles what has that role and name, once it can be used."""
        def usable():
            thing = self.find(role, name, within)
            return thing if thing and has(thing, Atspi.StateType.SENSITIVE) else None
        thing = wait_for(f"{role} “{name}” in use", usable)
        Atspi.Action.do_action(thing.get_action_iface(), 0)

    def choose_path(self, button, accept, path):
        """Goes through a file dialog: the button that opens it, the path, the button that takes the choice."""
        self.press("push button", button)
        dialog = wait_for("a file dialog", lambda: self.find("file chooser", None) or self.find("dialog", None))
        role, title = role_of(dialog), dialog.get_name()
        field = wait_for("the dialog's field", lambda: self.find("text", None, dialog))
        self.type_into(field, str(path))
        self.press("push button", accept, dialog)
        wait_for("the dialog's end", lambda: not self.find(role, title))

    def type_into(self, field, words):
        Atspi.EditableText.set_text_contents(field.get_editable_text_iface(), words)

    def is_full(self, name):
        """Whether the progress bar of that name stands at its end."""
        bar = self.find("progress bar", name)
        value = bar.get_value_iface() if bar else None
        return value and Atspi.Value.get_current_value(value) == Atspi.Value.get_maximum_value(value)

    def checked(self, role, name):
        return has(self.wait(role, name), Atspi.StateType.CHECKED)

    def describe(self):
        """What is shown, for the report of a failure."""
        self.root.clear_cache()
        for thing in everything_below(self.root):
            if has(thing, Atspi.StateType.SHOWING):
                value = thing.get_value_iface()
                print(role_of(thing), repr(thing.get_name()), Atspi.Value.get_current_value(value) if value else "")

    def is_in_front(self):
        """Whether its main window has the keys, which comes a moment after a sheet has gone."""
        self.root.clear_cache()
        return any(role_of(window) == "frame" and has(window, Atspi.StateType.ACTIVE) for window in self.windows())

    def ended(self):
        """The exit status, when the program ends by itself."""
        return self.process.wait(PATIENCE)
