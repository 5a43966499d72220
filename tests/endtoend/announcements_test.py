# SPDX-License-Identifier: GPL-3.0-or-later
"""Events that a screen reader gets without asking: a filled drop target, a moving progress bar."""

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from screen_reader import wait_for
from window_test import run_tests


class Listener:
    """Records events of all programs: (property, name, description, value of the control)."""

    def __init__(self, *events):
        self.heard = []
        self.listener = Atspi.EventListener.new(self.record)
        for event in events:
            self.listener.register(event)

    def record(self, event):
        try:
            value = event.source.get_value_iface()
            self.heard.append((event.type.rpartition(":")[2], event.source.get_name(), event.source.get_description(),
                               Atspi.Value.get_current_value(value) if value else None))
        except GLib.Error:
            pass  # the control no longer exists

    def wait(self, what, condition):
        def heard():
            while GLib.MainContext.default().iteration(False):
                pass
            return [one for one in self.heard if condition(*one)]
        return wait_for(what, heard)


def convert(scene):
    listener = Listener("object:property-change:accessible-value", "object:property-change:accessible-description",
                        "object:property-change:accessible-name")
    program = scene.start(scene.clip)
    program.press("radio button", scene["direction.sbs.to.spatial"])
    scene.choose_output(program)
    listener.wait("the filled output", lambda what, name, described, value: what == "accessible-description"
                  and name == scene["section.output.folder"] and described == scene.output.name)
    program.press("push button", scene["button.start.conversion"])
    for bar in ("spoken.file.progress", "spoken.overall.progress"):
        listener.wait(bar, lambda what, name, described, value: what == "accessible-value"
                      and name == scene[bar] and value)
    listener.wait("the button that closes now",
                  lambda what, name, described, value: what == "accessible-name" and name == scene["button.close"])
    scene.close_result(program, scene["alert.conversion.success"])
    program.process.kill()
    program.process.wait()


if __name__ == "__main__":
    run_tests(convert)
