#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Proves the arrows between the rooms (see ARCHITECTURE.md) and the licence line of every source file.

check_house.py SOURCE_DIR   lists what breaks a rule; the exit status is 1 when there is something
check_house.py --self-test  plants one breach of each rule in a scratch tree and expects to find it
"""
import pathlib
import re
import sys
import tempfile

CODE = {".h", ".cpp"}
SCRIPTS = {".sh", ".py", ".cmake"}
HOUSE = ("model", "media", "engine", "tools", "ui", "app")
CODEC_LIBRARIES = re.compile(
    r"^(libav\w+/|libsw\w+/|x26[45]|libheif/|zimg|rubberband/|jpeglib\.h|jerror\.h|turbojpeg|png\w*\.h|tiff\w*\.h|lcms2)")
QT = re.compile(r"^(Q[A-Z]\w*|Qt\w*/)")
STANDARD = re.compile(r"^[a-z0-9_]+$")
SPDX = "SPDX-License-Identifier: GPL-3.0-or-later"

# room: (rooms whose headers it may name, codec libraries allowed, Qt allowed)
MAY_INCLUDE = {
    "model": ({"model"}, False, False),
    "media": ({"media"}, True, False),
    "engine": ({"engine", "media", "model"}, False, False),
    "tools": ({"tools", "engine", "model"}, False, False),
    "ui": ({"ui", "engine", "model"}, False, True),
    "app": ({"app", "ui", "engine", "model"}, False, True),
}


def includes(file):
    """(line number, header, quoted) of each include."""
    for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
        match = re.match(r'\s*#\s*include\s*(["<])([^">]+)[">]', line)
        if match:
            yield number, match.group(2), match.group(1) == '"'


def house_path(root, file, header):
    """A quoted header as a path from the root, wherever it was named from."""
    beside = file.parent / header
    if "/" not in header and beside.exists():
        return beside.relative_to(root)
    return pathlib.PurePosixPath(header)


def include_breach(root, file, header, quoted):
    """Why the file may not include the header, or None."""
    place = file.relative_to(root)
    room = place.parts[0]
    rooms, codecs, qt = MAY_INCLUDE[room]
    path = house_path(root, file, header) if quoted else pathlib.PurePosixPath(header)
    if quoted and path.parts[0] in HOUSE:
        if path.parts[0] not in rooms:
            return f"{room}/ must not know {path.parts[0]}/"
        if path.parts[0] == "media" and room != "media" and len(path.parts) > 2:
            return f"{room}/ may use only the headers directly in media/"
        return None
    if room == "model" and not (not quoted and STANDARD.match(header)):
        return "model/ knows only the standard library"
    if CODEC_LIBRARIES.match(header):
        if not codecs:
            return f"{room}/ must not show a media library"
        if len(place.parts) == 2 and place.suffix == ".h":
            return "the headers directly in media/ must not show a media library"
    if QT.match(header) and not qt:
        return f"{room}/ must not know Qt"
    return None


def source_files(root):
    for file in sorted(root.rglob("*")):
        parts = file.relative_to(root).parts
        if file.is_file() and not any(part.startswith(("build", ".git")) for part in parts[:1]):
            yield file


def is_script(file):
    if file.suffix in SCRIPTS or file.name == "CMakeLists.txt":
        return True
    return not file.suffix and file.open("rb").read(2) == b"#!"


def breaches(root):
    for file in source_files(root):
        place = file.relative_to(root)
        if file.suffix in CODE or is_script(file):
            first_lines = file.read_text(encoding="utf-8").splitlines()[:2]
            wanted = ("// " if file.suffix in CODE else "# ") + SPDX
            if wanted not in (first_lines[:1] if file.suffix in CODE else first_lines):
                yield f"{place}:1: the licence line is missing: {wanted}"
        if file.suffix in CODE and place.parts[0] in MAY_INCLUDE:
            for number, header, quoted in includes(file):
                reason = include_breach(root, file, header, quoted)
                if reason:
                    yield f"{place}:{number}: includes {header}: {reason}"


PLANTED = [
    ("model/A.h", "#include <QString>"),
    ("model/A.h", "#include <unistd.h>"),
    ("model/A.h", '#include "engine/A.h"'),
    ("media/A.cpp", '#include "model/A.h"'),
    ("media/A.cpp", '#include "engine/A.h"'),
    ("media/ffmpeg/A.cpp", "#include <QtCore/QString>"),
    ("media/A.h", "#include <libavcodec/avcodec.h>"),
    ("engine/A.cpp", "#include <libavutil/frame.h>"),
    ("engine/A.cpp", "#include <libswscale/swscale.h>"),
    ("engine/A.cpp", "  #  include <x265.h>"),
    ("engine/A.h", "#include <libheif/heif.h>"),
    ("engine/A.cpp", "#include <zimg.h>"),
    ("engine/A.cpp", "#include <jpeglib.h>"),
    ("engine/A.cpp", "#include <png.h>"),
    ("engine/A.cpp", "#include <tiffio.h>"),
    ("engine/A.cpp", "#include <lcms2.h>"),
    ("engine/A.cpp", "#include <QFile>"),
    ("engine/A.cpp", '#include "ui/A.h"'),
    ("engine/A.cpp", '#include "media/ffmpeg/A.h"'),
    ("tools/A.cpp", '#include "ui/A.h"'),
    ("ui/A.cpp", "#include <libavformat/avformat.h>"),
    ("ui/A.cpp", '#include "media/A.h"'),
    ("ui/A.cpp", '#include "app/A.h"'),
    ("app/A.cpp", '#include "tools/A.h"'),
]
ALLOWED = [
    ("model/B.h", "#include <cstdint>"),
    ("media/ffmpeg/B.cpp", "extern \"C\" {\n#include <libavcodec/avcodec.h>\n}"),
    ("engine/B.cpp", '#include "media/A.h"'),
    ("engine/B.cpp", "#include <fmt/printf.h>"),
    ("ui/B.cpp", "#include <QWidget>"),
    ("app/B.cpp", '#include "ui/A.h"'),
]


def found_in_tree(place, text):
    with tempfile.TemporaryDirectory() as scratch:
        file = pathlib.Path(scratch, place)
        file.parent.mkdir(parents=True)
        file.write_text(text)
        return list(breaches(pathlib.Path(scratch)))


def self_test():
    failures = []
    for place, line in PLANTED:
        if len(found_in_tree(place, f"// {SPDX}\n{line}\n")) != 1:
            failures.append(f"not found in {place}: {line}")
    for place, line in ALLOWED:
        failures += found_in_tree(place, f"// {SPDX}\n{line}\n")
    for place in ("media/A.cpp", "tests/x/CMakeLists.txt", "scripts/a.sh"):
        if not found_in_tree(place, "int x;\n"):
            failures.append(f"missing licence line not found in {place}")
    return failures


if __name__ == "__main__":
    problems = self_test() if sys.argv[1] == "--self-test" else list(breaches(pathlib.Path(sys.argv[1])))
    print("\n".join(problems) or "nothing to mend")
    sys.exit(1 if problems else 0)
