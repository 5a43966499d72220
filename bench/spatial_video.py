#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Side-by-side video to spatial video: bit rates, time and bits against two independent encodes, presets, memory.

    spatial_video.py            everything, half an hour
    spatial_video.py rate | speed | presets | memory
"""
import json
import math
import pathlib
import statistics
import subprocess
import sys
import tempfile

from measure import BATCH, Cost, Report, psnr, run, take_turns, together, tool
from sbs_video import draw_long_sbs, draw_sbs, ffmpeg

BUILD = BATCH.parent.parent / "bench"
STAGES = BUILD / "lumetwin-stages"
TWO_VIEWS = BUILD / "lumetwin-two-views"
SHIPPED = "superfast"
CANDIDATES = ("ultrafast", "superfast", "veryfast", "faster", "medium")
QUALITIES = (0.25, 0.5, 0.75, 1.0)
ROUNDS = 3
EYE = (1920, 1080)


def rule(quality, eye=EYE, fps=30):
    """The average bit rate of both views together: 0.15 bits for each pixel of one eye at full quality."""
    return max(1_000_000, int(eye[0] * eye[1] * fps * 0.15 * quality))


def batch(source, folder, *words):
    return run(BATCH, "--direction", "sbsToSpatial", "--output", folder, *words, source)


def independent(eye, preset, rate, target):
    """One eye coded for itself by the x265 of the same stack, with the same key frames."""
    return (tool("x265"), "--input", eye, "--preset", preset, "--bitrate", max(1, round(rate / 1000)), "--keyint", 60,
            "--min-keyint", 1, "--no-open-gop", "--no-info", "--log-level", "none", "--output", target)


def split(clip, folder):
    """Raw video of each eye."""
    eyes = [folder / "left.y4m", folder / "right.y4m"]
    for index, target in enumerate(eyes):
        ffmpeg("-i", clip, "-vf", f"crop=iw/2:ih:{index}*iw/2:0", "-pix_fmt", "yuv420p", target)
    return eyes


def rates(report, clip, folder):
    for quality in QUALITIES:
        batch(clip, folder, "--compression-quality", quality)
        found = subprocess.run([tool("ffprobe"), "-v", "error", "-select_streams", "v:0", "-show_entries", "stream=bit_rate",
                                "-of", "default=nk=1:nw=1", str(folder / f"{clip.stem}_spatial.mov")],
                               capture_output=True, text=True, check=True).stdout
        share = float(found) / rule(quality)
        print(f"  quality {quality}: {float(found):.0f} of {rule(quality)} bit/s, {share:.4f}")
        report.add(f"bit rate at quality {quality}: distance from the rule", abs(share - 1), at_most=0.03)


def speed(report, clip, folder):
    eyes = split(clip, folder)
    half = rule(0.75) / 2
    streams = [folder / "left.hevc", folder / "right.hevc"]
    costs = take_turns(
        ROUNDS,
        ours=lambda: batch(clip, folder),
        theirs=lambda: together(*(independent(eye, SHIPPED, half, stream) for eye, stream in zip(eyes, streams))))
    report.add("whole conversion, wall, against two x265 on split raw video", costs["ours"].wall / costs["theirs"].wall,
               at_most=1.0)
    report.add("whole conversion, CPU, against two x265 on split raw video", costs["ours"].cpu / costs["theirs"].cpu)
    for eye in eyes:
        eye.unlink()
    against_encoder_alone(report, clip, folder)


def against_encoder_alone(report, clip, folder):
    def alone():
        found = json.loads(subprocess.run([str(STAGES), "encode-stereo", str(clip)], check=True, capture_output=True,
                                          text=True).stdout)
        return Cost(found["wall"], found["cpu"], 0)
    costs = take_turns(ROUNDS, whole=lambda: batch(clip, folder), alone=alone)
    report.add("whole conversion, wall, against the two-view encoder alone", costs["whole"].wall / costs["alone"].wall,
               at_most=1.08)
    report.add("whole conversion, CPU, against the two-view encoder alone", costs["whole"].cpu / costs["alone"].cpu)


def integral(points, low, high, steps=200):
    """Of the cubic through four points, by Simpson's rule."""
    def value(x):
        total = 0
        for index, (x_here, y_here) in enumerate(points):
            weight = 1
            for other, (x_other, _) in enumerate(points):
                if other != index:
                    weight *= (x - x_other) / (x_here - x_other)
            total += weight * y_here
        return total
    width = (high - low) / steps
    return width / 3 * sum((1 if step in (0, steps) else 4 if step % 2 else 2) * value(low + step * width)
                           for step in range(steps + 1))


