# SPDX-License-Identifier: GPL-3.0-or-later
"""One window from the first file to the finished batch, used over the accessibility bus and by keyboard."""
import argparse
import os
import pathlib
import re
import subprocess
import tempfile

from hands import user
from screen_reader import Program, wait_for


def read_texts(folder, language):
    """The text table as a dictionary of texts by key. The English table has its texts in msgid."""
    table = (folder / f"{language}.po").read_text(encoding="utf-8")
    joined = re.sub(r'"\n"', "", table)
    found = re.findall(r'msgctxt "(.*)"\nmsgid "(.*)"\nmsgstr "(.*)"', joined)
    return {key: (translation or wording).replace("\\n", "\n") for key, wording, translation in found}


class Scene:
    """A folder with media, the program's texts, and functions that check the outputs."""

    def __init__(self, options, folder):
        self.options = options
        self.folder = folder
        self.program = None
        self.texts = read_texts(options.texts, options.language)
        self.output = folder / "out"
        self.output.mkdir()
        self.clip = folder / "clip.mp4"
        self.draw(self.clip, 20)
        self.install_fake_browser()

    def install_fake_browser(self):
        """Replaces xdg-open by a script that only records the opened addresses."""
        folder = self.folder / "bin"
        folder.mkdir()
        browser = folder / "xdg-open"
        browser.write_text(f'#!/bin/sh\nprintf "%s\\n" "$1" >>"{self.folder}/pages"\n')
        browser.chmod(0o755)
        os.environ["PATH"] = f"{folder}:{os.environ['PATH']}"

    def opened_pages(self):
        pages = self.folder / "pages"
        return pages.read_text().split() if pages.exists() else []

    def __getitem__(self, key):
        return self.texts[key]

    def run(self, *command):
        return subprocess.run([str(word) for word in command], check=True, capture_output=True).stdout

    def draw(self, target, frames, size="320x180"):
        """Draws a clip whose left half is bright and whose right half is dark."""
        self.run(self.options.stack / "bin/ffmpeg", "-nostdin", "-v", "error", "-f", "lavfi", "-i",
                 f"color=white:s={size}:r=30", "-f", "lavfi", "-i", f"color=black:s={size}:r=30", "-filter_complex",
                 "hstack,noise=alls=12:allf=t", "-frames:v", frames, "-pix_fmt", "yuv420p", "-c:v", "libx264",
                 "-preset", "ultrafast", target)

    def draw_photo(self, target, seed, eyes=2):
        """Draws a photo of two eyes beside each other, a little apart in depth, or a picture that is not two eyes."""
        texture = ["-seed", seed, "-size", "650x360" if eyes == 2 else "1280x360", "plasma:fractal", "-modulate", "100,160"]
        pair = ["(", "-clone", 0, "-crop", "640x360+0+0", "+repage", ")", "(", "-clone", 0, "-crop", "640x360+6+0",
                "+repage", ")", "-delete", 0, "+append"]
        self.run("convert", *texture, *(pair if eyes == 2 else []), "-quality", 95, target)

    def draw_long(self, target):
        """Draws a film of 100 seconds: a short one again and again, so that drawing it costs little."""
        part = self.folder / "part.mp4"
        self.draw(part, 60, "640x360")
        self.run(self.options.stack / "bin/ffmpeg", "-nostdin", "-v", "error", "-stream_loop", 49, "-i", part, "-c", "copy",
                 target)
        part.unlink()

    def mean_luma_of_halves(self, movie):
        """The mean luma of the left and the right half of a movie's first frame."""
        planes = self.run(self.options.stack / "bin/ffmpeg", "-nostdin", "-v", "error", "-i", movie, "-frames:v", 1,
                          "-vf", "scale=2:2:flags=area", "-pix_fmt", "yuv444p", "-f", "rawvideo", "-")
        return planes[0], planes[1]

    def start(self, *files):
        os.environ.update(LC_ALL="C.UTF-8", LANGUAGE=self.options.language)
        self.program = Program(self.options.program, *files)
        return self.program

    def choose_output(self, program):
        program.choose_path(self["button.select.folder"], self["button.select"], self.output)

    def close_result(self, program, title):
        program.wait_text(title)
        program.press("push button", "OK")
        program.press("push button", self["button.close"])

    def quit(self, program):
        """Quits by keyboard."""
        wait_for("the window in front", program.is_in_front)
        user.press_key("ctrl+q")
        assert program.wait_for_exit() == 0

    def output_names(self):
        return sorted(path.name for path in self.output.iterdir())


