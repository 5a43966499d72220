#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Bits of a two-view stream against two independent encodes with the same preset and key frames, on filmed stereo:
films, and pans and zooms over stereo photographs, which keep real parallax, colour and focus. Prints, for each clip,
the ratio at equal PSNR and at equal SSIM, how uneven the eyes are, and the CPU time of both.

    LUMETWIN_SAMPLES=FOLDER stereo_bits.py [PRESET [CLIP…]]

The films and photographs come from the folder of samples. A clip whose source is missing is reported and left out.
Reading photographs needs the distribution's ffmpeg.
"""
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile

from measure import Report
from sbs_video import draw_sbs, ffmpeg
from two_views import bits_ratio, raw_video, two_encodes, two_views

EYE = (1280, 720)
FPS = 25
# The maximum difference between the PSNR of both eyes, in dB.
MAXIMUM_UNEVENNESS = 1.0
# The limit of the ratio for some clips, and for all others.
LIMITS = {"candles": 0.92, "calf pan": 0.78}
LIMIT = 0.97


def samples():
    return pathlib.Path(os.environ.get("LUMETWIN_SAMPLES", ""))


def film(name, seconds):
    return lambda target: shorten(samples() / "sbs-video" / name, target, seconds)


def shorten(source, target, seconds):
    if not source.exists():
        return False
    ffmpeg("-i", source, "-t", seconds, "-an", "-c:v", "ffv1", target)
    return True


def photograph(left, right, eye, x_right, motion, frames):
    """A clip made from a photograph. motion: filters that move over one eye of the given size."""
    def draw(target):
        sources = [samples() / left, samples() / right]
        if not all(source.exists() for source in sources):
            return False
        width, height = eye
        graph = "".join(
            f"[{index}:v]scale=in_range=full:out_range=limited,format=yuv420p,crop={width}:{height}:{x}:0,{motion}[{name}];"
            for index, (x, name) in enumerate(((0, "l"), (x_right, "r")))) + "[l][r]hstack"
        inputs = [word for source in sources for word in ("-loop", "1", "-framerate", str(FPS), "-i", str(source))]
        subprocess.run([shutil.which("ffmpeg"), "-nostdin", "-v", "error", "-y", *inputs, "-filter_complex", graph,
                        "-frames:v", str(frames), "-pix_fmt", "yuv420p", "-c:v", "ffv1", str(target)], check=True)
        return True
    return draw


def pan_filter(window, across, down="(ih-oh)/2"):
    return f"crop={window[0]}:{window[1]}:'{across}':'{down}',scale={EYE[0]}:{EYE[1]}:flags=bicubic"


def zoom_filter(factor):
    size = [f"2*trunc({side}*({factor})/2)" for side in EYE]
    return f"scale=w='{size[0]}':h='{size[1]}':eval=frame:flags=bicubic,crop={EYE[0]}:{EYE[1]}"


def drawn(target):
    draw_sbs(target, 4, EYE)
    return True


CALF = "sbs-image/calf_3840x1080.jpg"
CAMERA = "sbs-image/camera_3648x1368.jpg"
STEREOGRAPH = "sbs-image/stereograph_odd_width_3643x1574.jpg"
LEFT, RIGHT = (f"other-layouts/Panasonic-DMC-GX8-{side}.jpg" for side in ("left", "right"))
# Name: function that draws it, size of an eye, frames per second, seconds.
CLIPS = {
    "candles": (film("candles_2560x720_25fps.mp4", 6), EYE, 25, 6),
    "panorama": (film("panorama_2048x1024_24fps.mp4", 5), (1024, 1024), 24, 5),
    "calf pan": (photograph(CALF, CALF, (1920, 1080), 1920, pan_filter((1152, 648), "(iw-ow)*n/149"), 150), EYE, FPS, 6),
    "camera pan": (photograph(CAMERA, CAMERA, (1824, 1368), 1824, pan_filter((1094, 616), "(iw-ow)*n/99"), 100), EYE, FPS, 4),
    "camera zoom": (photograph(CAMERA, CAMERA, (1824, 1026), 1824, zoom_filter("1.1+0.6*n/99"), 100), EYE, FPS, 4),
    "stereograph pan": (photograph(STEREOGRAPH, STEREOGRAPH, (1820, 1574), 1820,
                                   pan_filter((1280, 720), "(iw-ow)*n/149", "(ih-oh)*n/149"), 150), EYE, FPS, 6),
    "twin lens zoom": (photograph(LEFT, RIGHT, (1824, 1026), 0, zoom_filter("1.5-0.4*n/99"), 100), EYE, FPS, 4),
    "twin lens still": (photograph(LEFT, RIGHT, (1824, 1026), 0, zoom_filter("1"), 100), EYE, FPS, 4),
    "drawn": (drawn, EYE, 30, 4),
}


def compare(report, name, preset, folder):
    draw, size, fps, seconds = CLIPS[name]
    clip = folder / "clip.mkv"
    if not draw(clip):
        print(f"  {name}: left out, its source is not in the folder of samples")
        return None
    video = raw_video(clip, size, fps, folder, seconds)
    (ours, our_cpu), (theirs, their_cpu) = two_views(preset, video, folder), two_encodes(preset, video, folder)
    video.remove()
    ratio = bits_ratio(ours, theirs)
    report.add(f"{name}: bits at equal PSNR", ratio, at_most=LIMITS.get(name, LIMIT))
    report.add(f"{name}: bits at equal SSIM", bits_ratio(ours, theirs, "ssim"))
    uneven = max(abs(point.unevenness()) for point in ours)
    report.add(f"{name}: the eyes apart, at most", uneven, at_most=MAXIMUM_UNEVENNESS, unit="dB")
    report.add(f"{name}: CPU time", our_cpu / their_cpu)
    for quality, (one, other) in enumerate(zip(ours, theirs)):
        for who, point in (("two views", one), ("two encodes", other)):
            print(f"    {quality} {who:11} {point.bits:8.0f} bytes"
                  + "".join(f"  {eye.psnr:.2f} dB {eye.ssim:.4f}" for eye in point.eyes), flush=True)
    return ratio


def main():
    preset = sys.argv[1] if len(sys.argv) > 1 else "veryfast"
    report = Report(f"Two views against two independent encodes, {preset}")
    with tempfile.TemporaryDirectory(prefix="lumetwin-bench-") as name:
        ratios = {clip: compare(report, clip, preset, pathlib.Path(name)) for clip in sys.argv[2:] or CLIPS}
    filmed = [ratio for clip, ratio in ratios.items() if ratio is not None and clip != "drawn"]
    if len(filmed) > 1:
        report.add("mean of the filmed clips", statistics.mean(filmed), at_most=0.85)
    return report.finish()


if __name__ == "__main__":
    sys.exit(main())
