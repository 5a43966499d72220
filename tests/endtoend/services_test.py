# SPDX-License-Identifier: GPL-3.0-or-later
"""What the program reports to the desktop while it works, with the desktop's services and without them."""
import json
import os
import pathlib
import subprocess
import sys

from screen_reader import Program, wait_for
from window_test import run_tests

LOGIND = "org.freedesktop.login1.Manager"
LAUNCHER = "com.canonical.Unity.LauncherEntry"


class Services:
    def __init__(self, folder):
        self.log = folder / "services"
        script = pathlib.Path(__file__).with_name("fake_services.py")
        with self.log.open("wb") as log:
            self.process = subprocess.Popen([sys.executable, script], stdout=log)
        wait_for("the services", lambda: ["ready"] in self.messages())

    def messages(self):
        lines = self.log.read_text(encoding="utf-8").split("\n")
        return [json.loads(line) for line in lines[:-1]]  # the part after the last line feed may be incomplete

    def calls(self, interface, method):
        return [words[2] if len(words) > 2 else [] for words in self.messages() if words[:2] == [interface, method]]

    def wait(self, interface, method):
        return wait_for(f"{interface}.{method}", lambda: self.calls(interface, method))

    def close(self):
        self.process.terminate()
        self.process.wait()


def open_window_in_front():
    """Opens another window, so that the program's window is not in front."""
    other = subprocess.Popen(["xev"], stdout=subprocess.DEVNULL)

    def in_front():
        found = subprocess.run(["xdotool", "getactivewindow", "getwindowname"], capture_output=True, text=True)
        return "Event Tester" in found.stdout
    wait_for("another window in front", in_front)
    return other


def convert(scene, program):
    program.press("radio button", scene["direction.sbs.to.spatial"])
    scene.choose_output(program)
    other = open_window_in_front()
    program.press("push button", scene["button.start.conversion"])
    program.wait_text(scene["alert.conversion.success"])
    return other


def with_services(scene):
    os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = os.environ["DBUS_SESSION_BUS_ADDRESS"]
    services = Services(scene.folder)
    try:
        program = scene.start(scene.clip)
        other = convert(scene, program)
        what, who, why, how = services.wait(LOGIND, "Inhibit")[0]
        assert (what, who, how) == ("sleep:idle", "Lumetwin", "block") and why == scene["reason.converting"]
        _, flags, details = services.wait("org.freedesktop.portal.Inhibit", "Inhibit")[0]
        assert flags == 4 and details == {"reason": scene["reason.converting"]}, (flags, details)
        title, message = services.wait("org.freedesktop.Notifications", "Notify")[0][3:5]
        assert title == scene["alert.conversion.success"] and message == scene["status.complete"] % (1, 0)
        check_launcher(wait_for("the end of the progress", lambda: launcher_updates_after_end(services)))
        services.wait(LOGIND, "released")
        services.wait("org.freedesktop.portal.Request", "Close")
        program.press("push button", scene["button.show.in.folder"])
        shown = services.wait("org.freedesktop.FileManager1", "ShowItems")[0][0]
        assert shown == [(scene.output / "clip_spatial.mov").as_uri()], shown
        other.kill()
        other.wait()
        program.process.kill()
        program.process.wait()
    finally:
        services.close()


def launcher_updates_after_end(services):
    updates = services.calls(LAUNCHER, "Update")
    return updates if updates and not updates[-1][1]["progress-visible"] else None


def check_launcher(updates):
    assert {entry for entry, _ in updates} == {"application://example.lumetwin.Lumetwin.desktop"}
    progress = [values["progress"] for _, values in updates if values["progress-visible"]]
    assert progress[0] == 0 and progress == sorted(progress) and progress[-1] > 0, progress


def without_services(scene):
    """Without the services everything else works, and no error is printed."""
    os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={scene.folder}/none"
    for old in scene.output.iterdir():
        old.unlink()
    with (scene.folder / "errors").open("w+b") as errors:
        scene.program = program = Program(scene.options.program, scene.clip, errors=errors)
        other = convert(scene, program)
        program.press("push button", "OK")
        program.press("push button", scene["button.close"])
        other.kill()
        other.wait()
        program.press("menu item", "Lumetwin")
        program.press("menu item", scene["menu.quit"])
        assert program.wait_for_exit() == 0
        errors.seek(0)
        printed = errors.read().decode()
    assert "DBus" not in printed and "login1" not in printed and "portal" not in printed, printed


if __name__ == "__main__":
    run_tests(with_services, without_services)
