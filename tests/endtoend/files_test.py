# SPDX-License-Identifier: GPL-3.0-or-later
"""A folder of twelve mixed files in the panel of files, with the keyboard only: look through them, take one out, swap
the eyes, convert, read the results, convert again what failed."""
from hands import user
from keyboard_test import focused, press_until_focus_moves, tab_to
from screen_reader import everything_below, role_of, wait_for
from window_test import run_tests

PHOTOS = ["garden.jpg", "house.png", "lake.jpg", "mill.jpg", "oak.png"]
CLIPS = ["arrival.mp4", "bridge.mp4"]


def draw_input(scene):
    folder = scene.folder / "in"
    folder.mkdir()
    for number, name in enumerate(PHOTOS):
        scene.draw_photo(folder / name, number)
    for name in CLIPS:
        scene.draw(folder / name, 12)
    scene.draw_photo(folder / "cellar.jpg", 9, eyes=1)  # no two eyes
    scene.run(scene.options.batch, "--direction", "sbsToSpatial", "--output", folder, folder / "garden.jpg")
    (folder / "torn.jpg").write_text("no picture")
    (folder / "notes.txt").write_text("no media")
    (folder / "table.ods").write_text("no media")
    return folder


def rows(program):
    """What the rows of the list say, by file name, those outside of the view included."""
    program.root.clear_cache()
    names = [thing.get_name() for thing in everything_below(program.root) if role_of(thing) == "list item"]
    return dict(name.split(", ", 1) for name in names if ", " in name)


def wait_for_row(program, name, words):
    wait_for(f"{name}: {words}", lambda: words in rows(program).get(name, ""))


def go_to_row(program, name):
    """Walks to a row with the arrow keys. Each row that gets the focus is also shown in the preview."""
    now = focused(program)
    for _ in range(20):
        if now[0] == "list item" and now[1].startswith(f"{name}, "):
            return
        now = press_until_focus_moves(program, "Down" if now[0] == "list item" else "Tab", now)
    raise AssertionError(f"the keys never reached {name}")


def close_result(scene, program, title):
    program.wait_text(title)
    wait_for("the alert's button", lambda: focused(program) == ("push button", "OK"))
    user.press_key("Return")
    wait_for("the sheet's button", lambda: focused(program) == ("push button", scene["button.close"]))
    user.press_key("Escape")
    wait_for("the form", lambda: not program.find("progress bar", None))


def choose_output(scene, program):
    tab_to(program, "push button", scene["section.output.folder"])
    user.press_key("space")
    wait_for("the file dialog's field", lambda: focused(program)[0] == "text")
    user.type_text(str(scene.output))
    user.press_key("Return")
    program.wait_text(str(scene.output))


def open_files(scene, program):
    """Opens the panel, unless it opened by itself because the screen has room for it."""
    wait_for("the window in front", program.is_in_front)
    if not program.find("list", scene["files.title"]):
        user.press_key("F9")
        program.wait("list", scene["files.title"])


def return_to_form(scene, program):
    if program.find("push button", scene["files.back"]):
        user.press_key("F9")


def look_through(scene, program):
    """Turns the direction round, looks through the files, and takes one of them out."""
    open_files(scene, program)
    program.wait_text(scene["files.advice.turn"])
    tab_to(program, "push button", scene["files.advice.turn"])
    user.press_key("space")
    wait_for_row(program, "arrival.mp4", scene["warning.not.stereo"])
    go_to_row(program, "cellar.jpg")
    wait_for_row(program, "cellar.jpg", scene["warning.not.stereo"])
    user.press_key("Delete")
    wait_for_row(program, "cellar.jpg", scene["files.state.left.out"])
    tab_to(program, "check box", scene["preview.swap"])
    user.press_key("space")
    wait_for("swapped eyes", lambda: program.checked("check box", scene["preview.swap"]))
    return_to_form(scene, program)
    wait_for("the form", lambda: program.checked("check box", scene["option.swap.lr"]))


def convert_mixed_folder(scene):
    folder = draw_input(scene)
    program = scene.start(folder)
    program.wait_text(str(folder))
    look_through(scene, program)
    choose_output(scene, program)
    user.press_key("ctrl+Return")
    close_result(scene, program, scene["alert.conversion.error"])
    open_files(scene, program)
    read = rows(program)
    assert scene["files.result.converted"] in read["arrival.mp4"], read
    assert read["cellar.jpg"] == scene["files.state.left.out"], read
    assert scene["files.result.failed.format"].split("%")[0] in read["torn.jpg"], read
    scene.run(scene.options.batch, "--direction", "spatialToSBS", "--output", scene.output,
              scene.output / "arrival_spatial.mov")
    left, right = scene.mean_luma_of_halves(scene.output / "arrival_spatial_sbs.mp4")
    assert left < 100 and right > 150, (left, right)  # the bright eye was on the left
    (scene.output / "arrival_spatial_sbs.mp4").unlink()

    scene.draw_photo(folder / "torn.jpg", 5)  # now it is a picture
    tab_to(program, "push button", scene["files.again"])
    user.press_key("space")
    close_result(scene, program, scene["alert.conversion.success"])
    expected = sorted([f"{name.split('.')[0]}_spatial.heic" for name in [*PHOTOS, "torn.jpg"]]
                      + [f"{name.split('.')[0]}_spatial.mov" for name in CLIPS])
    assert scene.output_names() == expected, scene.output_names()
    scene.quit(program)


if __name__ == "__main__":
    run_tests(convert_mixed_folder)
