# SPDX-License-Identifier: GPL-3.0-or-later
"""Compares the bits of a two-view stream with those of two independent encodes of the same eyes, at equal quality.
Used by spatial_video.py and stereo_bits.py."""
import dataclasses
import math
import pathlib
import statistics

from measure import BUILD, similarity, run, tool
from sbs_video import ffmpeg

TWO_VIEWS = BUILD / "lumetwin-two-views"
QUALITIES = (0.25, 0.5, 0.75, 1.0)


def target_rate(quality, eye, fps):
    """The average bit rate of both views together: 0.15 bits for each pixel of one eye at full quality."""
    return max(1_000_000, int(eye[0] * eye[1] * fps * 0.15 * quality))


@dataclasses.dataclass
class Point:
    bits: float
    eyes: tuple  # Similarity of the left and the right view
    cpu: float  # seconds

    def mean(self, measure):
        return statistics.mean(getattr(eye, measure) for eye in self.eyes)

    def unevenness(self):
        """How many dB the left view is better than the right view."""
        return self.eyes[0].psnr - self.eyes[1].psnr


@dataclasses.dataclass
class RawVideo:
    frames: pathlib.Path  # both eyes side by side
    eyes: list
    size: tuple  # of one eye
    fps: int

    def remove(self):
        for file in (self.frames, *self.eyes):
            file.unlink()


def split(clip, folder):
    """Writes raw video of each eye and returns the paths."""
    eyes = [folder / "left.y4m", folder / "right.y4m"]
    for index, target in enumerate(eyes):
        ffmpeg("-i", clip, "-vf", f"crop=iw/2:ih:{index}*iw/2:0", "-pix_fmt", "yuv420p", target)
    return eyes


def raw_video(clip, size, fps, folder, seconds):
    """Writes the beginning of a clip as raw video, at an integer frame rate."""
    frames = folder / "frames.y4m"
    ffmpeg("-i", clip, "-t", seconds, "-an", "-vf", f"settb=AVTB,setpts=N/{fps}/TB,setparams=range=tv", "-r", fps,
           "-pix_fmt", "yuv420p", frames)
    eyes = split(frames, folder)
    plain = folder / "frames.yuv"
    ffmpeg("-i", frames, "-f", "rawvideo", plain)
    frames.unlink()
    return RawVideo(plain, eyes, size, fps)


def encode_command(eye, fps, preset, rate, target, *options):
    """The command that encodes one eye independently, with the x265 of the same stack and the same key frames."""
    return (tool("x265"), "--input", eye, "--preset", preset, "--bitrate", max(1, round(rate / 1000)), "--keyint", 2 * fps,
            "--min-keyint", 1, "--no-open-gop", "--no-info", "--log-level", "none", *options, "--output", target)


def two_views(preset, video, folder):
    """Encodes a two-view stream at each quality. Returns the points and their total CPU time."""
    stream = folder / "views.hevc"
    width, height = video.size
    points = []
    for quality in QUALITIES:
        cost = run(TWO_VIEWS, video.frames, 2 * width, height, video.fps, preset, target_rate(quality, video.size, video.fps), stream)
        eyes = tuple(similarity(stream, eye, video.fps, f":vpos:{side}") for side, eye in zip(("left", "right"), video.eyes))
        points.append(Point(stream.stat().st_size, eyes, cost.cpu))
    return points, sum(point.cpu for point in points)


def two_encodes(preset, video, folder, *options):
    """Encodes two independent streams at each quality. Returns the points of both together and their total CPU time."""
    streams = [folder / "left.hevc", folder / "right.hevc"]
    points = []
    for quality in QUALITIES:
        rate = target_rate(quality, video.size, video.fps) / 2
        cpu = sum(run(*encode_command(eye, video.fps, preset, rate, stream, *options)).cpu
                  for eye, stream in zip(video.eyes, streams))
        eyes = tuple(similarity(stream, eye, video.fps) for stream, eye in zip(streams, video.eyes))
        points.append(Point(sum(stream.stat().st_size for stream in streams), eyes, cpu))
    return points, sum(point.cpu for point in points)


def integral(points, low, high, steps=200):
    """The integral of the cubic through four points, by Simpson's rule."""
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
    """The ratio of our bits to theirs at equal quality (Bjøntegaard). Quality is the mean PSNR of both eyes in dB, or
    their mean SSIM in decibels."""
    def quality(point):
        mean = point.mean(measure)
        return -10 * math.log10(1 - mean) if measure == "ssim" else mean
    curves = [sorted((quality(point), math.log(point.bits)) for point in points) for points in (ours, theirs)]
    low = max(curve[0][0] for curve in curves)
    high = min(curve[-1][0] for curve in curves)
    mean = [integral(curve, low, high) / (high - low) for curve in curves]
    return math.exp(mean[0] - mean[1])
