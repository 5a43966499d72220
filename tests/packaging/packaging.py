# SPDX-License-Identifier: GPL-3.0-or-later
"""What the tests of this room share: places, the texts of the window, and running tools."""
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
# Where an installation puts the help pages.
HELP_FILES = {f"share/lumetwin/help/{page.relative_to(HELP)}" for page in HELP.rglob("*") if page.is_file()}


def read(path):
    return (SOURCE / path).read_text(encoding="utf-8")


def run(*command, **options):
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, encoding="utf-8",
                          stdin=subprocess.DEVNULL, **options)


def complaints(*command, **options):
    """All that a checking tool says, with its status where it failed."""
    result = run(*command, **options)
    said = (result.stdout + result.stderr).strip()
    return said if result.returncode == 0 else f"{said}\nexit status {result.returncode}"


def desktop_entry():
    """Keys of the desktop entry's only group."""
    pairs = (line.split("=", 1) for line in DESKTOP.read_text(encoding="utf-8").splitlines() if "=" in line)
    return dict(pairs)


def texts(language):
    """The window's texts by key. The English table has its wording in msgid, others in msgstr."""
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
    """Runs the unit tests of the calling program; skips them where a tool is not installed."""
    missing = [tool for tool in tools if not shutil.which(tool)]
    if missing:
        print("skipped, not installed:", *missing)
        sys.exit(77)
    unittest.main(verbosity=2)
