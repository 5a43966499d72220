# SPDX-License-Identifier: GPL-3.0-or-later
"""Memory stays flat: a film of 20,000 frames, 1,000 photos, 10,000 files in a folder."""
import pathlib
import shutil
import statistics
import subprocess
import tempfile
import time

from reliability import media

TOLERANCE = 0.05


def family(root):
    """The process and its children."""
    found = [root]
    for entry in pathlib.Path(f"/proc/{root}/task").glob("*/children"):
        try:
            found += [int(child) for child in entry.read_text().split()]
        except OSError:
            pass
    return found


def memory(processes):
    """MiB that the processes use, with a fair part of what they share."""
    total = 0
    for process in processes:
        try:
            for line in pathlib.Path(f"/proc/{process}/smaps_rollup").read_text().splitlines():
                if line.startswith("Pss:"):
                    total += int(line.split()[1]) / 1024
        except OSError:
            pass
    return total


def watched(command):
    """Runs a command; its memory up to fifty times a second."""
    values = []
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                          env=media.ENVIRONMENT) as process:
        while process.poll() is None:
            values.append(memory(family(process.pid)))
            time.sleep(0.02)
    return process.returncode, values


def judged(name, status, values):
    """The second fifth against the last one, of the highest values of short spans."""
    if status != 0:
        return f"{name}: ended with {status}"
    span = max(1, len(values) // 50)
    peaks = [max(values[i:i + span]) for i in range(0, len(values), span)]
    if len(peaks) < 20:
        return f"{name}: too short to be judged ({len(values)} samples)"
    fifth = len(peaks) // 5
    early, late = statistics.median(peaks[fifth:2 * fifth]), statistics.median(peaks[-fifth:])
    print(f"\n  {name}: {early:.1f} MiB, later {late:.1f} MiB", flush=True)
    return f"{name}: from {early:.1f} to {late:.1f} MiB" if late > early * (1 + TOLERANCE) else None


def film(folder, direction):
    output = folder / direction
    output.mkdir()
    source = folder / "long.mp4"
    if not source.exists():
        media.ffmpeg("-f", "lavfi", "-i", "testsrc2=size=256x64:rate=50:duration=400", "-f", "lavfi", "-i",
                     "sine=duration=400", "-c:v", "libx264", "-preset", "ultrafast", "-c:a", "aac", source)
    if direction == "spatialToSBS":
        source = folder / "sbsToSpatial/long_spatial.mov"
    command = [str(media.BATCH), "--direction", direction, "--output", str(output), str(source)]
    return judged(f"20,000 frames, {direction}", *watched(command))


def photos(folder):
    inputs, output = folder / "photos", folder / "photos-out"
    inputs.mkdir()
    output.mkdir()
    subprocess.run(["convert", "-seed", "7", "-size", "512x192", "plasma:tomato-navy", str(folder / "p.jpg")], check=True)
    for number in range(1000):
        shutil.copy(folder / "p.jpg", inputs / f"{number:05}.jpg")
    command = [str(media.BATCH), "--direction", "sbsToSpatial", "--output", str(output), str(inputs)]
    return judged("1,000 photos", *watched(command))


def many_files(folder):
    inputs, output = folder / "many", folder / "many-out"
    inputs.mkdir()
    output.mkdir()
    for number in range(10000):
        (inputs / f"{number:05}.jpg").symlink_to(folder / "p.jpg")
    command = [str(media.BATCH), "--direction", "spatialToSBS", "--output", str(output), str(inputs)]
    return judged("10,000 files", *watched(command))


def stage(_first, _count, _options):
    """Yields for each kind of run what is wrong, or None."""
    with tempfile.TemporaryDirectory(prefix="lumetwin-growth-") as name:
        folder = pathlib.Path(name)
        for fault in (film(folder, "sbsToSpatial"), film(folder, "spatialToSBS"), photos(folder), many_files(folder)):
            yield 1, fault
