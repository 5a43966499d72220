#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Whole conversions of damaged files: nothing takes a batch down, leaves half a file under a finished name, or lets
memory grow. Processes that crashed are told with the files that did it.

hostile.py [CONVERSIONS [FIRST-SEED]]   5,000 unless said otherwise; a seed names one damaged file, always the same

The files are those that the script draws, and the small ones of the folder of sample media (LUMETWIN_SAMPLES).
"""
import dataclasses
import json
import os
import pathlib
import random
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import time

from measure import BATCH, tool

FILES_OF_A_BATCH = 50
LARGEST_SAMPLE = 2 << 20
PHOTOS = {".heic", ".heif", ".jpg", ".jpeg", ".png", ".tif", ".tiff", ".mpo"}
FILMS = {".mov", ".mp4", ".m4v", ".mkv", ".avi", ".hevc", ".ts", ".m2ts", ".wmv"}
FAILED_PROCESSES = ("failed: stopped by signal", "failed: it ended early", "failed: its answer", "failed: nothing was heard",
                    "tried once more")


@dataclasses.dataclass
class Findings:
    conversions: int = 0
    states: dict = dataclasses.field(default_factory=dict)
    crashes: list = dataclasses.field(default_factory=list)
    faults: list = dataclasses.field(default_factory=list)
    residents: list = dataclasses.field(default_factory=list)


def ffmpeg(*words):
    subprocess.run([tool("ffmpeg"), "-nostdin", "-v", "error", "-y", *map(str, words)], check=True)


def convert(direction, source, output, *words):
    return subprocess.run([BATCH, "--direction", direction, "--output", output, *words, source], check=True,
                          capture_output=True)


def multi_picture(first, second):
    """Two JPEG files as one with an index of its pictures (CIPA DC-007): the eyes of a stereo camera."""
    stereo, entries_at, length = 0x020002, 50, 82  # the kind of picture; bytes from the header of the index
    marker = b"\xff\xe2" + (2 + 4 + length).to_bytes(2, "big") + b"MPF\0"
    begin = len(marker) + 2  # of the header, from the file's
    entries = struct.pack("<IIIHHIIIHH", stereo, len(first) + len(marker) + length, 0, 0, 0,
                          stereo, len(second), len(first) + len(marker) + length - begin, 0, 0)
    index = struct.pack("<2sHIHHHI4sHHIIHHIII", b"II", 42, 8, 3, 0xB000, 7, 4, b"0100", 0xB001, 4, 1, 2,
                        0xB002, 7, len(entries), entries_at, 0) + entries
    assert len(index) == length
    return first[:2] + marker + index + first[2:] + second


def drawn(folder):
    """Small files of all kinds, side by side and spatial."""
    folder.mkdir()
    sound = ("-f", "lavfi", "-i", "sine=duration=1", "-c:a", "aac", "-shortest")
    picture = ("-f", "lavfi", "-i", "testsrc2=size=256x96:rate=15:duration=1")
    for name, *words in (("h264.mp4", "libx264"), ("hevc.mov", "libx265"), ("mpeg4.avi", "mpeg4"), ("h264.mkv", "libx264"),
                         ("h264.ts", "libx264"), ("h264.m2ts", "libx264", "-mpegts_m2ts_mode", "1"),
                         ("wmv2.wmv", "wmv2", "-c:a", "wmav2")):
        ffmpeg(*picture, *sound, "-c:v", *words, folder / name)
    for name in ("picture.jpg", "picture.png", "picture.tif"):
        subprocess.run(["convert", "-seed", "7", "-size", "256x96", "plasma:tomato-navy", str(folder / name)], check=True)
    eye = (folder / "picture.jpg").read_bytes()
    (folder / "camera.mpo").write_bytes(multi_picture(eye, eye))
    for name in ("h264.mp4", "picture.jpg"):
        convert("sbsToSpatial", folder / name, folder)
    return sorted(folder.iterdir())


def samples():
    place = pathlib.Path(os.environ.get("LUMETWIN_SAMPLES", BATCH.parents[3].parent / "shared/samples"))
    return [file for file in sorted(place.rglob("*")) if file.suffix.lower() in PHOTOS | FILMS and
            file.is_file() and file.stat().st_size <= LARGEST_SAMPLE]


def are_spatial(files):
    """Which of the files are spatial media."""
    found = subprocess.run([BATCH, "inspect", "--json", *files], capture_output=True, text=True, check=False)
    return {pathlib.Path(entry["file"]) for entry in json.loads(found.stdout) if entry.get("spatial")}


def chosen(sources, seed):
    """The small drawn files are taken more often: so there is time for more of them."""
    chance = random.Random(-seed)
    here = [file for file in sources if "lumetwin-hostile-" in str(file)]
    return chance.choice(here if chance.random() < 0.8 else sources)


def damaged(content, seed):
    """The content with a few places changed, as the seed says: most of them near the beginning or the end, where the
    headers are."""
    chance = random.Random(seed)
    changed = bytearray(content)
    for _ in range(chance.choice((1, 1, 2, 4, 16, 64))):
        span = chance.choice((len(changed), min(len(changed), 4096), min(len(changed), 512)))
        place = chance.randrange(span)
        if chance.random() < 0.4:
            place = len(changed) - 1 - place
        action = chance.randrange(6)
        if action == 0:
            changed[place] ^= 1 << chance.randrange(8)
        elif action == 1:
            changed[place] = chance.choice((0, 1, 0x7F, 0x80, 0xFF))
        elif action == 2:
            changed[place:place + 4] = chance.choice((b"\0\0\0\0", b"\xff\xff\xff\xff", b"\x7f\xff\xff\xff", b"\0\0\0\1"))
        elif action == 3:
            del changed[place:place + chance.choice((1, 4, 64, 1024))]
        elif action == 4:
            changed[place:place] = changed[place:place + chance.choice((1, 4, 64, 1024))]
        else:
            changed[place] = chance.randrange(256)
        if not changed:
            return bytes(1)
    return bytes(changed[:chance.randrange(1, len(changed))] if chance.random() < 0.05 else changed)


def resident(process):
    """MiB of the batch tool itself."""
    try:
        with open(f"/proc/{process}/status", encoding="ascii") as status:
            return next(int(line.split()[1]) / 1024 for line in status if line.startswith("VmRSS:"))
    except (OSError, StopIteration):
        return 0


def watched(command, environment):
    """Runs the batch tool; also its memory, sampled: the largest in its first and in its second half."""
    values = []
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                          errors="replace", env=environment) as process:
        def watch():
            while process.poll() is None:
                values.append(resident(process.pid))
                time.sleep(0.05)
        watcher = threading.Thread(target=watch)
        watcher.start()
        output, errors = process.communicate()
        watcher.join()
    return process.returncode, output, errors, max(values, default=0)


def check_outputs(findings, seeds, output, results):
    """Finished names are those of the converted files, and no partial file stays but of failed ones."""
    finished = {file.name for file in output.iterdir() if file.suffix != ".partial"}
    converted = {pathlib.Path(result["output"]).name for result in results if result["state"].startswith("converted")}
    for name in finished ^ converted:
        findings.faults.append(f"{seeds}: {name} is {'left behind' if name in finished else 'missing'}")
    for name in sorted(finished & converted):
        if pathlib.Path(name).suffix in (".mp4", ".mov"):
            probe = subprocess.run([tool("ffprobe"), "-v", "error", "-count_packets", "-show_entries", "stream=nb_read_packets",
                                    "-of", "csv=p=0", str(output / name)], capture_output=True, text=True)
            if probe.returncode or not any(line.strip(",").isdigit() and int(line.strip(",")) > 0
                                           for line in probe.stdout.split()):
                findings.faults.append(f"{seeds}: {name} cannot be read: {probe.stderr.strip()}")


def run_batch(findings, direction, sources, seeds, folder):
    inputs, output = folder / "in", folder / "out"
    for place in (inputs, output):
        shutil.rmtree(place, ignore_errors=True)
        place.mkdir()
    for seed in seeds:
        source = chosen(sources, seed)
        (inputs / f"{seed:06}-{source.stem}{source.suffix.lower()}").write_bytes(damaged(source.read_bytes(), seed))
    status, text, errors, peak = watched(
        [BATCH, "--direction", direction, "--output", output, "--report", folder / "report.json", inputs],
        dict(os.environ, LC_ALL="C.UTF-8"))
    if status not in (0, 1):
        findings.faults.append(f"{seeds}: the batch tool ended with {status}: {errors.strip()}")
        return
    results = json.loads((folder / "report.json").read_text())["files"]
    findings.conversions += sum(result["state"] != "skipped" for result in results)
    for result in results:
        findings.states[result["state"]] = findings.states.get(result["state"], 0) + 1
    findings.crashes += [line.strip() for line in (text + errors).splitlines()
                         if line.startswith("[VP]") and any(words in line for words in FAILED_PROCESSES)]
    findings.crashes += [f"{pathlib.Path(result['input']).name}: {warning}" for result in results
                         for warning in result.get("warnings", []) if warning["kind"] == "triedAgain"]
    findings.residents.append(peak)
    check_outputs(findings, seeds, output, results)


def tell(findings):
    print(f"{findings.conversions} conversions: " + ", ".join(f"{count} {state}" for state, count in sorted(findings.states.items())))
    print(f"memory of the batch tool: {findings.residents[0]:.0f} MiB in the first batch, at most {max(findings.residents):.0f} MiB")
    print(f"{len(findings.crashes)} processes failed" + "".join(f"\n  {line}" for line in findings.crashes))
    print(f"{len(findings.faults)} faults" + "".join(f"\n  {line}" for line in findings.faults))


def main():
    wanted, first = (int(word) for word in (sys.argv[1:] + ["5000", "1"][len(sys.argv) - 1:]))
    findings = Findings()
    with tempfile.TemporaryDirectory(prefix="lumetwin-hostile-") as name:
        folder = pathlib.Path(name)
        sources = drawn(folder / "drawn") + samples()
        spatial = are_spatial(sources)
        kinds = (("sbsToSpatial", [file for file in sources if file not in spatial]), ("spatialToSBS", sorted(spatial)))
        print(f"{len(sources)} files, {len(spatial)} of them spatial")
        for seed in range(first, sys.maxsize, FILES_OF_A_BATCH):
            if findings.conversions >= wanted:
                break
            # The direction depends on the seed alone, too.
            run_batch(findings, *kinds[seed // FILES_OF_A_BATCH % 2], range(seed, seed + FILES_OF_A_BATCH), folder)
            print(f"\r{findings.conversions} conversions, {len(findings.crashes)} failed processes, {len(findings.faults)} faults", end="",
                  flush=True)
    print()
    tell(findings)
    return 1 if findings.faults else 0


if __name__ == "__main__":
    sys.exit(main())
