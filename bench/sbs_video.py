#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Spatial video to side-by-side video: time against ffmpeg, presets, stages, memory, inspection.

    sbs_video.py                everything, about half an hour
    sbs_video.py speed | presets | memory
"""
import json
import pathlib
import subprocess
import sys
import tempfile

from measure import BATCH, Report, psnr, run, take_turns, tool

STAGES = BATCH.parent.parent / "bench/lumetwin-stages"
ROUNDS = 3
SHIPPED = {"h264": ("libx264", "veryfast", []), "hevc": ("libx265", "superfast", ["-x265-params", "ref=2:log-level=none"])}
MEDIUM = {"h264": [], "hevc": ["-x265-params", "log-level=none"]}
FORMAT = {"h264": "mp4H264", "hevc": "mp4H265"}


def ffmpeg(*words):
    return run(tool("ffmpeg"), "-nostdin", "-v", "error", "-y", *words)


def draw_sbs(target, seconds, eye=(1920, 1080), rate="60M"):
    """Draws a moving scene with grain for two eyes, with a disparity of 24 pixels. rate: bits per second, as for ffmpeg."""
    width, height = eye
    scene = (f"[0:v]format=yuv420p,gblur=sigma=0.7,split[a][b];[a]crop={width}:{height}:40:0[l0];"
             f"[b]crop={width}:{height}:64:0[r0];[1:v]format=yuv420p,split[t1][t2];"
             f"[l0][t1]overlay=x=200+n*2:y=300[l];[r0][t2]overlay=x=180+n*2:y=300[r];"
             f"[l][r]hstack,noise=alls=6:allf=t")
    ffmpeg("-f", "lavfi", "-i", f"mandelbrot=s={width + 128}x{height}:r=30:start_scale=0.6:end_scale=0.02:end_pts=600",
           "-f", "lavfi", "-i", "testsrc2=s=480x360:r=30", "-filter_complex", scene, "-t", seconds,
           "-c:v", "libx264", "-preset", "ultrafast", "-b:v", rate, target)


def draw_long_sbs(target, seconds):
    """Draws a small scene that repeats every ten seconds, because drawing must not take longer than the measurement."""
    piece = target.with_name("piece.mp4")
    draw_sbs(piece, 10, (960, 540), "6M")
    ffmpeg("-stream_loop", "-1", "-i", piece, "-t", seconds, "-c", "copy", target)


def batch(direction, source, folder, *words):
    return run(BATCH, "--direction", direction, "--output", folder, *words, source)


def stage(*words):
    return json.loads(subprocess.run([str(STAGES), *map(str, words)], check=True, capture_output=True, text=True).stdout)


def against_ffmpeg(report, clip, folder, codec):
    library, preset, options = SHIPPED[codec]
    rate = int(30 * 3840 * 1080 * 0.15 * 0.75)
    costs = take_turns(
        ROUNDS,
        ours=lambda: batch("spatialToSBS", clip, folder, "--sbs-output-format", FORMAT[codec]),
        theirs=lambda: ffmpeg("-i", clip, "-filter_complex", "[0:v:vpos:left][0:v:vpos:right]hstack", "-c:v", library,
                              "-preset", preset, *options, "-b:v", rate, folder / "theirs.mp4"))
    report.add(f"{codec}: whole conversion, wall, against ffmpeg", costs["ours"].wall / costs["theirs"].wall, at_most=1.0)
    report.add(f"{codec}: whole conversion, CPU, against ffmpeg", costs["ours"].cpu / costs["theirs"].cpu, at_most=1.0)
    return costs["ours"]


def presets(report, source, folder, codec):
    """Compares the shipped preset with medium: the encoder alone, on raw frames. Luma PSNR of the frame with both eyes."""
    library, shipped, options = SHIPPED[codec]
    rate = int(30 * 3840 * 1080 * 0.15 * 0.75)
    target = {preset: folder / f"{preset}.mp4" for preset in (shipped, "medium")}
    extra = {shipped: options, "medium": MEDIUM[codec]}
    costs = take_turns(1, **{preset: (lambda preset=preset: ffmpeg("-i", source, "-c:v", library, "-preset", preset,
                                                                  *extra[preset], "-b:v", rate, target[preset]))
                             for preset in target})
    report.add(f"{codec}: time of {shipped} against medium (CPU)", costs[shipped].cpu / costs["medium"].cpu, at_most=0.5)
    report.add(f"{codec}: luma PSNR lost against medium", psnr(target["medium"], source) - psnr(target[shipped], source),
               at_most=0.3, unit="dB")


def measure_memory_and_inspection(report, folder, clip):
    """Measures memory during a long film, and the inspection of a thousand files."""
    long = folder / "long.mp4"
    draw_long_sbs(long, 680)
    batch("sbsToSpatial", long, folder)
    resident = stage("memory", "sbs", folder / "long_spatial.mov", folder / "long_sbs.mp4")
    report.add("resident memory at frame 20,000 against frame 2,000", resident["20000"] / resident["2000"], at_most=1.05)
    many = [folder / f"{index}.mov" for index in range(1000)]
    for copy in many:
        copy.hardlink_to(clip)
    stage("inspect", *many)
    report.add("isSpatialVideo over 1,000 files", stage("inspect", *many)["wall"], at_most=1.0, unit="s")


def main():
    wanted = sys.argv[1:] or ["speed", "presets", "memory"]
    report = Report("Spatial video to side-by-side video (1920 × 1080 an eye, 30 fps, 20 s)")
    with tempfile.TemporaryDirectory(prefix="lumetwin-bench-") as name:
        folder = pathlib.Path(name)
        sbs = folder / "clip.mp4"
        draw_sbs(sbs, 20)
        batch("sbsToSpatial", sbs, folder)
        clip = folder / "clip_spatial.mov"
        if "speed" in wanted:
            whole = against_ffmpeg(report, clip, folder, "h264")
            against_ffmpeg(report, clip, folder, "hevc")
            stages = {name: stage(name, clip)["cpu"] for name in ("decode", "compose", "encode")}
            for name, cpu in stages.items():
                report.add(f"h264: {name} alone, CPU", cpu, unit="s")
            report.add("h264: whole, wall, against half the stages' CPU", whole.wall / (sum(stages.values()) / 2),
                       at_most=1.08)
        if "presets" in wanted:
            raw = folder / "raw.y4m"
            ffmpeg("-i", sbs, "-pix_fmt", "yuv420p", raw)
            for codec in SHIPPED:
                presets(report, raw, folder, codec)
            raw.unlink()
        if "memory" in wanted:
            measure_memory_and_inspection(report, folder, clip)
    return report.finish()


if __name__ == "__main__":
    sys.exit(main())
