#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What it costs to work on files in confined processes, against the same in one process: many small photos, a film,
and looks at many files.

confinement.py [SMALL [LARGE [SECONDS]]]   1,000 photos of 640 × 240, 40 of 3 megapixels and 20 s of film, unless said
                                           otherwise. The cost of a photo does not depend on their number.
"""
import os
import pathlib
import subprocess
import sys
import tempfile

from measure import BATCH, Report, run, take_turns, tool

ROUNDS = 3
FILES_TO_LOOK_AT = 1000


def draw_photo(target, size):
    subprocess.run(["convert", "-seed", "7", "-size", size, "plasma:tomato-navy", "-quality", "92", str(target)], check=True)


def draw_film(target, seconds):
    eye = f"testsrc2=size=960x540:rate=30:duration={seconds},noise=alls=6"
    subprocess.run([tool("ffmpeg"), "-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i",
                    f"{eye},split[a][b];[a][b]hstack", "-c:v", "libx264", "-preset", "veryfast", "-qp", "18", str(target)],
                   check=True)


def copies(source, folder, count):
    """The same file under many names."""
    folder.mkdir()
    for index in range(count):
        os.link(source, folder / f"{index:04}{source.suffix}")
    return folder


def batch(direction, source, output, *words):
    output.mkdir(exist_ok=True)
    return run(BATCH, "--direction", direction, "--output", output, *words, source)


def compare(report, what, direction, source, folder, limit):
    costs = take_turns(ROUNDS, confined=lambda: batch(direction, source, folder / "out"),
                       in_process=lambda: batch(direction, source, folder / "out", "--in-process"))
    report.add(f"{what}: wall, confined against in process", costs["confined"].wall / costs["in_process"].wall, at_most=limit)
    report.add(f"{what}: CPU, confined against in process", costs["confined"].cpu / costs["in_process"].cpu)
    report.add(f"{what}: wall, in process", costs["in_process"].wall, unit="s")


def photos(report, folder, size, count, limit=None):
    draw_photo(folder / f"{size}.jpg", size)
    batch("sbsToSpatial", folder / f"{size}.jpg", folder)
    for direction, name in (("sbsToSpatial", f"{size}.jpg"), ("spatialToSBS", f"{size}_spatial.heic")):
        source = copies(folder / name, folder / f"{size}-{direction}", count)
        compare(report, f"{count} photos of {size}, {direction}", direction, source, folder, limit)


def film(report, folder, seconds):
    draw_film(folder / "film.mp4", seconds)
    batch("sbsToSpatial", folder / "film.mp4", folder)
    for direction, name in (("sbsToSpatial", "film.mp4"), ("spatialToSBS", "film_spatial.mov")):
        compare(report, f"film of {seconds} s, 960 × 540 an eye, {direction}", direction, folder / name, folder, 1.01)


def looks(report, folder):
    source = copies(folder / "film_spatial.mov", folder / "looks", FILES_TO_LOOK_AT)
    files = sorted(source.iterdir())
    costs = take_turns(ROUNDS, confined=lambda: run(BATCH, "inspect", *files),
                       in_process=lambda: run(BATCH, "inspect", "--in-process", *files))
    report.add(f"inspect of {FILES_TO_LOOK_AT} films, confined", costs["confined"].wall, at_most=0.3, unit="s")
    report.add(f"inspect of {FILES_TO_LOOK_AT} films, in process", costs["in_process"].wall, unit="s")


def main():
    small, large, seconds = (int(word) for word in (sys.argv[1:] + ["1000", "40", "20"][len(sys.argv) - 1:]))
    report = Report("Confined processes")
    with tempfile.TemporaryDirectory(prefix="lumetwin-bench-") as name:
        folder = pathlib.Path(name)
        film(report, folder, seconds)
        looks(report, folder)
        photos(report, folder, "2400x1200", large, 1.03)
        photos(report, folder, "640x240", small)  # smaller than any camera's: no limit
    return report.finish()


if __name__ == "__main__":
    sys.exit(main())
