#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Photos in both directions: time against common tools and against x265 alone, memory of one photo and of many, and the
throughput of many photos against a shell loop that works on two at a time.

photos.py [many COUNT]   everything, with 1,000 photos of 3 megapixels; or only the throughput, of so many

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


def in_shell_loop(photos, folder, script):
    """Runs a shell script for each photo, two at a time, as a user would. $1: the photo, $2: the folder for results."""
    return run("xargs", "-a", photos, "-P", 2, "-I{}", "bash", "-eo", "pipefail", "-c", script, "loop", "{}", folder)


def throughput(report, folder, count, width=2448, height=1224):
    """Photos per second, in batches of photos with the content of a camera's: detail, and little grain."""
    half = width // 2
    magick("-seed", 7, "-size", f"{half}x{height}", "plasma:tomato-navy", "-attenuate", 0.05, "+noise", "gaussian",
           folder / "eye.png")
    magick(folder / "eye.png", "(", "+clone", "-roll", "+24+0", ")", "+append", "-sampling-factor", "2x2", "-quality", 92,
           folder / "photo.jpg")
    batch("sbsToSpatial", folder / "photo.jpg", folder)
    x265 = " ".join([tool("x265"), "--input-res", f"{half}x{height}", "--fps", "1", "--frames", "1", *X265])
    loops = {
        "sbsToSpatial": ("photo.jpg", "".join(
            f'ffmpeg -nostdin -v error -y -i "$1" -vf crop={half}:{height}:{left}:0 -pix_fmt yuv420p '
            f'-f rawvideo - | {x265} --input - -o "$2/$(basename "$1").{left}.hevc"; ' for left in (0, half))),
        "spatialToSBS": ("photo_spatial.heic",
                         'eye="$2/$(basename "$1" .heic)"; heif-convert -q 100 "$1" "$eye.jpg" >/dev/null; '
                         f'convert "$eye-1.jpg" "$eye-2.jpg" +append -quality {JPEG_QUALITY} "$eye.joined.jpg"'),
    }
    for direction, (name, script) in loops.items():
        inputs, results = folder / direction, folder / f"{direction}-results"
        inputs.mkdir()
        results.mkdir()
        source = folder / name
        for index in range(count):
            os.link(source, inputs / f"{index:04}{source.suffix}")
        photos = folder / f"{direction}.txt"
        photos.write_text("".join(f"{photo}\n" for photo in sorted(inputs.iterdir())))
        costs = take_turns(1, ours=lambda: batch(direction, inputs, results),
                           theirs=lambda: in_shell_loop(photos, results, script))
        left_out = [result for result in results.iterdir() if result.stat().st_size == 0]
        written = len(list(results.iterdir()))
        if left_out or written != count * (3 if direction == "sbsToSpatial" else 4):
            raise SystemExit(f"{written} results, {len(left_out)} empty")
        for whose, cost in costs.items():
            report.add(f"{direction}, {count} photos of {width} × {height}, {whose}", count / cost.wall, unit="a second")
            report.add(f"{direction}, {whose}: CPU of one", 1000 * cost.cpu / count, unit="ms")
        report.add(f"{direction}: wall against the shell loop", costs["ours"].wall / costs["theirs"].wall, at_most=1)


def main():
    report = Report("Photos")
    if sys.argv[1:2] == ["many"]:
        with tempfile.TemporaryDirectory(prefix="lumetwin-bench-") as name:
            throughput(report, pathlib.Path(name), int(sys.argv[2]))
        return report.finish()
    with tempfile.TemporaryDirectory(prefix="lumetwin-bench-") as name:
        folder = pathlib.Path(name)
        to_sbs(report, folder)
        to_spatial(report, folder, 3840, 1080)
        to_spatial(report, folder, 8000, 3000)
        measure_many(report, folder)
        throughput(report, folder, 1000)
    return report.finish()


if __name__ == "__main__":
    sys.exit(main())
