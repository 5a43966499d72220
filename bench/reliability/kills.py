# SPDX-License-Identifier: GPL-3.0-or-later
"""kill -9 at random moments: no half file under a finished name, nothing of the user's lost, nothing keeps running."""
import os
import pathlib
import random
import shutil
import signal
import subprocess
import tempfile
import time

from reliability import media

OLD = b"the user's older file"


def members(group):
    """The processes of a process group that still run."""
    found = []
    for entry in pathlib.Path("/proc").iterdir():
        if entry.name.isdigit():
            try:
                fields = (entry / "stat").read_text("utf-8", "replace").rpartition(")")[2].split()
                if int(fields[2]) == group and fields[0] not in "ZX":
                    found.append(int(entry.name))
            except (OSError, IndexError, ValueError):
                pass
    return found


def kill_once(case, chance, output, longest):
    """Starts a conversion and kills it: the batch tool, its worker, or both. Returns what is wrong, or None."""
    shutil.rmtree(output, ignore_errors=True)
    output.mkdir()
    result = output / case.result
    replaces = chance.random() < 0.5
    if replaces:
        result.write_bytes(OLD)
    source = media.digest(case.source)
    target = chance.choice(("tool", "worker", "both"))
    with subprocess.Popen(media.command(case, output), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL, env=media.ENVIRONMENT, start_new_session=True) as process:
        time.sleep(chance.random() * longest)
        for member in members(process.pid):
            if target == "both" or (target == "tool") == (member == process.pid):
                try:
                    os.kill(member, signal.SIGKILL)
                except ProcessLookupError:
                    pass
        try:
            status = process.wait(60)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            return f"{target} killed: the batch tool did not end within a minute"
        end = time.monotonic() + 10
        while members(process.pid) and time.monotonic() < end:
            time.sleep(0.02)
        if members(process.pid):
            os.killpg(process.pid, signal.SIGKILL)
            return f"{target} killed: a process still ran ten seconds later"
    if media.digest(case.source) != source:
        return "the input was changed"
    if result.exists():
        if not (replaces and result.read_bytes() == OLD) and not media.is_whole(case, result):
            return f"{target} killed: half a file has the finished name"
    elif replaces:
        return f"{target} killed: the older file is gone"
    elif target == "worker" and status == 0:
        return "a conversion without a result succeeded"
    odd = [file.name for file in output.iterdir() if file != result and file.suffix != ".partial"]
    return f"{target} killed: left behind {odd}" if odd else None


def goes_on(case, output):
    """The next run over what the killed one left. Returns what is wrong, or None."""
    run = subprocess.run(media.command(case, output), capture_output=True, env=media.ENVIRONMENT, text=True)
    left = [file.name for file in output.iterdir()]
    if run.returncode != 0 or left != [case.result] or not media.is_whole(case, output / case.result):
        return f"the next run: status {run.returncode}, {left}"
    return None


def stage(first, count, _options):
    """Yields for each kill its number and what is wrong with it, or None."""
    with tempfile.TemporaryDirectory(prefix="lumetwin-kills-") as name:
        folder = pathlib.Path(name)
        cases = media.cases(folder)
        longest = {}
        for case in cases:
            began = time.monotonic()
            (folder / "out").mkdir(exist_ok=True)
            subprocess.run(media.command(case, folder / "out"), check=True, capture_output=True)
            longest[case] = 1.1 * (time.monotonic() - began)
        for seed in range(first, first + count):
            chance = random.Random(seed)
            case = chance.choice(cases)
            fault = kill_once(case, chance, folder / "out", longest[case])
            if not fault and seed % 5 == 0:
                fault = goes_on(case, folder / "out")
            yield seed, fault and f"{case.result}: {fault}"
