#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Photos in both directions: time against common tools and against x265 alone, memory of one photo and of many.

A spatial photo of a headset is used if the folder of sample media exists (LUMETWIN_SAMPLES), otherwise one that
Lumetwin makes.
"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile

from measure import BATCH, SOURCE, Report, run, take_turns, run_together, tool

STAGES = BATCH.parent.parent / "bench/lumetwin-photo-stages"
ROUNDS = 5
# The same settings as in media/x265/StillEncoder.cpp, with the quantiser of spatial photos.
X265 = ("--preset ultrafast --qp 14 --ipratio 1 --signhide --psy-rd 0 --keyint 1 --bframes 0 --rc-lookahead 0 "
        "--frame-threads 1 --aq-mode 0 --no-info --log-level none").split()
JPEG_QUALITY = 86  # the JPEG quality that Lumetwin uses for 0.75


def magick(*words):
    run("convert", *words)


def draw(target, width, height):
    """Draws two views of a scene with detail and grain."""
    half = width // 2
    magick("-seed", 7, "-size", f"{half}x{height}", "plasma:tomato-navy", "-attenuate", 0.25, "+noise", "gaussian",
           target.with_suffix(".eye.png"))
    magick(target.with_suffix(".eye.png"), "(", "+clone", "-roll", "+24+0", ")", "+append", "-sampling-factor", "2x2",
           "-quality", 92, target)


def batch(direction, source, folder, *words):
    return run(BATCH, "--direction", direction, "--output", folder, *words, source)


def spatial_photo(folder):
    samples = pathlib.Path(os.environ.get("LUMETWIN_SAMPLES", SOURCE.parent / "shared/samples"))
    found = samples / "spatial-photo/spatial_photo.heic"
    if found.exists():
        return found, 2 * 2560 * 2560
    draw(folder / "made.jpg", 5120, 2560)
    batch("sbsToSpatial", folder / "made.jpg", folder)
    return folder / "made_spatial.heic", 5120 * 2560


def convert_with_common_tools(photo, folder):
    """The same with common tools: extracts both images from the file, then joins them."""
    extracted = run("heif-convert", "-q", 100, photo, folder / "eye.jpg")
    joined = run("convert", folder / "eye-1.jpg", folder / "eye-2.jpg", "+append", "-quality", JPEG_QUALITY,
                 folder / "theirs.jpg")
    extracted.wall += joined.wall
    extracted.cpu += joined.cpu
    return extracted


def check_memory(report, what, peak, pixels):
    report.add(f"{what}: peak memory", peak, at_most=6 * pixels / 2**20 + 64, unit="MiB")


def to_sbs(report, folder):
    photo, pixels = spatial_photo(folder)
    costs = take_turns(ROUNDS, ours=lambda: batch("spatialToSBS", photo, folder),
                       theirs=lambda: convert_with_common_tools(photo, folder))
    report.add("spatial photo to JPEG, wall, against heif-convert and ImageMagick",
               costs["ours"].wall / costs["theirs"].wall, at_most=0.333)
    check_memory(report, "spatial photo to JPEG", costs["ours"].peak, pixels)
    for name in ("png", "tiff", "heic"):
        cost = batch("spatialToSBS", photo, folder, "--sbs-photo-output-format", name)
        check_memory(report, f"spatial photo to {name.upper()}", cost.peak, pixels)


def to_spatial(report, folder, width, height):
    source = folder / f"sbs{width}.jpg"
    draw(source, width, height)
    eyes = []
    for index in range(2):
        raw = folder / f"eye{index}.yuv"
        subprocess.run(["ffmpeg", "-nostdin", "-v", "error", "-y", "-i", str(source), "-vf",
                        f"crop={width // 2}:{height}:{index * width // 2}:0", "-f", "rawvideo", str(raw)], check=True)
        eyes.append([tool("x265"), "--input", raw, "--input-res", f"{width // 2}x{height}", "--fps", 1, "--frames", 1, *X265,
                     "-o", raw.with_suffix(".hevc")])
    costs = take_turns(ROUNDS, ours=lambda: batch("sbsToSpatial", source, folder), theirs=lambda: run_together(*eyes))
    report.add(f"{width} × {height} JPEG to spatial photo, wall, against x265 alone",
               costs["ours"].wall / costs["theirs"].wall, at_most=1.15)
    check_memory(report, f"{width} × {height} JPEG to spatial photo", costs["ours"].peak, width * height)


def measure_many(report, folder):
    draw(folder / "small.jpg", 640, 240)
    batch("sbsToSpatial", folder / "small.jpg", folder)
    for direction, source, target in (("spatial", "small.jpg", "out.heic"), ("sbs", "small_spatial.heic", "out.jpg")):
        result = subprocess.run([str(STAGES), direction, str(folder / source), str(folder / target), "1000"], check=True,
                                capture_output=True, text=True)
        resident = json.loads(result.stdout)
        report.add(f"{direction}: resident memory after 1,000 photos against 50", resident["late"] / resident["early"],
                   at_most=1.05)


def main():
    report = Report("Photos")
    with tempfile.TemporaryDirectory(prefix="lumetwin-bench-") as name:
        folder = pathlib.Path(name)
        to_sbs(report, folder)
        to_spatial(report, folder, 3840, 1080)
        to_spatial(report, folder, 8000, 3000)
        measure_many(report, folder)
    return report.finish()


if __name__ == "__main__":
    sys.exit(main())
