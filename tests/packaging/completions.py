# SPDX-License-Identifier: GPL-3.0-or-later
"""The completion scripts of lumetwin-batch, asked by the shells themselves."""
import os
import pathlib
import pty
import re
import select
import subprocess
import tempfile
import time
import unittest

from packaging import BUILD, main, run

BATCH = BUILD / "tools/lumetwin-batch"

# Typed so far, and what must be offered.
CASES = [
    ("lumetwin-batch --direction ", {"spatialToSBS", "sbsToSpatial"}),
    ("lumetwin-batch --on-existing k", {"keep-both"}),
    ("lumetwin-batch --half-", {"--half-width"}),
    ("lumetwin-batch --input-layout half-o", {"half-over-under"}),
    ("lumetwin-batch --disparity-adjustment ", {"auto"}),
    ("lumetwin-batch inspect --j", {"--json"}),
    ("lumetwin-batch inspect --half-", set()),
    ("lumetwin-batch ins", {"inspect"}),
    ("lumetwin-batch my", {"my film.mov"}),
    ("lumetwin-batch --output fo", {"folder/"}),
]


def script(shell):
    return run(BATCH, "completion", shell, check=True).stdout


class Completions(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.scratch.name)
        (cls.folder / "my film.mov").touch()
        (cls.folder / "folder").mkdir()
        (cls.folder / "fog.mov").touch()
        (cls.folder / "home/functions").mkdir(parents=True)
        for shell, name in (("bash", "bash"), ("fish", "fish"), ("zsh", "functions/_lumetwin-batch")):
            (cls.folder / "home" / name).write_text(script(shell), "utf-8")
        cls.environment = dict(os.environ, HOME=str(cls.folder / "home"), TERM="dumb",
                               PATH=f"{BATCH.parent}:{os.environ['PATH']}")

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def test_every_option_is_completed(self):
        names = re.findall(r"^  (?:-h, )?--([a-z-]+)", run(BATCH, "--help").stdout, re.MULTILINE)
        self.assertGreater(len(names), 25)
        for shell in ("bash", "zsh", "fish"):
            text = script(shell)
            for name in names:
                self.assertIn(f" -l {name}" if shell == "fish" else f"--{name}", text, shell)

    def test_bash(self):
        program = 'source home/bash; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _lumetwin_batch 2>/dev/null; ' \
                  'printf "%s\\n" "${COMPREPLY[@]}"'
        for typed, wanted in CASES + [("lumetwin-batch --direction = sb", {"sbsToSpatial"}),
                                      ("lumetwin-batch --direction =", {"spatialToSBS", "sbsToSpatial"})]:
            words = typed.split(" ")
            result = run("bash", "--norc", "-c", program, "bash", *words, cwd=self.folder, env=self.environment)
            offered = {line for line in result.stdout.splitlines() if line}
            self.assertEqual(offered, {word.rstrip("/") for word in wanted}, typed)

    def test_fish(self):
        for typed, wanted in CASES + [("lumetwin-batch --direction=sb", {"--direction=sbsToSpatial"})]:
            result = run("fish", "--no-config", "-c", f"source home/fish; complete -C '{typed}'", cwd=self.folder,
                         env=self.environment)
            offered = {line.split("\t")[0] for line in result.stdout.splitlines()}
            self.assertEqual(offered, wanted, typed + result.stderr)

    def test_zsh(self):
        """Types the first letters and a tab, and reads what the shell makes of them."""
        for typed, wanted in (("lumetwin-batch --direction=sb", "--direction=sbsToSpatial"),
                              ("lumetwin-batch --on-existing k", "keep-both"),
                              ("lumetwin-batch --half-", "--half-width"),
                              ("lumetwin-batch inspect --j", "--json"), ("lumetwin-batch ins", "inspect"),
                              ("lumetwin-batch my", "my film.mov"), ("lumetwin-batch --output=fo", "--output=folder/")):
            self.assertIn(wanted, self.typed_in_zsh(typed), typed)

    def typed_in_zsh(self, typed):
        terminal, program_side = pty.openpty()
        shell = subprocess.Popen(["zsh", "-f", "-i"], stdin=program_side, stdout=program_side, stderr=program_side,
                                 cwd=self.folder, env=self.environment, start_new_session=True)
        os.close(program_side)
        try:
            os.write(terminal, b"PS1='ready''> '; fpath=($HOME/functions $fpath); autoload -U compinit; compinit -u -D\n")
            self.read_until(terminal, "ready> ")
            os.write(terminal, typed.encode() + b"\t")
            os.write(terminal, b"\x01print -r -- \x05 @@\n")  # puts a command before the line, and ends it
            return self.read_until(terminal, "@@\r\n")
        finally:
            shell.kill()
            shell.wait()
            os.close(terminal)

    def read_until(self, terminal, *marks, seconds=60):
        """Reads until the marks have come one after the other."""
        text, position, end = "", 0, time.monotonic() + seconds
        while marks and time.monotonic() < end:
            found = text.find(marks[0], position)
            if found >= 0:
                position, marks = found + len(marks[0]), marks[1:]
            elif select.select([terminal], [], [], 1)[0]:
                text += os.read(terminal, 4096).decode(errors="replace")
        self.assertFalse(marks, text)
        return text


if __name__ == "__main__":
    main("bash", "zsh", "fish")
