# SPDX-License-Identifier: GPL-3.0-or-later
"""Tries the promises about files: python3 bench/reliability STAGE [COUNT] [KIND...]

  kills    kill -9 at random moments, 500 unless said otherwise; goes on after the last one of an earlier run
  failing  the n-th call fails, for each n; kinds: open write seek sync rename thread allocation
  places   full, read-only, unplugged, vanished, slow
  growth   memory over 20,000 frames, 1,000 photos, 10,000 files
  fuzz     COUNT inputs for each fuzz target, 10 million unless said otherwise; kinds: names of targets

What was found is kept in reliability.json in the current folder (of fuzz: in the folder fuzzing), and printed as a table.
"""
import json
import pathlib
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))

from measure import SOURCE  # noqa: E402
from reliability import failing, fuzz, growth, kills, places  # noqa: E402

STAGES = {"kills": (kills.stage, 500), "failing": (failing.stage, 0), "places": (places.stage, 0),
          "growth": (growth.stage, 0)}
STATE = pathlib.Path("reliability.json")


def commit():
    return subprocess.run(["git", "-C", str(SOURCE), "log", "-1", "--format=%s"], capture_output=True,
                          text=True).stdout.strip()


def run(name, count, options, state):
    stage, usual = STAGES[name]
    entry = state.get(name, {"tried": 0, "faults": [], "seconds": 0})
    if not usual:
        entry = {"tried": 0, "faults": [], "seconds": 0}
    entry.update(commit=commit(), date=time.strftime("%Y-%m-%d"))
    began, before = time.monotonic(), entry["seconds"]
    for _, fault in stage(entry["tried"], max(0, (count or usual) - entry["tried"]), options):
        entry["tried"] += 1
        if fault:
            entry["faults"].append(fault)
        entry["seconds"] = round(before + time.monotonic() - began)
        state[name] = entry
        STATE.write_text(json.dumps(state, indent=1), "utf-8")
        print(f"\r{name}: {entry['tried']} tried, {len(entry['faults'])} faults" + (f"\n  {fault}" if fault else ""),
              end="\n" if fault else "", flush=True)
    print()


def table(state):
    print("| stage | tried | faults | minutes | date | commit |\n|---|---|---|---|---|---|")
    for name, entry in state.items():
        print(f"| {name} | {entry['tried']} | {len(entry['faults'])} | {entry['seconds'] / 60:.0f} | {entry['date']} | "
              f"{entry['commit']} |")


def main():
    if len(sys.argv) < 2 or sys.argv[1] not in (*STAGES, "fuzz"):
        raise SystemExit(__doc__)
    count = int(sys.argv[2]) if len(sys.argv) > 2 and sys.argv[2].isdigit() else 0
    if sys.argv[1] == "fuzz":
        return fuzz.main(count or 10_000_000, [word for word in sys.argv[2:] if not word.isdigit()])
    state = json.loads(STATE.read_text("utf-8")) if STATE.exists() else {}
    run(sys.argv[1], count, [word for word in sys.argv[2:] if not word.isdigit()], state)
    table(state)
    return 1 if state.get(sys.argv[1], {}).get("faults") else 0


if __name__ == "__main__":
    sys.exit(main())
