# SPDX-License-Identifier: GPL-3.0-or-later
"""One window from the first file to the finished batch, as a user of a screen reader and a keyboard works with it."""
import argparse
import os
import pathlib
import re
import subprocess
import tempfile

from hands import hands
from screen_reader import Program, wait_for


def read_texts(folder, language):
    """The table of texts: key to wording. The source language has its wording as msgid."""
    table = (folder / f"{language}.po").read_text(encoding="utf-8")
    joined = re.sub(r'"\n"', "", table)
    found = re.findall(r'msgctxt "(.*)"\nmsgid "(.*)"\nmsgstr "(.*)"', joined)
    return {key: (translation or wording).replace("\\n", "\n") for key, wording, translation in found}


class Scene:
    """A folder with media, the program's texts, and the tools that judge what comes out."""

    def __init__(self, options, folder):
        self.options = options
        self.folder = folder
        self.program = None
        self.texts = read_texts(options.texts, options.language)
        self.output = folder / "out"
        self.output.mkdir()
        self.clip = folder / "clip.mp4"
        self.draw(self.clip, 60)
        self.stand_in_for_a_browser()

    def stand_in_for_a_browser(self):
        """What opens pages on a desktop; this one only writes them down."""
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
        """The left half is bright, the right one dark."""
        self.run(self.options.stack / "bin/ffmpeg", "-nostdin", "-v", "error", "-f", "lavfi", "-i",
                 f"color=white:s={size}:r=30", "-f", "lavfi", "-i", f"color=black:s={size}:r=30", "-filter_complex",
                 "hstack,noise=alls=12:allf=t", "-frames:v", frames, "-pix_fmt", "yuv420p", "-c:v", "libx264",
                 "-preset", "ultrafast", target)

    def halves(self, movie):
        """Mean luma of the halves of a movie's first frame, left first, each scaled down to one sample."""
        planes = self.run(self.options.stack / "bin/ffmpeg", "-nostdin", "-v", "error", "-i", movie, "-frames:v", 1,
                          "-vf", "scale=2:2:flags=area", "-pix_fmt", "yuv444p", "-f", "rawvideo", "-")
        return planes[0], planes[1]

    def start(self, *files):
        os.environ.update(LC_ALL="C.UTF-8", LANGUAGE=self.options.language)
        self.program = Program(self.options.program, *files)
        return self.program

    def choose_output(self, program):
        program.choose_path(self["button.select.folder"], self["button.select"], self.output)

    def see_end(self, program, title):
        program.wait_text(title)
        program.press("push button", "OK")
        program.press("push button", self["button.close"])

    def quit(self, program):
        """By the keyboard."""
        wait_for("the window in front", program.is_in_front)
        hands.press_key("ctrl+q")
        assert program.ended() == 0

    def names(self):
        return sorted(path.name for path in self.output.iterdir())


def convert_there_and_back(scene):
    """Side-by-side to spatial, then the result back, in the same window; the eyes keep their sides."""
    program = scene.start(scene.clip)
    program.wait_text(scene.clip.name)
    program.press("radio button", scene["direction.sbs.to.spatial"])
    assert program.checked("radio button", scene["direction.sbs.to.spatial"])
    scene.choose_output(program)
    program.press("push button", scene["button.start.conversion"])
    wait_for("a full bar", lambda: program.is_full(scene["spoken.overall.progress"]))
    scene.see_end(program, scene["alert.conversion.success"])
    assert scene.names() == ["clip_spatial.mov"], scene.names()
    words = scene.run(scene.options.batch, "inspect", scene.output / "clip_spatial.mov").decode()
    assert "spatial video" in words, words

    program.press("radio button", scene["direction.spatial.to.sbs"])
    program.choose_path(scene["button.select"], scene["button.select"], scene.output / "clip_spatial.mov")
    program.wait_text("clip_spatial.mov")
    program.press("push button", scene["button.start.conversion"])
    scene.see_end(program, scene["alert.conversion.success"])
    assert scene.names() == ["clip_spatial.mov", "clip_spatial_sbs.mp4"], scene.names()
    left, right = scene.halves(scene.output / "clip_spatial_sbs.mp4")
    assert left > 150 and right < 100, (left, right)

    ask_before_replacing(scene, program)
    scene.quit(program)


def ask_before_replacing(scene, program):
    kept = (scene.output / "clip_spatial_sbs.mp4").stat()
    program.press("push button", scene["button.start.conversion"])
    program.wait_text(scene["alert.overwrite.title"])
    program.press("push button", scene["button.cancel"])
    wait_for("the form", lambda: not program.find("push button", scene["button.cancel"]))
    now = (scene.output / "clip_spatial_sbs.mp4").stat()
    assert (kept.st_ino, kept.st_mtime_ns) == (now.st_ino, now.st_mtime_ns)


def stop_and_close(scene):
    """A run that is stopped leaves nothing; one that is closed asks first, and keeps what is finished."""
    for old in scene.output.iterdir():
        old.unlink()
    long = scene.folder / "long.mp4"
    scene.draw(long, 3000, "640x360")
    program = scene.start(scene.clip, long)
    program.press("radio button", scene["direction.sbs.to.spatial"])
    scene.choose_output(program)
    program.press("push button", scene["button.start.conversion"])
    wait_for("the second file", lambda: "long_spatial.mov.partial" in scene.names())
    program.press("push button", scene["button.cancel"])
    program.wait_text(scene["alert.cancel.title"])
    program.press("push button", scene["button.continue"])
    wait_for("the run to go on", lambda: program.find("push button", scene["button.cancel"]))
    program.press("push button", scene["button.cancel"])
    program.wait_text(scene["alert.cancel.title"])
    program.press("push button", scene["button.stop"])
    wait_for("the end of the run", lambda: scene.names() == ["clip_spatial.mov"])

    for old in scene.output.iterdir():
        old.unlink()
    program.press("push button", scene["button.start.conversion"])
    wait_for("the second file", lambda: "long_spatial.mov.partial" in scene.names())
    hands.press_key("alt+F4")
    program.wait_text(scene["alert.quit.title"])
    assert program.process.poll() is None
    program.press("push button", scene["button.stop.quit"])
    assert program.ended() == 0
    assert scene.names() == ["clip_spatial.mov"], scene.names()


def options_of():
    parser = argparse.ArgumentParser()
    parser.add_argument("--language", required=True)
    for name in ("program", "batch", "stack", "texts"):
        parser.add_argument(f"--{name}", type=pathlib.Path, required=True)
    return parser.parse_args()


def play(*acts):
    """Each act with the same scene; what the window shows is told when one fails."""
    options = options_of()
    with tempfile.TemporaryDirectory(prefix="lumetwin-test-") as name:
        scene = Scene(options, pathlib.Path(name))
        try:
            for act in acts:
                act(scene)
        except AssertionError:
            if scene.program:
                scene.program.describe()
            raise


if __name__ == "__main__":
    play(convert_there_and_back, stop_and_close)
