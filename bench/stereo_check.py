#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""How often the check of the eyes is right, and how long it takes.

Stereo: the sample media (LUMETWIN_SAMPLES), as they are and with exchanged eyes; drawn scenes of both orders. Ordinary
pictures: drawn ones of many kinds, single eyes of the samples, and crops of the photos in the folders that are named on
the command line. ImageMagick draws and crops.

    cmake --build --preset release --target lumetwin-stereo-check
    python3 bench/stereo_check.py [FOLDER WITH PHOTOS]...
"""
import collections
import json
import os
import pathlib
import subprocess
import sys
import tempfile

from measure import BATCH, BUILD, SOURCE, run

CHECK = BUILD / "lumetwin-stereo-check"
SAMPLES = pathlib.Path(os.environ.get("LUMETWIN_SAMPLES", SOURCE.parent / "shared/samples"))
PHOTOS = {".jpg", ".jpeg", ".png", ".webp"}


def magick(*words):
    run("convert", *words)


def check(files, *options):
    """What the check finds in each file."""
    found = []
    for first in range(0, len(files), 50):
        output = subprocess.run([CHECK, *options, *files[first:first + 50]], check=True, capture_output=True, text=True)
        found += [json.loads(line) for line in output.stdout.splitlines()]
    return found


def draw_ordinary(folder):
    """About 300 pictures that are no pairs of eyes: textures, gradients, text, patterns, shapes."""
    def draw(name, *words):
        magick(*words, "-quality", 90, folder / f"{name}.jpg")
        files.append(folder / f"{name}.jpg")

    files = []
    for seed in range(40):
        draw(f"plasma{seed}", "-seed", seed, "-size", "960x540", "plasma:fractal")
        draw(f"grain{seed}", "-seed", seed, "-size", "960x540", "xc:gray", "-attenuate", 2 + seed / 10, "+noise",
             "gaussian", "-blur", f"0x{1 + seed % 7}", "-normalize")
        shapes = [f"fill hsl({(seed * 47 + i * 83) % 360},70%,{20 + i * 5 % 60}%) "
                  f"circle {(i * 211 + seed * 37) % 960},{(i * 97 + seed * 53) % 540} "
                  f"{(i * 211 + seed * 37) % 960 + 15 + i * 4},{(i * 97 + seed * 53) % 540}" for i in range(30)]
        draw(f"circles{seed}", "-size", "960x540", "gradient:skyblue-green", "-draw", " ".join(shapes))
    patterns = ["bricks", "checkerboard", "crosshatch", "fishscales", "hexagons", "horizontal3", "leftshingle",
                "octagons", "rightshingle", "smallfishscales", "verticalbricks", "verticalsaw", "circles", "gray50"]
    for name in patterns:
        for scale in (300, 1100, 2700):
            draw(f"{name}{scale}", "-size", "500x300", f"pattern:{name}", "-scale", f"{scale}%", "-crop", "960x540+0+0",
                 "+repage")
    words = "it was a dark night and rain fell in torrents except when it was checked by a violent gust of wind".split()
    for seed in range(30):
        text = "\n".join(" ".join(words[(i * (seed + 3) + i * i) % len(words)] for i in range(line, line + 16))
                          for line in range(30))
        draw(f"text{seed}", "-size", "960x540", "xc:white", "-fill", "black", "-pointsize", 12 + seed % 15, "-annotate",
             "+10+30", text)
    for seed in range(40):
        half = folder / "half.png"
        magick("-seed", 100 + seed, "-size", "480x540", "plasma:fractal", "-attenuate", 0.5, "+noise", "gaussian", half)
        draw(f"mirrored{seed}", half, "(", "+clone", "-flop", ")", "+append")  # left and right alike, but mirrored
    for seed in range(40):
        face = (f"fill peachpuff ellipse 480,270 {130 + seed},{170 + seed % 20} 0,360 fill white ellipse 430,230 30,18 0,360 "
                f"ellipse 530,230 30,18 0,360 fill navy circle 430,230 438,230 circle 530,230 538,230 "
                f"fill crimson ellipse 480,350 50,{8 + seed % 15} 0,360 fill sienna rectangle 360,60 600,{110 + seed}")
        draw(f"face{seed}", "-seed", seed, "-size", "960x540", "plasma:gray20-gray70", "-draw", face)
    return files


def crops(photos, folder):
    files = []
    for number, photo in enumerate(photos):
        shapes = {"whole": [], "panorama": ["-gravity", "south", "-crop", "100%x35%+0+0"],
                  "tall": ["-gravity", "west", "-crop", "32%x100%+0+0"],
                  "part": ["-gravity", "northwest", "-crop", "60%x60%+0+0"]}
        for shape, words in shapes.items():
            target = folder / f"photo{number}-{shape}.jpg"
            done = subprocess.run(["convert", f"{photo}[0]", "-flatten", "-resize", "1920x1920>", *words, "+repage",
                                   "-quality", "90", target], capture_output=True)
            if done.returncode == 0 and target.exists():
                files.append(target)
    return files


def single_eyes(folder):
    files = []
    for photo in sorted((SAMPLES / "sbs-image").glob("*.jpg")):
        for side, gravity in (("left", "west"), ("right", "east")):
            magick(photo, "-gravity", gravity, "-crop", "50%x100%+0+0", "+repage", folder / f"{photo.stem}-{side}.jpg")
            files.append(folder / f"{photo.stem}-{side}.jpg")
    return files


def stereo_samples(folder):
    """Side-by-side files: the samples, and the spatial ones converted."""
    files = sorted((SAMPLES / "sbs-image").glob("*.jpg")) + sorted((SAMPLES / "sbs-video").glob("*.mp4"))
    spatial = sorted((SAMPLES / "spatial-photo").glob("*.heic")) + sorted((SAMPLES / "spatial-video").glob("*.mov"))
    for file in spatial:
        run(BATCH, "--direction", "spatialToSBS", "--output", folder, file)
    parts = SAMPLES / "other-layouts/Panasonic-DMC-GX8-{}.jpg"
    magick(str(parts).format("left"), str(parts).format("right"), "+append", "-quality", 92, folder / "two-pictures.jpg")
    return files + sorted(folder.glob("*_sbs.*")) + [folder / "two-pictures.jpg"]


def share(part, whole):
    return f"{part} of {whole}"


def times(found):
    seconds = sorted(one["seconds"] for one in found if "seconds" in one)
    return f"median {seconds[len(seconds) // 2]:.3f} s, longest {seconds[-1]:.3f} s" if seconds else "none"


def main():
    table = []
    with tempfile.TemporaryDirectory(prefix="lumetwin-stereo-") as name:
        folder = pathlib.Path(name)
        ordinary = draw_ordinary(folder)
        drawn = len(ordinary)
        photos = [file for place in sys.argv[1:] for file in sorted(pathlib.Path(place).rglob("*"))
                  if file.suffix.lower() in PHOTOS and file.is_file() and file.stat().st_size > 40_000]
        ordinary += crops(photos, folder)
        if SAMPLES.is_dir():
            ordinary += single_eyes(folder)
        found = check(ordinary)
        seen = [one for one in found if one.get("seen")]
        table.append((f"ordinary pictures ({drawn} drawn, {len(ordinary) - drawn} photos and crops) seen as two eyes",
                      share(len(seen), len(found)), ", ".join(pathlib.Path(one["file"]).stem for one in seen)))
        table.append(("of them said to be swapped", share(sum(one.get("swapped", False) for one in found), len(found)), ""))
        table.append(("time of an ordinary picture", times(found), ""))
        if SAMPLES.is_dir():
            files = stereo_samples(folder)
            right = check(files)
            wrong = check(files, "--swap")
            named = lambda found, test: ", ".join(pathlib.Path(one["file"]).stem for one in found if test(one))
            missed = lambda one: one.get("seen") != "sideBySide"
            table.append(("side-by-side samples seen as side by side", share(sum(not missed(one) for one in right), len(right)),
                          named(right, missed)))
            table.append(("samples in order said to be swapped", share(sum(one["swapped"] for one in right), len(right)),
                          named(right, lambda one: one["swapped"])))
            table.append(("exchanged samples said to be swapped", share(sum(one["swapped"] for one in wrong), len(wrong)),
                          "not: " + named(wrong, lambda one: not one["swapped"])))
            table.append(("time of a side-by-side photo", times([o for o in right if not o["file"].endswith(".mp4")]), ""))
            table.append(("time of a side-by-side film", times([o for o in right if o["file"].endswith(".mp4")]), ""))
            above = check([SAMPLES / "other-layouts/walrus-360.top-bottom.jpg"])
            table.append(("the over-under sample seen as over-under", share(sum(o.get("seen") == "overUnder" for o in above),
                                                                              len(above)), ""))
    scenes = subprocess.run([CHECK, "--scenes"], check=True, capture_output=True, text=True).stdout
    kinds = collections.defaultdict(list)
    for line in scenes.splitlines():
        kinds[json.loads(line)["scene"]].append(json.loads(line))
    for kind, found in kinds.items():
        seen = sum(one["seen"] == "sideBySide" for one in found)
        swapped = sum(one["swapped"] for one in found)
        table.append((f"drawn scenes with {kind}: seen as two eyes / said to be swapped",
                      f"{seen} / {swapped} of {len(found)}", ""))
    print("| | measured | which |\n|---|---|---|")
    for row in table:
        print("| " + " | ".join(row) + " |")


if __name__ == "__main__":
    main()