def convert_there_and_back(scene):
    """Converts side-by-side to spatial and the result back, in the same window. The eyes keep their sides."""
    program = scene.start(scene.clip)
    program.wait_text(scene.clip.name)
    program.press("radio button", scene["direction.sbs.to.spatial"])
    assert program.checked("radio button", scene["direction.sbs.to.spatial"])
    scene.choose_output(program)
    program.press("push button", scene["button.start.conversion"])
    program.wait_until_full(scene["spoken.overall.progress"])
    scene.close_result(program, scene["alert.conversion.success"])
    assert scene.output_names() == ["clip_spatial.mov"], scene.output_names()
    words = scene.run(scene.options.batch, "inspect", scene.output / "clip_spatial.mov").decode()
    assert "spatial video" in words, words

    program.press("radio button", scene["direction.spatial.to.sbs"])
    program.choose_path(scene["button.select"], scene["button.select"], scene.output / "clip_spatial.mov")
    program.wait_text("clip_spatial.mov")
    program.press("push button", scene["button.start.conversion"])
    scene.close_result(program, scene["alert.conversion.success"])
    assert scene.output_names() == ["clip_spatial.mov", "clip_spatial_sbs.mp4"], scene.output_names()
    left, right = scene.mean_luma_of_halves(scene.output / "clip_spatial_sbs.mp4")
    assert left > 150 and right < 100, (left, right)

    ask_before_replacing(scene, program)
    scene.quit(program)


def ask_before_replacing(scene, program):
    before = (scene.output / "clip_spatial_sbs.mp4").stat()
    program.press("push button", scene["button.start.conversion"])
    program.wait_text(scene["alert.overwrite.title"])
    program.press("push button", scene["button.cancel"])
    wait_for("the form", lambda: not program.find("push button", scene["button.cancel"]))
    after = (scene.output / "clip_spatial_sbs.mp4").stat()
    assert (before.st_ino, before.st_mtime_ns) == (after.st_ino, after.st_mtime_ns)


def stop_and_close(scene):
    """A stopped run leaves no partial file. Closing the window during a run asks first, and keeps finished files."""
    for old in scene.output.iterdir():
        old.unlink()
    long = scene.folder / "long.mp4"
    scene.draw_long(long)
    program = scene.start(scene.clip, long)
    program.press("radio button", scene["direction.sbs.to.spatial"])
    scene.choose_output(program)
    program.press("push button", scene["button.start.conversion"])
    wait_for("the second file", lambda: "long_spatial.mov.partial" in scene.output_names())
    program.press("push button", scene["button.cancel"])
    program.wait_text(scene["alert.cancel.title"])
    program.press("push button", scene["button.continue"])
    wait_for("the run to go on", lambda: program.find("push button", scene["button.cancel"]))
    program.press("push button", scene["button.cancel"])
    program.wait_text(scene["alert.cancel.title"])
    program.press("push button", scene["button.stop"])
    wait_for("the end of the run", lambda: scene.output_names() == ["clip_spatial.mov"])

    for old in scene.output.iterdir():
        old.unlink()
    program.press("push button", scene["button.start.conversion"])
    wait_for("the second file", lambda: "long_spatial.mov.partial" in scene.output_names())
    user.press_key("alt+F4")
    program.wait_text(scene["alert.quit.title"])
    assert program.process.poll() is None
    program.press("push button", scene["button.stop.quit"])
    assert program.wait_for_exit() == 0
    assert scene.output_names() == ["clip_spatial.mov"], scene.output_names()


def parse_options():
    parser = argparse.ArgumentParser()
    parser.add_argument("--language", required=True)
    for name in ("program", "batch", "stack", "texts"):
        parser.add_argument(f"--{name}", type=pathlib.Path, required=True)
    return parser.parse_args()


def run_tests(*tests):
    """Runs the tests with the same scene. When one fails, prints what the window shows."""
    options = parse_options()
    with tempfile.TemporaryDirectory(prefix="lumetwin-test-") as name:
        scene = Scene(options, pathlib.Path(name))
        try:
            for test in tests:
                test(scene)
        except AssertionError:
            if scene.program:
                scene.program.describe()
            raise


if __name__ == "__main__":
    run_tests(convert_there_and_back, stop_and_close)
