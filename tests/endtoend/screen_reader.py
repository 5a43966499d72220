# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads and presses a program's controls over AT-SPI, as assistive technology does, by role and name."""
import subprocess
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

TIMEOUT = 60  # seconds; a longer wait fails


def wait_for(what, condition):
    """Waits until the condition returns a true value, and returns that. Fails after TIMEOUT seconds."""
    end = time.monotonic() + TIMEOUT
    while (began := time.monotonic()) < end:
        try:
            if answer := condition():
                return answer
        except GLib.Error:
            pass  # the control disappeared while it was read
        # Asking keeps the program busy, too. So it gets as much time for its work as for answering.
        time.sleep(max(0.02, time.monotonic() - began))
    raise AssertionError(f"not reached in time: {what}")


def has(thing, state):
    return thing.get_state_set().contains(state)


def role_of(thing):
    """The name of the role. Newer releases of AT-SPI say "button" instead of "push button"."""
    name = thing.get_role_name()
    return "push button" if name == "button" else name


def everything_below(thing):
    for index in range(thing.get_child_count()):
        child = thing.get_child_at_index(index)
        if child is not None:
            yield child
            yield from everything_below(child)


def visible_below(thing):
    """All visible controls below, with their states. Each question takes time: none is asked twice, and none about what
    lies in an invisible control."""
    for index in range(thing.get_child_count()):
        child = thing.get_child_at_index(index)
        if child is None:
            continue
        states = child.get_state_set()
        if states.contains(Atspi.StateType.SHOWING):
            yield child, states
            yield from visible_below(child)


def shown_below(thing):
    """The same with their roles, as a screen reader finds them: without the items of combo boxes."""
    for index in range(thing.get_child_count()):
        child = thing.get_child_at_index(index)
        if child is None:
            continue
        states = child.get_state_set()
        if states.contains(Atspi.StateType.SHOWING):
            role = role_of(child)
            yield child, states, role
            if role != "combo box":
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
        """The visible controls of all windows now, with their states and roles."""
        self.root.clear_cache()
        return [found for window in self.windows() for found in shown_below(window)]

    def find(self, role, name, within=None):
        """The visible control with that role and name, or None. name=None means any name."""
        self.root.clear_cache()
        for thing, _ in visible_below(within or self.root):
            if role_of(thing) == role and name in (None, thing.get_name()):
                return thing
        return None

    def wait(self, role, name):
        return wait_for(f"{role} “{name}”", lambda: self.find(role, name))

    def wait_text(self, words):
        """Waits until the text is shown anywhere."""
        def shown():
            self.root.clear_cache()
            return any(words in (thing.get_name() or "") for thing, _ in visible_below(self.root))
        wait_for(f"the text “{words}”", shown)

    def press(self, role, name, within=None):
        """Presses or toggles the control with that role and name, as soon as it is enabled."""
        def usable():
            thing = self.find(role, name, within)
            return thing if thing and has(thing, Atspi.StateType.SENSITIVE) else None
        thing = wait_for(f"{role} “{name}” enabled", usable)
        Atspi.Action.do_action(thing.get_action_iface(), 0)

    def choose_path(self, button, accept, path):
        """Chooses a path in a file dialog. button opens the dialog; accept is its button that accepts the choice."""
        self.press("push button", button)
        dialog = wait_for("a file dialog", lambda: self.find("file chooser", None) or self.find("dialog", None))
        role, title = role_of(dialog), dialog.get_name()
        field = wait_for("the dialog's field", lambda: self.find("text", None, dialog))
        self.type_into(field, str(path))
        self.press("push button", accept, dialog)
        wait_for("the dialog's end", lambda: not self.find(role, title))

    def type_into(self, field, words):
        Atspi.EditableText.set_text_contents(field.get_editable_text_iface(), words)

    def wait_until_full(self, name):
        """Waits until the progress bar of that name is full. Only the bar itself is asked for its progress."""
        value = self.wait("progress bar", name).get_value_iface()
        wait_for(f"a full bar “{name}”",
                 lambda: Atspi.Value.get_current_value(value) == Atspi.Value.get_maximum_value(value))

    def checked(self, role, name):
        return has(self.wait(role, name), Atspi.StateType.CHECKED)

    def describe(self):
        """Prints what is shown, for the report of a failure."""
        self.root.clear_cache()
        for thing in everything_below(self.root):
            if has(thing, Atspi.StateType.SHOWING):
                value = thing.get_value_iface()
                print(role_of(thing), repr(thing.get_name()), Atspi.Value.get_current_value(value) if value else "")

    def is_in_front(self):
        """Whether the main window has the keyboard. After a sheet closes that takes a moment."""
        self.root.clear_cache()
        return any(role_of(window) == "frame" and has(window, Atspi.StateType.ACTIVE) for window in self.windows())

    def wait_for_exit(self):
        """Waits until the program ends, and returns its exit status."""
        return self.process.wait(TIMEOUT)
