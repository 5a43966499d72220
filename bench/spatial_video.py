#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Side-by-side video to spatial video: bit rates, time and bits against two independent encodes, presets, memory.

    spatial_video.py            everything, more than an hour
    spatial_video.py rate | speed | presets | memory
"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile

from measure import BATCH, BUILD, Cost, Report, run, take_turns, run_together, tool
from sbs_video import draw_long_sbs, draw_sbs, ffmpeg
from two_views import QUALITIES, bits_ratio, encode_command, raw_video, target_rate, split, two_encodes, two_views

STAGES = BUILD / "lumetwin-stages"
SHIPPED = "veryfast"
# Options that our encoder adds to the preset for the right view, for a comparison with the same options.
SHIPPED_EXTRA = ("--ref", 3, "--max-merge", 3)
CANDIDATES = ("ultrafast", "superfast", "veryfast", "fast")
ROUNDS = 3
EYE = (1920, 1080)


def batch(source, folder, *words):
    return run(BATCH, "--direction", "sbsToSpatial", "--output", folder, *words, source)


def draw_cuts(target, seconds, eye, fps):
    """Draws a scene whose brightness changes abruptly after each 40 frames. So it has cuts, and some seconds need ten
    times as many bits as others."""
    width, height = eye
    luma = "mod(lum(X,Y)*(1+mod(floor(N/40),3))+60*mod(floor(N/40),4),255)"
    scene = (f"geq=lum='{luma}':cb='cb(X,Y)':cr='cr(X,Y)',split[a][b];[a]crop={width}:{height}:0:0[l];"
             f"[b]crop={width}:{height}:24:0[r];[l][r]hstack,noise=alls=4:allf=t")
    ffmpeg("-f", "lavfi", "-i", f"mandelbrot=s={width + 64}x{height}:r={fps}:start_scale=0.5:end_scale=0.01",
           "-filter_complex", scene, "-r", fps, "-t", seconds, "-pix_fmt", "yuv420p",
           "-c:v", "libx264", "-preset", "ultrafast", "-crf", 12, target)


def rates(report, title, clip, eye, fps, folder):
    for quality in QUALITIES:
        batch(clip, folder, "--compression-quality", quality)
        found = subprocess.run([tool("ffprobe"), "-v", "error", "-select_streams", "v:0", "-show_entries", "stream=bit_rate",
                                "-of", "default=nk=1:nw=1", str(folder / f"{clip.stem}_spatial.mov")],
                               capture_output=True, text=True, check=True).stdout
        wanted = target_rate(quality, eye, fps)
        share = float(found) / wanted
        print(f"  {title}, quality {quality}: {float(found):.0f} of {wanted} bit/s, {share:.4f}")
        report.add(f"{title}: bit rate at quality {quality}: distance from the rule", abs(share - 1), at_most=0.03)


def speed(report, clip, folder):
    eyes = split(clip, folder)
    half = target_rate(0.75, EYE, 30) / 2
    streams = [folder / "left.hevc", folder / "right.hevc"]
    costs = take_turns(
        ROUNDS,
        ours=lambda: batch(clip, folder),
        theirs=lambda: run_together(*(encode_command(eye, 30, SHIPPED, half, stream) for eye, stream in zip(eyes, streams))))
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


def compare_presets(report, title, clip, size, fps, folder, limit=None, seconds=6):
    video = raw_video(clip, size, fps, folder, seconds)
    ours = {preset: two_views(preset, video, folder) for preset in CANDIDATES}
    theirs = {preset: two_encodes(preset, video, folder) for preset in CANDIDATES}
    best, longest = ours[CANDIDATES[-1]]
    print(f"  {title}\n  {'preset':10} {'CPU of ' + CANDIDATES[-1]:>14} {'bits of ' + CANDIDATES[-1]:>15} "
          f"{'bits of two encodes':>20} {'CPU of two encodes':>19}")
    for preset, (points, cpu) in ours.items():
        print(f"  {preset:10} {cpu / longest:14.2f} {bits_ratio(points, best):15.3f} "
              f"{bits_ratio(points, theirs[preset][0]):20.3f} {cpu / theirs[preset][1]:19.2f}", flush=True)
    points, _ = ours[SHIPPED]
    report.add(f"{title}: bits at equal quality against two independent encodes, {SHIPPED}",
               bits_ratio(points, theirs[SHIPPED][0]), at_most=limit)
    report.add(f"{title}: against two with {' '.join(map(str, SHIPPED_EXTRA))}",
               bits_ratio(points, two_encodes(SHIPPED, video, folder, *SHIPPED_EXTRA)[0]))
    for file in (video.frames, *video.eyes):
        file.unlink()


def presets(report, clip, folder):
    compare_presets(report, "drawn", clip, EYE, 30, folder, limit=0.8)
    samples = os.environ.get("LUMETWIN_SAMPLES")
    if samples:
        compare_presets(report, "filmed", pathlib.Path(samples, "sbs-video/panorama_2048x1024_24fps.mp4"), (1024, 1024), 24,
                        folder)


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
            rates(report, "moving", clip, EYE, 30, folder)
            cuts = folder / "cuts.mp4"
            draw_cuts(cuts, 24, (1280, 720), 25)
            rates(report, "cuts", cuts, (1280, 720), 25, folder)
        if "speed" in wanted:
            speed(report, clip, folder)
        if "presets" in wanted:
            presets(report, clip, folder)
        if "memory" in wanted:
            memory(report, folder)
    return report.finish()


if __name__ == "__main__":
    sys.exit(main())
