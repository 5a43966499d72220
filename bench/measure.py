# SPDX-License-Identifier: GPL-3.0-or-later
"""Shared by the benchmarks: paths of the programs, fair timing, and a table of results.

A benchmark runs the compared commands by turns in the same run, so that a busy machine slows all of them. Only the
ratio counts. It draws its own media with the ffmpeg of the media stack.
"""
import dataclasses
import hashlib
import os
import pathlib
import re
import statistics
import subprocess
import time

SOURCE = pathlib.Path(__file__).resolve().parent.parent
BATCH = pathlib.Path(os.environ.get("LUMETWIN_BATCH", SOURCE / "build/release/tools/lumetwin-batch"))
BUILD = BATCH.parent.parent / "bench"


def stack():
    """The folder of the media stack that ./run has built."""
    cache = os.environ.get("LUMETWIN_CACHE") or os.path.join(
        os.environ.get("XDG_CACHE_HOME") or os.path.expanduser("~/.cache"), "lumetwin")
    parts = [SOURCE / "scripts/stack.sh", *sorted((SOURCE / "scripts/patches").glob("*.patch"))]
    sums = "".join(hashlib.sha256(part.read_bytes()).hexdigest() + "\n" for part in parts)
    return pathlib.Path(cache, f"stack-{hashlib.sha256(sums.encode()).hexdigest()[:12]}")


def tool(name):
    """A program of the media stack: ffmpeg, ffprobe, x265, heif-dec, …"""
    return str(stack() / "bin" / name)


@dataclasses.dataclass
class Cost:
    wall: float  # seconds
    cpu: float  # seconds, all threads and child processes
    peak: float  # MiB of the largest process


def run(*command, **options):
    """Runs a command and returns its cost. Prints its output and ends the benchmark when it fails."""
    began = time.monotonic()
    with subprocess.Popen([str(word) for word in command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, **options) as process:
        output = process.stdout.read()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise SystemExit(f"{' '.join(map(str, command))}\n{output.decode(errors='replace')}\nfailed: {process.returncode}")
    return Cost(time.monotonic() - began, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024)


def run_together(*commands):
    """Runs the commands at the same time and returns their total cost."""
    began = time.monotonic()
    processes = [subprocess.Popen([str(word) for word in command], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL) for command in commands]
    usages = []
    for process, command in zip(processes, commands):
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            raise SystemExit(f"failed: {' '.join(map(str, command))}")
        usages.append(usage)
    return Cost(time.monotonic() - began, sum(usage.ru_utime + usage.ru_stime for usage in usages),
                max(usage.ru_maxrss for usage in usages) / 1024)


def take_turns(rounds, **contestants):
    """Calls the contestants by turns; each returns a Cost. Returns the median cost of each, by name. The first round
    is not counted, because the first run also pays for memory that the system has not yet allocated."""
    costs = {name: [] for name in contestants}
    for round_ in range(-1 if rounds > 1 else 0, rounds):
        for name, contestant in contestants.items():
            cost = contestant()
            if round_ >= 0:
                costs[name].append(cost)
    return {name: Cost(*(statistics.median(getattr(cost, field) for cost in all_costs) for field in ("wall", "cpu", "peak")))
            for name, all_costs in costs.items()}


@dataclasses.dataclass
class Similarity:
    psnr: float  # dB, of luma, over all frames
    ssim: float  # of luma, the mean of the frames


def similarity(stream, original, fps, view=""):
    """Compares a view of a stream with its original (raw video, y4m), frame by frame. The frame rate of a raw stream is
    not reliable, so frames are paired by their number. Both are treated as limited range."""
    def frames(pad):
        return f"{pad}settb=AVTB,setpts=N/{fps}/TB,setparams=range=tv,format=yuv420p"
    result = subprocess.run(
        [tool("ffmpeg"), "-nostdin", "-v", "info", "-r", str(fps), "-i", str(stream), "-r", str(fps), "-i", str(original),
         "-lavfi", f"{frames(f'[0:v{view}]')},split[a1][a2];{frames('[1:v]')},split[b1][b2];"
                   "[a1][b1]psnr[p];[a2][b2]ssim[s]",
         "-map", "[p]", "-map", "[s]", "-f", "null", "-"], capture_output=True, text=True, check=True)
    return Similarity(*(float(re.search(pattern, result.stderr).group(1)) for pattern in (r"PSNR y:([\d.]+|inf)", r"SSIM Y:([\d.]+)")))


def psnr(first, second, filters="[0:v][1:v]"):
    """Luma PSNR in dB between two videos. filters: a filter graph that ends in the two pads to compare."""
    result = subprocess.run([tool("ffmpeg"), "-nostdin", "-v", "info", "-i", str(first), "-i", str(second), "-lavfi",
                             f"{filters}psnr", "-f", "null", "-"], capture_output=True, text=True, check=True)
    return float(re.search(r"PSNR y:([\d.]+|inf)", result.stderr).group(1))


class Report:
    """Measured values with their limits. add() prints a row at once; finish() prints the whole table."""

    def __init__(self, title):
        self.title = title
        self.rows = []

    def add(self, what, value, at_most=None, at_least=None, unit=""):
        met = (at_most is None or value <= at_most) and (at_least is None or value >= at_least)
        limit = f"at most {at_most:g}" if at_most is not None else f"at least {at_least:g}" if at_least is not None else ""
        self.rows.append((what, f"{value:.3f} {unit}".strip(), limit, "" if not limit else "met" if met else "MISSED"))
        print("  " + "  ".join(filter(None, self.rows[-1])), flush=True)

    def finish(self):
        """Prints the table. Returns the exit status: 1 when a limit is missed."""
        widths = [max(len(row[column]) for row in self.rows) for column in range(4)]
        print(f"\n{self.title}")
        for row in self.rows:
            print("  " + "  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())
        return 1 if any(row[3] == "MISSED" for row in self.rows) else 0
