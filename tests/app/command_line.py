# SPDX-License-Identifier: GPL-3.0-or-later
"""The window's program with command lines that open no window: what it prints where, and its exit status."""
import os
import re
import subprocess
import sys
import unittest

PROGRAM = sys.argv.pop(1)
TIMEOUT = 200  # seconds; a longer wait fails


def run(*arguments):
    return subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, encoding="utf-8", timeout=TIMEOUT,
                          stdin=subprocess.DEVNULL, env=dict(os.environ, LC_ALL="C.UTF-8", LANGUAGE=""))


class CommandLine(unittest.TestCase):
    def assert_refused(self, reason, *arguments):
        result = run(*arguments)
        self.assertEqual((result.returncode, result.stdout), (2, ""), result.stderr)
        # Qt may say something of its own before.
        self.assertEqual(result.stderr.splitlines()[-2:], [f"lumetwin: {reason}", "Try 'lumetwin --help'."])

    def test_a_wrong_command_line_ends_with_status_2_and_the_reason(self):
        self.assert_refused('--direction: "up" is neither spatialToSBS nor sbsToSpatial', "--direction=up", "clip.mov")
        self.assert_refused("Missing value after '--direction'.", "--direction")
        self.assert_refused("Unknown option 'unknown'.", "--unknown")
        self.assert_refused("Unknown options: x, y.", "-xy", "clip.mov")

    def test_every_option_that_the_help_names_is_known(self):
        # "--help-all" was named, and opened a window.
        for option in re.findall(r"^ .*?(--[a-z-]+)", run("--help").stdout, re.MULTILINE):
            self.assertNotIn("Unknown", run(option, "--direction=up").stderr, option)
        self.assert_refused("Unknown option 'help-all'.", "--help-all")

    def test_help_and_version_are_no_errors(self):
        for option, words in (("--help", "--direction <DIRECTION>"), ("--version", "lumetwin ")):
            result = run(option)
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertIn(words, result.stdout)

    def test_what_cannot_be_printed_is_an_error(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = subprocess.run([PROGRAM, "--help"], stdin=subprocess.DEVNULL, stdout=full, stderr=subprocess.PIPE,
                                    timeout=TIMEOUT, check=False)
        self.assertEqual(result.returncode, 1)


if __name__ == "__main__":
    unittest.main(verbosity=2)
