# SPDX-License-Identifier: GPL-3.0-or-later
"""Shared by the packaging tests: paths, the texts of the window, and functions that run tools."""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

SOURCE = pathlib.Path(os.environ["LUMETWIN_SOURCE"])
BUILD = pathlib.Path(os.environ["LUMETWIN_BUILD"])
PROGRAM = pathlib.Path(os.environ["LUMETWIN_PROGRAM"])
CMAKE = pathlib.Path(os.environ["LUMETWIN_CMAKE"])
ID = "example.lumetwin.Lumetwin"
METAINFO = BUILD / "resources" / f"{ID}.metainfo.xml"
DESKTOP = SOURCE / "resources/desktop" / f"{ID}.desktop"

HELP = SOURCE / "resources/help"
# The installed help pages.
HELP_FILES = {f"share/lumetwin/help/{page.relative_to(HELP)}" for page in HELP.rglob("*") if page.is_file()}


def read(path):
    return (SOURCE / path).read_text(encoding="utf-8")


def run(*command, **options):
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, encoding="utf-8",
                          stdin=subprocess.DEVNULL, **options)


def tool_output(*command, **options):
    """The output of a checking tool, with its exit status when it failed. Empty when all is well."""
    result = run(*command, **options)
    output = (result.stdout + result.stderr).strip()
    return output if result.returncode == 0 else f"{output}\nexit status {result.returncode}"


def desktop_entry():
    """The keys and values of the desktop entry's only group."""
    pairs = (line.split("=", 1) for line in DESKTOP.read_text(encoding="utf-8").splitlines() if "=" in line)
    return dict(pairs)


def texts(language):
    """The window's texts by key. The English table has its texts in msgid, the others in msgstr."""
    result = {}
    for entry in read(f"resources/text/{language}.po").split("\n\n"):
        fields = {}
        for name, value in re.findall(r'^(msgctxt|msgid|msgstr) ((?:".*"\n?)+)', entry, re.MULTILINE):
            parts = re.findall(r'"(.*)"', value)
            fields[name] = "".join(parts).replace("\\n", "\n").replace('\\"', '"')
        if "msgctxt" in fields:
            result[fields["msgctxt"]] = fields["msgstr"] or fields["msgid"]
    return result


def main(*tools):
    """Runs the unit tests of the calling program, or skips them when a tool is not installed."""
    missing = [tool for tool in tools if not shutil.which(tool)]
    if missing:
        print("skipped, not installed:", *missing)
        sys.exit(77)
    unittest.main(verbosity=2)
