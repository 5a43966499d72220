#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks the dependencies between the rooms (see ARCHITECTURE.md) and the licence line of every source file.

check_house.py SOURCE_DIR   lists violations; the exit status is 1 if there are any
check_house.py --self-test  creates a violation of each rule in a temporary tree and expects to find it
"""
import pathlib
import re
import sys
import tempfile

CODE = {".h", ".cpp"}
SCRIPTS = {".sh", ".py", ".cmake"}
HOUSE = ("model", "media", "engine", "worker", "tools", "ui", "app")
CODEC_LIBRARIES = re.compile(
    r"^(libav\w+/|libsw\w+/|x26[45]|libheif/|zimg|rubberband/|jpeglib\.h|jerror\.h|turbojpeg|png\w*\.h|tiff\w*\.h|lcms2|pugixml)")
QT = re.compile(r"^(Q[A-Z]\w*|Qt\w*/)")
STANDARD = re.compile(r"^[a-z0-9_]+$")
SPDX = "SPDX-License-Identifier: GPL-3.0-or-later"

# room: (rooms whose headers it may name, Qt allowed)
MAY_INCLUDE = {
    "model": ({"model"}, False),
    "media": ({"media"}, False),
    "engine": ({"engine", "media", "model"}, False),
    "worker": ({"worker", "engine", "media", "model"}, False),
    "tools": ({"tools", "worker", "engine", "model"}, False),
    "ui": ({"ui", "worker", "engine", "model"}, True),
    "app": ({"app", "ui", "worker", "engine", "model"}, True),
}

# subject of media/: (subjects whose headers it may name beside its own, the libraries it may name)
SUBJECTS = {
    "bmff": (set(), None),
    "hevc": (set(), None),
    "samples": (set(), None),
    "zimg": (set(), r"zimg"),
    "x265": ({"hevc"}, r"x265"),
    "colour": (set(), r"lcms2"),
    "metadata": ({"colour"}, r"pugixml"),
    "ffmpeg": ({"bmff", "hevc", "x265"}, r"libav\w+/|libsw\w+/"),
    "rubberband": (set(), r"rubberband/"),
    "jpeg": ({"bmff", "colour", "metadata", "samples"}, r"jpeglib\.h|jerror\.h"),
    "png": ({"bmff", "colour", "metadata", "samples"}, r"png\w*\.h"),
    "tiff": ({"colour", "metadata", "samples"}, r"tiff\w*\.h"),
    "heif": ({"bmff", "colour", "ffmpeg", "hevc", "metadata", "samples", "x265"}, r"libheif/|libav\w+/|libsw\w+/"),
}


def includes(file):
    """(line number, header, quoted) of each include."""
    for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
        match = re.match(r'\s*#\s*include\s*(["<])([^">]+)[">]', line)
        if match:
            yield number, match.group(2), match.group(1) == '"'


def house_path(root, file, header):
    """A quoted header as a path from the root of the source."""
    beside = file.parent / header
    if "/" not in header and beside.exists():
        return beside.relative_to(root)
    return pathlib.PurePosixPath(header)


def media_breach(place, path):
    """Why a file of media/ may not include a header of media/, or None."""
    if len(path.parts) == 2:
        return None  # the root's headers are everybody's
    target = path.parts[1]
    if len(place.parts) == 2:  # the root's sources choose among the subjects, its headers do not know them
        return "the headers directly in media/ must not know its subjects" if place.suffix == ".h" else None
    subject = place.parts[1]
    if target != subject and target not in SUBJECTS.get(subject, (set(), None))[0]:
        return f"media/{subject}/ must not know media/{target}/"
    return None


def library_breach(place, header):
    """Why a file may not include a header of a media library, or None."""
    room = place.parts[0]
    if room != "media":
        return f"{room}/ must not show a media library"
    if len(place.parts) == 2:
        return "what lies directly in media/ must not show a media library"
    library = SUBJECTS.get(place.parts[1], (set(), None))[1]
    if not library or not re.match(library, header):
        return f"media/{place.parts[1]}/ has nothing to do with this library"
    return None


def include_breach(root, file, header, quoted):
    """Why the file may not include the header, or None."""
    place = file.relative_to(root)
    room = place.parts[0]
    rooms, qt = MAY_INCLUDE[room]
    path = house_path(root, file, header) if quoted else pathlib.PurePosixPath(header)
    if quoted and path.parts[0] in HOUSE:
        if path.parts[0] not in rooms:
            return f"{room}/ must not know {path.parts[0]}/"
        if path.parts[0] == "media" and room == "media":
            return media_breach(place, path)
        if path.parts[0] == "media" and len(path.parts) > 2:
            return f"{room}/ may use only the headers directly in media/"
        return None
    if room == "model" and not (not quoted and STANDARD.match(header)):
        return "model/ knows only the standard library"
    if CODEC_LIBRARIES.match(header):
        return library_breach(place, header)
    if QT.match(header) and not qt:
        return f"{room}/ must not know Qt"
    return None


def reached(root, file, seen):
    """(header, by way of) of all headers of the house that the file includes, directly or through others."""
    for _, header, quoted in includes(file):
        path = root / house_path(root, file, header)
        if quoted and path.exists() and path not in seen:
            seen.add(path)
            yield path, file
            yield from reached(root, path, seen)


def roundabout_breaches(root, file):
    """Rooms that the file may not know and reaches through headers of others."""
    place = file.relative_to(root)
    rooms, _ = MAY_INCLUDE[place.parts[0]]
    for path, by in reached(root, file, set()):
        header = path.relative_to(root)
        if by != file and header.parts[0] in HOUSE and header.parts[0] not in rooms:
            yield f"{place}:1: reaches {header} through {by.relative_to(root)}: {place.parts[0]}/ must not know {header.parts[0]}/"


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
            yield from roundabout_breaches(root, file)


PLANTED = [
    ("model/A.h", "#include <QString>"),
    ("model/A.h", "#include <unistd.h>"),
    ("model/A.h", '#include "engine/A.h"'),
    ("media/A.cpp", '#include "model/A.h"'),
    ("media/A.cpp", '#include "engine/A.h"'),
    ("media/A.h", '#include "media/bmff/A.h"'),
    ("media/ffmpeg/A.cpp", "#include <QtCore/QString>"),
    ("media/ffmpeg/A.cpp", '#include "media/heif/A.h"'),
    ("media/bmff/A.cpp", '#include "media/ffmpeg/A.h"'),
    ("media/jpeg/A.cpp", '#include "media/png/A.h"'),
    ("media/jpeg/A.cpp", "#include <png.h>"),
    ("media/ffmpeg/A.cpp", "#include <x265.h>"),
    ("media/A.h", "#include <libavcodec/avcodec.h>"),
    ("media/A.cpp", "#include <libavcodec/avcodec.h>"),
    ("engine/A.cpp", "#include <libavutil/frame.h>"),
    ("engine/A.cpp", "#include <libswscale/swscale.h>"),
    ("engine/A.cpp", "  #  include <x265.h>"),
    ("engine/A.h", "#include <libheif/heif.h>"),
    ("engine/A.cpp", "#include <zimg.h>"),
    ("engine/A.cpp", "#include <jpeglib.h>"),
    ("engine/A.cpp", "#include <png.h>"),
    ("engine/A.cpp", "#include <tiffio.h>"),
    ("engine/A.cpp", "#include <lcms2.h>"),
    ("engine/A.cpp", "#include <pugixml.hpp>"),
    ("engine/A.cpp", "#include <QFile>"),
    ("engine/A.cpp", '#include "ui/A.h"'),
    ("engine/A.cpp", '#include "worker/A.h"'),
    ("engine/A.cpp", '#include "media/ffmpeg/A.h"'),
    ("worker/A.cpp", "#include <QFile>"),
    ("worker/A.cpp", '#include "ui/A.h"'),
    ("tools/A.cpp", '#include "ui/A.h"'),
    ("ui/A.cpp", "#include <libavformat/avformat.h>"),
    ("ui/A.cpp", '#include "media/A.h"'),
    ("ui/A.cpp", '#include "app/A.h"'),
    ("app/A.cpp", '#include "tools/A.h"'),
]
# A header that another room may include, and what it brings along.
ROUNDABOUT = {
    "engine/Way.h": '#include "media/Picture.h"\n',
    "media/Picture.h": "\n",
    "ui/A.cpp": '#include "engine/Way.h"\n',
}
ALLOWED = [
    ("model/B.h", "#include <cstdint>"),
    ("media/ffmpeg/B.cpp", "extern \"C\" {\n#include <libavcodec/avcodec.h>\n}"),
    ("media/B.cpp", '#include "media/heif/B.h"'),
    ("media/heif/B.cpp", '#include "media/bmff/B.h"'),
    ("engine/B.cpp", '#include "media/A.h"'),
    ("engine/B.cpp", "#include <fmt/printf.h>"),
    ("worker/B.cpp", '#include "engine/A.h"'),
    ("ui/B.cpp", "#include <QWidget>"),
    ("ui/B.cpp", '#include "worker/A.h"'),
    ("app/B.cpp", '#include "ui/A.h"'),
]


def found_in_trees(texts):
    with tempfile.TemporaryDirectory() as scratch:
        for place, text in texts.items():
            file = pathlib.Path(scratch, place)
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(text)
        return list(breaches(pathlib.Path(scratch)))


def found_in_tree(place, text):
    return found_in_trees({place: text})


def self_test():
    failures = []
    for place, line in PLANTED:
        if len(found_in_tree(place, f"// {SPDX}\n{line}\n")) != 1:
            failures.append(f"not found in {place}: {line}")
    if len(found_in_trees({place: f"// {SPDX}\n{text}" for place, text in ROUNDABOUT.items()})) != 1:
        failures.append("what is reached through other headers is not found")
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
