# SPDX-License-Identifier: GPL-3.0-or-later
"""The n-th write, seek, rename, flush, open, allocation or start of a thread fails, for each n: the conversion fails
with a reason, or succeeds with a whole result; nothing crashes or hangs."""
import pathlib
import shutil
import subprocess
import tempfile

from reliability import media

KINDS = ("open", "write", "seek", "sync", "rename", "thread", "allocation")
EVERY = 150  # beyond this number of calls only some are tried, each a fiftieth later than the one before


def build(folder):
    library = folder / "failing.so"
    subprocess.run(["cc", "-shared", "-fPIC", "-O1", "-o", str(library),
                    str(pathlib.Path(__file__).with_name("FailingCall.c")), "-ldl"], check=True)
    return library


def was_told(result):
    """Whether a result that is missing or not whole is told of: skipped, or with frames missing."""
    return result["state"] == "skipped" or any(warning["kind"] == "framesMissing" for warning in result["warnings"])


def fault_of(case, run, output, report, source):
    """What is wrong after a failed call, or None."""
    if run.returncode < 0:
        return f"ended by signal {-run.returncode}"
    if media.digest(case.source) != source:
        return "the input was changed"
    file = output / case.result
    is_whole = file.exists() and media.is_whole(case, file)
    results = media.results(report) if report.exists() else []
    if run.returncode == 0:
        return None if is_whole or (results and was_told(results[0])) else "success without a whole result"
    if file.exists() and not is_whole:
        return "half a file has the finished name"
    has_reason = any(result.get("reason") for result in results) or run.stderr.replace("FAILED", "").strip()
    return None if has_reason else f"ended with {run.returncode} and no word"


def try_once(case, library, kind, number, folder):
    """Returns whether the call was reached, and what is wrong, or None."""
    output, report = folder / "out", folder / "report.json"
    shutil.rmtree(output, ignore_errors=True)
    output.mkdir()
    report.unlink(missing_ok=True)
    source = media.digest(case.source)
    environment = dict(media.ENVIRONMENT, LD_PRELOAD=str(library), LUMETWIN_FAIL=f"{kind}:{number}")
    words = ("--in-process", "--report", str(report))
    try:
        run = subprocess.run(media.command(case, output, *words), capture_output=True, text=True, errors="replace",
                             env=environment, timeout=60)
    except subprocess.TimeoutExpired:
        return True, "did not end within a minute"
    return "FAILED" in run.stderr, fault_of(case, run, output, report, source)


def stage(_first, _count, options):
    """Yields for each failed call its name and what is wrong with it, or None."""
    kinds = [kind for kind in KINDS if not options or kind in options]
    with tempfile.TemporaryDirectory(prefix="lumetwin-failing-") as name:
        folder = pathlib.Path(name)
        library = build(folder)
        for case in media.cases(folder, seconds=1):
            for kind in kinds:
                number, reached = 1, True
                while reached:
                    reached, fault = try_once(case, library, kind, number, folder)
                    if reached:
                        yield 1, fault and f"{case.result}, {kind} {number}: {fault}"
                    number += 1 if number < EVERY else max(1, number // 50)
