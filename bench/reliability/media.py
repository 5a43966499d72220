# SPDX-License-Identifier: GPL-3.0-or-later
"""Shared by the stages: drawn media, a run of the batch tool, and what is expected of its output folder."""
import dataclasses
import hashlib
import json
import os
import pathlib
import subprocess

from measure import BATCH, tool

ENVIRONMENT = dict(os.environ, LC_ALL="C.UTF-8")


@dataclasses.dataclass(frozen=True)
class Case:
    direction: str
    source: pathlib.Path
    result: str  # the name of the output
    frames: int  # of a film; 0 for a photo


def ffmpeg(*words):
    subprocess.run([tool("ffmpeg"), "-nostdin", "-v", "error", "-y", *map(str, words)], check=True)


def command(case, output, *words):
    return [str(BATCH), "--direction", case.direction, "--output", str(output), *words, str(case.source)]


def cases(folder, seconds=2):
    """A film and a photo for each direction, drawn into the folder."""
    film, photo = folder / "film.mp4", folder / "photo.jpg"
    ffmpeg("-f", "lavfi", "-i", f"testsrc2=size=512x144:rate=15:duration={seconds}", "-f", "lavfi", "-i",
           f"sine=duration={seconds}", "-c:v", "libx264", "-c:a", "aac", film)
    subprocess.run(["convert", "-seed", "7", "-size", "1024x384", "plasma:tomato-navy", str(photo)], check=True)
    there = [Case("sbsToSpatial", film, "film_spatial.mov", 15 * seconds),
             Case("sbsToSpatial", photo, "photo_spatial.heic", 0)]
    spatial = folder / "spatial"
    spatial.mkdir()
    for case in there:
        subprocess.run(command(case, spatial), check=True, capture_output=True)
    return there + [Case("spatialToSBS", spatial / "film_spatial.mov", "film_spatial_sbs.mp4", 15 * seconds),
                    Case("spatialToSBS", spatial / "photo_spatial.heic", "photo_spatial_sbs.jpg", 0)]


def digest(file):
    return hashlib.sha256(file.read_bytes()).hexdigest()


def is_whole(case, file):
    """Whether outside readers find a whole film or photo."""
    if case.frames:
        probe = subprocess.run([tool("ffprobe"), "-v", "error", "-count_frames", "-select_streams", "v:0",
                                "-show_entries", "stream=nb_read_frames", "-of", "csv=p=0", str(file)],
                               capture_output=True, text=True)
        frames = probe.stdout.strip().rstrip(",")
        return probe.returncode == 0 and frames.isdigit() and int(frames) == case.frames
    if file.suffix == ".heic":
        found = subprocess.run([tool("heif-info"), str(file)], capture_output=True, text=True)
        return found.returncode == 0
    found = subprocess.run(["identify", "-regard-warnings", str(file)], capture_output=True, text=True)
    return found.returncode == 0


def results(report):
    return json.loads(report.read_text("utf-8"))["files"]
