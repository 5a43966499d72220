# SPDX-License-Identifier: GPL-3.0-or-later
"""What assistive technology finds on the real window, in each of its states: names, values, and an order to read in."""
import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from hands import hands
from keyboard_test import MOST_STEPS, focused
from screen_reader import everything_below, has, role_of, wait_for
from window_test import play

MENUS = {"menu bar", "menu", "menu item"}


def controls(program):
    """What the keyboard can work with now, outside of the menu."""
    return [thing for thing in program.shown() if role_of(thing) not in MENUS
            and has(thing, Atspi.StateType.FOCUSABLE) and has(thing, Atspi.StateType.SENSITIVE)]


def identity(thing):
    return role_of(thing), thing.get_name()


def purpose(thing):
    """What it is for: its label's words where it has one. The toolkit names a combo box by what is chosen in it."""
    for relation in thing.get_relation_set():
        if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY:
            return role_of(thing), relation.get_target(0).get_name()
    return identity(thing)


def has_value(thing):
    """Whether a control tells what it holds, each kind in its own way."""
    role = role_of(thing)
    if role in ("slider", "progress bar"):
        value = thing.get_value_iface()
        return (Atspi.Value.get_minimum_value(value) <= Atspi.Value.get_current_value(value)
                <= Atspi.Value.get_maximum_value(value))
    if role == "text":
        return Atspi.Text.get_character_count(thing.get_text_iface()) > 0
    if role in ("check box", "radio button"):
        return True  # being checked or not; see check_form
    if role == "combo box":
        return thing.get_name() in [item.get_name() for item in everything_below(thing)]
    assert role == "push button", f"{identity(thing)} is of an unknown kind"
    return Atspi.Action.get_n_actions(thing.get_action_iface()) > 0


def check_controls(program, count):
    found = wait_for(f"{count} controls", lambda: (now := controls(program)) and len(now) == count and now)
    names = [purpose(thing) for thing in found]
    assert all(name for _, name in names), names
    assert len(set(names)) == len(names), names
    silent = [identity(thing) for thing in found if not has_value(thing)]
    assert not silent, silent
    return found


def place(thing):
    return Atspi.Component.get_extents(thing.get_component_iface(), Atspi.CoordType.SCREEN)


def reads_after(later, earlier):
    """Top to bottom, left to right."""
    if later.y <= earlier.y + earlier.height // 2 < later.y + later.height:
        return later.x >= earlier.x + earlier.width
    return later.y >= earlier.y + earlier.height


def next_focus(program):
    before = focused(program)
    hands.press_key("Tab")
    return wait_for("the next focus", lambda: (now := focused(program)) != before and now)


def check_tabulator(program, found, last):
    """The tabulator stops once at each control, as the eye reads; of a group of radio buttons, at the chosen one."""
    places = {identity(thing): place(thing) for thing in found
              if role_of(thing) != "radio button" or has(thing, Atspi.StateType.CHECKED)}
    stops = [next_focus(program)]
    while len(stops) < MOST_STEPS and (step := next_focus(program)) != stops[0]:
        stops.append(step)
    first = min(stops, key=lambda stop: (places[stop].y, places[stop].x))
    turn = stops.index(first)
    stops = stops[turn:] + stops[:turn]
    assert sorted(stops) == sorted(places), (stops, sorted(places))
    # The start button stays in sight below a form that is scrolled behind it.
    assert stops.pop() == last
    for earlier, later in zip(stops, stops[1:]):
        assert reads_after(places[later], places[earlier]), (earlier, later)


def check_form(scene, program, count, *chosen):
    """One state of the form: so many controls, and which of them are chosen."""
    found = check_controls(program, count)
    checked = {thing.get_name() for thing in found if has(thing, Atspi.StateType.CHECKED)}
    assert checked == {scene[key] for key in chosen}, checked
    check_tabulator(program, found, ("push button", scene["button.start.conversion"]))


def check_forms(scene, program):
    to_sbs, to_spatial = "direction.spatial.to.sbs", "direction.sbs.to.spatial"
    sound, resizing = "option.copy.audio", "option.enable.resize"
    check_form(scene, program, 16, to_sbs, sound)
    program.press("radio button", scene[to_spatial])
    check_form(scene, program, 18, to_spatial, sound)
    program.press("check box", scene[resizing])
    check_form(scene, program, 21, to_spatial, sound, resizing)
    program.press("check box", scene[sound])
    program.press("radio button", scene[to_sbs])
    check_form(scene, program, 19, to_sbs, resizing)
    program.press("check box", scene[resizing])
    program.press("radio button", scene[to_spatial])


def check_sheet(scene, program, button):
    """Nothing but that button can be reached, and both bars tell how far the work is."""
    assert identity(check_controls(program, 1)[0]) == ("push button", scene[button])
    bars = [thing for thing in everything_below(program.root) if role_of(thing) == "progress bar"]
    assert {bar.get_name() for bar in bars} == {scene["spoken.file.progress"], scene["spoken.overall.progress"]}
    assert all(has_value(bar) for bar in bars)


def walk(scene):
    long = scene.folder / "long.mp4"
    scene.draw(long, 3000, "640x360")
    program = scene.start(long)
    check_forms(scene, program)
    scene.choose_output(program)
    program.press("push button", scene["button.start.conversion"])
    program.wait("push button", scene["button.cancel"])
    check_sheet(scene, program, "button.cancel")
    program.press("push button", scene["button.cancel"])
    program.press("push button", scene["button.stop"])
    check_controls(program, 18)
    scene.quit(program)


if __name__ == "__main__":
    play(walk)