def bd_rate(ours, theirs):
    """How many more bits we need at equal quality, as a fraction (Bjøntegaard), from (bits, dB) pairs."""
    curves = [sorted((quality, math.log(bits)) for bits, quality in points) for points in (ours, theirs)]
    low = max(curve[0][0] for curve in curves)
    high = min(curve[-1][0] for curve in curves)
    mean = [integral(curve, low, high) / (high - low) for curve in curves]
    return math.exp(mean[0] - mean[1]) - 1


def quality_of(stream, eye, view=""):
    """Luma PSNR of a stream's view against raw video."""
    return psnr(stream, eye, f"[0:v{view}]setpts=N/30/TB[a];[1:v]setpts=N/30/TB[b];[a][b]")


def curves(preset, raw, eyes, folder):
    """(bits, dB) at each quality, of one two-view stream and of two independent ones, and the CPU time of each way."""
    ours, theirs, cost = [], [], [0, 0]
    views = folder / "views.hevc"
    streams = [folder / "left.hevc", folder / "right.hevc"]
    for quality in QUALITIES:
        rate = rule(quality)
        cost[0] += run(TWO_VIEWS, raw, 2 * EYE[0], EYE[1], preset, rate, views).cpu
        sides = [quality_of(views, eye, f":vpos:{side}") for side, eye in zip(("left", "right"), eyes)]
        ours.append((views.stat().st_size, statistics.mean(sides)))
        cost[1] += sum(run(*independent(eye, preset, rate / 2, stream)).cpu for eye, stream in zip(eyes, streams))
        sides = [quality_of(stream, eye) for stream, eye in zip(streams, eyes)]
        theirs.append((sum(stream.stat().st_size for stream in streams), statistics.mean(sides)))
    return ours, theirs, cost


def presets(report, clip, folder, seconds=6):
    raw = folder / "frames.yuv"
    short = folder / "short.mp4"
    ffmpeg("-i", clip, "-t", seconds, "-c", "copy", short)
    ffmpeg("-i", short, "-pix_fmt", "yuv420p", "-f", "rawvideo", raw)
    eyes = split(short, folder)
    found = {preset: curves(preset, raw, eyes, folder) for preset in CANDIDATES}
    best, _, longest = found[CANDIDATES[-1]]
    print(f"  {'preset':10} {'CPU of ' + CANDIDATES[-1]:>14} {'bits of ' + CANDIDATES[-1]:>15} "
          f"{'bits of two encodes':>20} {'CPU of two encodes':>19}")
    for preset, (ours, theirs, cost) in found.items():
        print(f"  {preset:10} {cost[0] / longest[0]:14.2f} {1 + bd_rate(ours, best):15.3f} {1 + bd_rate(ours, theirs):20.3f} "
              f"{cost[0] / cost[1]:19.2f}")
    ours, theirs, _ = found[SHIPPED]
    report.add(f"bits at equal quality against two independent encodes, {SHIPPED}", 1 + bd_rate(ours, theirs), at_most=0.8)
    for file in (raw, *eyes):
        file.unlink()


def memory(report, folder):
    long = folder / "long.mp4"
    draw_long_sbs(long, 680)
    resident = json.loads(subprocess.run([str(STAGES), "memory", "spatial", str(long), str(folder / "long.mov")], check=True,
                                         capture_output=True, text=True).stdout)
    report.add("resident memory at frame 20,000 against frame 2,000", resident["20000"] / resident["2000"], at_most=1.05)


def main():
    wanted = sys.argv[1:] or ["rate", "speed", "presets", "memory"]
    report = Report("Side-by-side video to spatial video (1920 × 1080 an eye, 30 fps, 20 s, with grain and parallax)")
    with tempfile.TemporaryDirectory(prefix="lumetwin-bench-") as name:
        folder = pathlib.Path(name)
        clip = folder / "clip.mp4"
        draw_sbs(clip, 20, EYE)
        if "rate" in wanted:
            rates(report, clip, folder)
        if "speed" in wanted:
            speed(report, clip, folder)
        if "presets" in wanted:
            presets(report, clip, folder)
        if "memory" in wanted:
            memory(report, folder)
    return report.finish()


if __name__ == "__main__":
    sys.exit(main())
