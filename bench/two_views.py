# SPDX-License-Identifier: GPL-3.0-or-later
"""Bits of a two-view stream against two independent encodes of the same eyes, at equal quality: the ruler that
spatial_video.py and stereo_bits.py share."""
import dataclasses
import math
import pathlib
import statistics

from measure import BUILD, likeness, run, tool
from sbs_video import ffmpeg

TWO_VIEWS = BUILD / "lumetwin-two-views"
QUALITIES = (0.25, 0.5, 0.75, 1.0)


def rule(quality, eye, fps):
    """The average bit rate of both views together: 0.15 bits for each pixel of one eye at full quality."""
    return max(1_000_000, int(eye[0] * eye[1] * fps * 0.15 * quality))


@dataclasses.dataclass
class Point:
    bits: float
    eyes: tuple  # Likeness of the left and the right view
    cpu: float  # seconds

    def mean(self, measure):
        return statistics.mean(getattr(eye, measure) for eye in self.eyes)

    def unevenness(self):
        """By how many dB the left view is better than the right one."""
        return self.eyes[0].psnr - self.eyes[1].psnr


@dataclasses.dataclass
class RawVideo:
    frames: pathlib.Path  # side by side
    eyes: list
    size: tuple  # of one eye
    fps: int

    def remove(self):
        for file in (self.frames, *self.eyes):
            file.unlink()


def split(clip, folder):
    """Raw video of each eye."""
    eyes = [folder / "left.y4m", folder / "right.y4m"]
    for index, target in enumerate(eyes):
        ffmpeg("-i", clip, "-vf", f"crop=iw/2:ih:{index}*iw/2:0", "-pix_fmt", "yuv420p", target)
    return eyes


def raw_video(clip, size, fps, folder, seconds):
    """The beginning of a clip as raw video, at whole frames per second."""
    frames = folder / "frames.y4m"
    ffmpeg("-i", clip, "-t", seconds, "-an", "-vf", f"settb=AVTB,setpts=N/{fps}/TB,setparams=range=tv", "-r", fps,
           "-pix_fmt", "yuv420p", frames)
    eyes = split(frames, folder)
    plain = folder / "frames.yuv"
    ffmpeg("-i", frames, "-f", "rawvideo", plain)
    frames.unlink()
    return RawVideo(plain, eyes, size, fps)


def independent(eye, fps, preset, rate, target, *options):
    """One eye coded for itself by the x265 of the same stack, with the same key frames."""
    return (tool("x265"), "--input", eye, "--preset", preset, "--bitrate", max(1, round(rate / 1000)), "--keyint", 2 * fps,
            "--min-keyint", 1, "--no-open-gop", "--no-info", "--log-level", "none", *options, "--output", target)


def two_views(preset, video, folder):
    """One two-view stream at each quality, and the CPU time of all."""
    stream = folder / "views.hevc"
    width, height = video.size
    points = []
    for quality in QUALITIES:
        cost = run(TWO_VIEWS, video.frames, 2 * width, height, video.fps, preset, rule(quality, video.size, video.fps), stream)
        eyes = tuple(likeness(stream, eye, video.fps, f":vpos:{side}") for side, eye in zip(("left", "right"), video.eyes))
        points.append(Point(stream.stat().st_size, eyes, cost.cpu))
    return points, sum(point.cpu for point in points)


def two_encodes(preset, video, folder, *options):
    """Two independent streams together at each quality, and the CPU time of all."""
    streams = [folder / "left.hevc", folder / "right.hevc"]
    points = []
    for quality in QUALITIES:
        rate = rule(quality, video.size, video.fps) / 2
        cpu = sum(run(*independent(eye, video.fps, preset, rate, stream, *options)).cpu
                  for eye, stream in zip(video.eyes, streams))
        eyes = tuple(likeness(stream, eye, video.fps) for stream, eye in zip(streams, video.eyes))
        points.append(Point(sum(stream.stat().st_size for stream in streams), eyes, cpu))
    return points, sum(point.cpu for point in points)


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


def bits_ratio(ours, theirs, measure="psnr"):
    """Our bits against theirs at equal quality (Bjøntegaard): the mean of both eyes' PSNR in dB, or of their SSIM on
    a scale of decibels."""
    def quality(point):
        mean = point.mean(measure)
        return -10 * math.log10(1 - mean) if measure == "ssim" else mean
    curves = [sorted((quality(point), math.log(point.bits)) for point in points) for points in (ours, theirs)]
    low = max(curve[0][0] for curve in curves)
    high = min(curve[-1][0] for curve in curves)
    mean = [integral(curve, low, high) / (high - low) for curve in curves]
    return math.exp(mean[0] - mean[1])
