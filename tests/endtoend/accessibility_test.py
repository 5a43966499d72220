# SPDX-License-Identifier: GPL-3.0-or-later
"""What assistive technology finds in the real window, in each of its states: names, values, and reading order."""
import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from keyboard_test import MAXIMUM_STEPS, focused, press_until_focus_moves
from screen_reader import everything_below, has, role_of, wait_for
from window_test import run_tests

MENUS = {"menu bar", "menu", "menu item"}


def controls(program):
    """The controls that can have the keyboard focus now, without the menu."""
    return [thing for thing, states, role in program.shown() if role not in MENUS
            and states.contains(Atspi.StateType.FOCUSABLE) and states.contains(Atspi.StateType.SENSITIVE)]


def identity(thing):
    return role_of(thing), thing.get_name()


def purpose(thing):
    """The role, and the text of the label if there is one, otherwise the name. Qt names a combo box by its item."""
    for relation in thing.get_relation_set():
        if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY:
            return role_of(thing), relation.get_target(0).get_name()
    return identity(thing)


def has_value(thing):
    """Whether a control reports its value, in the way of its role."""
    role = role_of(thing)
    if role in ("slider", "progress bar"):
        value = thing.get_value_iface()
        return (Atspi.Value.get_minimum_value(value) <= Atspi.Value.get_current_value(value)
                <= Atspi.Value.get_maximum_value(value))
    if role == "text":
        return Atspi.Text.get_character_count(thing.get_text_iface()) > 0
    if role in ("check box", "radio button"):
        return True  # its value is its checked state; see check_form
    if role == "combo box":
        return thing.get_name() in [item.get_name() for item in everything_below(thing)]
    assert role == "push button", f"{identity(thing)} is of an unknown kind"
    return Atspi.Action.get_n_actions(thing.get_action_iface()) > 0


def check_controls(program, count):
    found = wait_for(f"{count} controls", lambda: (now := controls(program)) and len(now) == count and now)
    names = [purpose(thing) for thing in found]
    assert all(name for _, name in names), names
    assert len(set(names)) == len(names), names
    without_value = [identity(thing) for thing in found if not has_value(thing)]
    assert not without_value, without_value
    return found


def extents(thing):
    return Atspi.Component.get_extents(thing.get_component_iface(), Atspi.CoordType.SCREEN)


def comes_after(later, earlier):
    """Order of reading: top to bottom, then left to right."""
    if later.y <= earlier.y + earlier.height // 2 < later.y + later.height:
        return later.x >= earlier.x + earlier.width
    return later.y >= earlier.y + earlier.height


def check_tab_order(program, found, last):
    """The Tab key stops once at each control, in reading order; in a group of radio buttons at the checked one."""
    places = {identity(thing): extents(thing) for thing in found
              if role_of(thing) != "radio button" or has(thing, Atspi.StateType.CHECKED)}
    stops = [press_until_focus_moves(program, "Tab", focused(program))]
    while len(stops) < MAXIMUM_STEPS and (step := press_until_focus_moves(program, "Tab", stops[-1])) != stops[0]:
        stops.append(step)
    first = min(stops, key=lambda stop: (places[stop].y, places[stop].x))
    start = stops.index(first)
    stops = stops[start:] + stops[:start]
    assert sorted(stops) == sorted(places), (stops, sorted(places))
    # The start button stays visible below the scrolled form, so it is last.
    assert stops.pop() == last
    for earlier, later in zip(stops, stops[1:]):
        assert comes_after(places[later], places[earlier]), (earlier, later)


def check_form(scene, program, count, *chosen):
    """Checks one state of the form: the number of controls, and which of them are checked."""
    found = check_controls(program, count)
    checked = {thing.get_name() for thing in found if has(thing, Atspi.StateType.CHECKED)}
    assert checked == {scene[key] for key in chosen}, checked
    check_tab_order(program, found, ("push button", scene["button.start.conversion"]))


def check_forms(scene, program):
    to_sbs, to_spatial = "direction.spatial.to.sbs", "direction.sbs.to.spatial"
    sound, resizing = "option.copy.audio", "option.enable.resize"
    check_form(scene, program, 17, to_sbs, sound)
    program.press("radio button", scene[to_spatial])
    check_form(scene, program, 20, to_spatial, sound)
    program.press("check box", scene[resizing])
    check_form(scene, program, 23, to_spatial, sound, resizing)
    program.press("check box", scene[sound])
    program.press("radio button", scene[to_sbs])
    check_form(scene, program, 20, to_sbs, resizing)
    program.press("check box", scene[resizing])
    program.press("radio button", scene[to_spatial])


def check_sheet(scene, program, button):
    """Only that button can be reached, and both bars report the progress."""
    assert identity(check_controls(program, 1)[0]) == ("push button", scene[button])
    bars = [thing for thing in everything_below(program.root) if role_of(thing) == "progress bar"]
    assert {bar.get_name() for bar in bars} == {scene["spoken.file.progress"], scene["spoken.overall.progress"]}
    assert all(has_value(bar) for bar in bars)


def check_window(scene):
    long = scene.folder / "long.mp4"
    scene.draw_long(long)
    program = scene.start(long)
    check_forms(scene, program)
    scene.choose_output(program)
    program.press("push button", scene["button.start.conversion"])
    program.wait("push button", scene["button.cancel"])
    check_sheet(scene, program, "button.cancel")
    program.press("push button", scene["button.cancel"])
    program.press("push button", scene["button.stop"])
    check_controls(program, 20)
    scene.quit(program)


if __name__ == "__main__":
    run_tests(check_window)
