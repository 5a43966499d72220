# SPDX-License-Identifier: GPL-3.0-or-later
"""Places that fill up, are read-only, vanish, lose a file, or are slow: the batch goes on and names file and cause.
Needs root, for small file systems of its own."""
import pathlib
import random
import shutil
import subprocess
import tempfile
import time

from reliability import failing, media


def mounted(folder, options):
    folder.mkdir(exist_ok=True)
    subprocess.run(["mount", "-t", "tmpfs", "-o", options, "tmpfs", str(folder)], check=True)
    return folder


def unmounted(folder):
    subprocess.run(["umount", "-l", str(folder)], check=False, capture_output=True)


def batch(direction, inputs, output, report, during=None, environment=None):
    """Runs a batch over a folder, and does something during it. Returns its results by name, or what went wrong."""
    report.unlink(missing_ok=True)
    with subprocess.Popen([str(media.BATCH), "--direction", direction, "--output", str(output), "--report", str(report),
                           str(inputs)], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                          env=environment or media.ENVIRONMENT, text=True) as process:
        if during:
            during()
        try:
            _, errors = process.communicate(timeout=120)
        except subprocess.TimeoutExpired:
            process.kill()
            return "did not end within two minutes"
    if process.returncode not in (0, 1):
        return f"ended with {process.returncode}: {errors.strip()}"
    return {pathlib.Path(entry["input"]).name: entry for entry in media.results(report)}


def expect(found, failed, words, converted):
    """What is wrong with results: some files must have failed with one of the words, others must be converted."""
    if isinstance(found, str):
        return found
    for name in failed:
        reason = found[name].get("reason", "")
        if found[name]["state"] != "failed" or not any(word in reason for word in words):
            return f"{name}: {found[name]['state']}, \"{reason}\""
    for name in converted:
        if not found[name]["state"].startswith("converted"):
            return f"{name}: {found[name]['state']}, \"{found[name].get('reason')}\""
    return None


def later(seconds, action):
    """Something to do during a batch."""
    def wait_and_act():
        time.sleep(seconds)
        action()
    return wait_and_act


def inputs_of(folder, cases):
    inputs = folder / "in"
    inputs.mkdir()
    for name, case in (("a film.mp4", cases[0]), ("b photo.jpg", cases[1]), ("c photo.jpg", cases[1])):
        shutil.copy(case.source, inputs / name)
    return inputs


def full(folder, inputs):
    """Room for the photos, not for the film."""
    big = folder / "big"
    big.mkdir()
    noise = folder / "noise.yuv"
    noise.write_bytes(random.Random(1).randbytes(1024 * 288 * 3 // 2 * 45))
    media.ffmpeg("-f", "rawvideo", "-pixel_format", "yuv420p", "-video_size", "1024x288", "-framerate", "15", "-i", noise,
                 "-c:v", "libx264", "-preset", "ultrafast", "-crf", "20", big / "a film.mp4")
    for name in ("b photo.jpg", "c photo.jpg"):
        shutil.copy(inputs / name, big / name)
    place = mounted(folder / "full", "size=700k")
    found = batch("sbsToSpatial", big, place, folder / "report.json")
    fault = expect(found, ["a film.mp4"], ["No space left", "not enough space", "free"], [])
    unmounted(place)
    return fault


def read_only(folder, inputs):
    place = mounted(folder / "read-only", "ro")
    found = batch("sbsToSpatial", inputs, place, folder / "report.json")
    unmounted(place)
    return expect(found, ["a film.mp4", "b photo.jpg"], ["Read-only file system"], [])


def unplugged(folder, inputs):
    """The output's file system goes away during the film."""
    place = mounted(folder / "stick", "size=64m")
    output = place / "out"
    output.mkdir()
    found = batch("sbsToSpatial", inputs, output, folder / "report.json", later(0.15, lambda: unmounted(place)))
    return expect(found, ["c photo.jpg"], ["does not exist", "No such file"], [])


def vanished_output(folder, inputs):
    output = folder / "vanishing"
    output.mkdir()
    found = batch("sbsToSpatial", inputs, output, folder / "report.json", later(0.15, lambda: shutil.rmtree(output)))
    return expect(found, ["c photo.jpg"], ["does not exist", "No such file"], [])


def vanished_input(folder, inputs):
    output = folder / "out-of-vanished"
    output.mkdir()
    found = batch("sbsToSpatial", inputs, output, folder / "report.json", later(0.05, (inputs / "b photo.jpg").unlink))
    shutil.copy(inputs / "c photo.jpg", inputs / "b photo.jpg")
    return expect(found, ["b photo.jpg"], ["No such file"], ["a film.mp4", "c photo.jpg"])


def slow(folder, inputs):
    """Each read takes 20 ms longer."""
    output = folder / "slow"
    output.mkdir()
    environment = dict(media.ENVIRONMENT, LD_PRELOAD=str(failing.build(folder)), LUMETWIN_SLOW="20000")
    found = batch("sbsToSpatial", inputs, output, folder / "report.json", environment=environment)
    return expect(found, [], [], ["a film.mp4", "b photo.jpg", "c photo.jpg"])


def stage(_first, _count, _options):
    """Yields for each place what is wrong, or None."""
    with tempfile.TemporaryDirectory(prefix="lumetwin-places-") as name:
        folder = pathlib.Path(name)
        inputs = inputs_of(folder, media.cases(folder))
        for place in (full, read_only, unplugged, vanished_output, vanished_input, slow):
            fault = place(folder, inputs)
            yield 1, fault and f"{place.__name__}: {fault}"
