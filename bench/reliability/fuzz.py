# SPDX-License-Identifier: GPL-3.0-or-later
"""Each fuzz target gets a wished number of inputs, twenty seconds of each by turns. Corpus, findings and counts are kept in the
folder "fuzzing", so that another run goes on where this one stopped. It uses the preset fuzz:

    cmake --preset fuzz && cmake --build build/fuzz
"""
import json
import os
import pathlib
import re
import resource
import subprocess
import time

from measure import SOURCE

PROGRAMS = pathlib.Path(os.environ.get("LUMETWIN_FUZZ_PROGRAMS", SOURCE / "build/fuzz/tests/fuzz"))
FOLDER = pathlib.Path("fuzzing").resolve()
STATE = FOLDER / "fuzzing.json"
SECONDS_OF_A_PIECE = 20
LARGEST_INPUT = 1 << 16
MOST_FINDINGS = 10  # then a target is not run any more


def targets():
    """The names of the built targets."""
    found = sorted(file.name[len("fuzz_"):] for file in PROGRAMS.glob("fuzz_*")
                   if file.is_file() and os.access(file, os.X_OK) and file.name != "fuzz_seeds")
    if not found:
        raise SystemExit(f"no fuzz targets in {PROGRAMS}: build the preset fuzz")
    return found


def told(text, pattern):
    """The last number that the fuzzer printed after a word; 0 if there is none."""
    numbers = re.findall(pattern + r"\s*(\d+)", text)
    return int(numbers[-1]) if numbers else 0


def piece(target, entry, inputs):
    """Runs a target for at most twenty seconds and adds to its entry what it did. The seed is the number of the piece."""
    corpus, findings = FOLDER / target / "corpus", FOLDER / target / "findings"
    for place in (corpus, findings):
        place.mkdir(parents=True, exist_ok=True)
    known = SOURCE / "tests/fuzz/findings" / target
    began, before = time.monotonic(), resource.getrusage(resource.RUSAGE_CHILDREN)
    run = subprocess.run(
        [PROGRAMS / f"fuzz_{target}", f"-runs={inputs}", f"-max_total_time={SECONDS_OF_A_PIECE}",
         f"-seed={entry['pieces'] + 1}", f"-max_len={LARGEST_INPUT}", "-timeout=30", "-rss_limit_mb=2048",
         "-print_final_stats=1", f"-artifact_prefix={findings}/", corpus, FOLDER / "seeds" / target,
         *([known] if known.is_dir() else [])],
        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    entry["pieces"] += 1
    entry["inputs"] += told(run.stdout, "stat::number_of_executed_units:")
    entry["wall"] += time.monotonic() - began
    entry["cpu"] += after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    entry["edges"] = max(entry["edges"], told(run.stdout, r"\bcov:"))
    entry["date"] = time.strftime("%Y-%m-%d")
    if run.returncode != 0:
        log = FOLDER / target / f"piece-{entry['pieces']}.log"
        log.write_text(run.stdout, "utf-8")
        entry["findings"].append(str(log))


def table(state):
    print("| target | inputs | CPU seconds | wall seconds | findings | edges covered | date |\n|---|---|---|---|---|---|---|")
    for target, entry in sorted(state.items()):
        print(f"| {target} | {entry['inputs']:,} | {entry['cpu']:.0f} | {entry['wall']:.0f} | {len(entry['findings'])} | "
              f"{entry['edges']} | {entry['date']} |")


def main(wanted, names):
    """Runs the named targets, or all, until each has had the wanted number of inputs. Returns the exit status."""
    built = targets()
    if unknown := set(names) - set(built):
        raise SystemExit(f"no such fuzz target: {', '.join(sorted(unknown))}")
    FOLDER.mkdir(exist_ok=True)
    subprocess.run([PROGRAMS / "fuzz_seeds", FOLDER / "seeds"], check=True, stdout=subprocess.DEVNULL)
    state = json.loads(STATE.read_text("utf-8")) if STATE.exists() else {}
    chosen = names or built
    for target in chosen:
        state.setdefault(target, {"pieces": 0, "inputs": 0, "cpu": 0, "wall": 0, "edges": 0, "findings": []})
    try:
        while left := [target for target in chosen
                       if state[target]["inputs"] < wanted and len(state[target]["findings"]) < MOST_FINDINGS]:
            for target in left:
                piece(target, state[target], wanted - state[target]["inputs"])
                STATE.write_text(json.dumps(state, indent=1), "utf-8")
    except KeyboardInterrupt:
        print()
    table({target: entry for target, entry in state.items() if entry["pieces"]})
    return 1 if any(entry["findings"] for entry in state.values()) else 0
