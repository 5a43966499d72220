#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""How long a preview takes in a confined worker: the first one of large photos and films, a step of the slider (to a
random access picture, and to the exact frame), and small pictures for a list. The window asks first for what comes soon:
of spatial media that take long to decode, one eye for both.

    cmake --build --preset release --target lumetwin-preview
    python3 bench/preview.py

Films have a random access picture every two seconds. A spatial photo of a headset is used if the folder of sample media
exists (LUMETWIN_SAMPLES).
"""
import json
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile

from measure import BATCH, BUILD, SOURCE, Report, run, tool

PREVIEW = BUILD / "lumetwin-preview"
SAMPLES = pathlib.Path(os.environ.get("LUMETWIN_SAMPLES", SOURCE.parent / "shared/samples"))
LARGE = (1280, 720)
SMALL = (160, 120)
POSITIONS = (0.1, 0.5, 0.3, 0.9, 0.7, 0.2, 0.6)
FIRST_LIMIT = 0.5  # seconds
STEP_LIMIT = 0.3


def preview(file, size, positions, *options):
    """The seconds of each preview."""
    done = subprocess.run([PREVIEW, *options, *map(str, size), file, *map(str, positions)], check=True,
                          capture_output=True, text=True)
    return json.loads(done.stdout)


def first(file, *options):
    return statistics.median(preview(file, LARGE, [0.3], *options)[0] for _ in range(5))


def steps(file, *options):
    return preview(file, LARGE, POSITIONS, *options)[1:]


def draw_photo(photo, size):
    """Two eyes of that size beside each other, with detail and much grain."""
    eye = photo.with_suffix(".png")
    run("convert", "-seed", 7, "-size", size, "plasma:tomato-navy", "-attenuate", 0.25, "+noise", "gaussian", eye)
    run("convert", eye, "(", "+clone", "-roll", "+24+0", ")", "+append", "-sampling-factor", "2x2", "-quality", 92, photo)
    return photo


def draw_film(file, size, seconds, *options):
    run(tool("ffmpeg"), "-nostdin", "-y", "-f", "lavfi", "-i", f"testsrc2=s={size}:r=30:d={seconds},noise=alls=8:allf=t",
        "-pix_fmt", "yuv420p", "-g", 60, "-keyint_min", 60, "-sc_threshold", 0, *options, file)
    return file


def spatial(source, folder):
    run(BATCH, "--direction", "sbsToSpatial", "--output", folder, source)
    return next(folder.glob(f"{source.stem}_spatial.*"))


def add_photo(report, name, file, limit=FIRST_LIMIT):
    report.add(f"{name}, first preview", first(file, "--soon"), at_most=limit, unit="s")
    if "spatial" in name:
        report.add(f"{name}, both eyes", first(file), unit="s")
    report.add(f"{name}, small pictures", 1 / statistics.median(preview(file, SMALL, [0] * 7)[1:]), unit="a second")


def add_film(report, name, file):
    report.add(f"{name}, first preview", first(file, "--soon"), at_most=FIRST_LIMIT, unit="s")
    report.add(f"{name}, step", statistics.median(steps(file, "--soon")), at_most=STEP_LIMIT, unit="s")
    if "spatial" in name:
        report.add(f"{name}, step, both eyes", statistics.median(steps(file)), unit="s")
    exact = steps(file, "--exact")
    report.add(f"{name}, exact step, median", statistics.median(exact), unit="s")
    report.add(f"{name}, exact step, longest", max(exact), unit="s")
    report.add(f"{name}, small pictures", 1 / statistics.median(preview(file, SMALL, POSITIONS)[1:]), unit="a second")


def main():
    report = Report(f"Previews of {LARGE[0]} × {LARGE[1]} an eye, small ones of {SMALL[0]} × {SMALL[1]}")
    with tempfile.TemporaryDirectory(prefix="lumetwin-preview-") as name:
        folder = pathlib.Path(name)
        photo = draw_photo(folder / "photo.jpg", "2450x2450")
        add_photo(report, "side-by-side JPEG, 12 megapixels", photo)
        add_photo(report, "spatial photo, 12 megapixels", spatial(photo, folder))
        large = draw_photo(folder / "large.jpg", "4000x3000")
        add_photo(report, "side-by-side JPEG, 24 megapixels", large, limit=None)
        add_photo(report, "spatial photo, 24 megapixels", spatial(large, folder), limit=None)
        sample = SAMPLES / "spatial-photo/spatial_photo.heic"
        if sample.exists():
            add_photo(report, "spatial photo of a headset", sample)
        for codec, words in (("H.264", ("-c:v", "libx264", "-preset", "veryfast")),
                             ("HEVC", ("-c:v", "libx265", "-preset", "ultrafast", "-x265-params",
                                       "keyint=60:min-keyint=60:scenecut=0:bframes=3:log-level=none"))):
            film = draw_film(folder / "film.mp4", "3840x2160", 6, *words)
            add_film(report, f"side-by-side film, 3840 × 2160, {codec}", film)
        wide = draw_film(folder / "wide.mp4", "7680x2160", 1, "-c:v", "libx264", "-preset", "ultrafast")
        add_film(report, "spatial film, 3840 × 2160 an eye", spatial(wide, folder))
    return report.finish()


if __name__ == "__main__":
    sys.exit(main())
