# SPDX-License-Identifier: GPL-3.0-or-later
"""The Flatpak manifest: few permissions, the same libraries as the media stack, and pinned sources."""
import re
import unittest

import packaging

try:
    import yaml
except ImportError:
    print("skipped, not installed: python3-yaml")
    raise SystemExit(77)


def first_match(pattern, path):
    return re.search(pattern, packaging.read(path), re.MULTILINE)[1]


class FlatpakManifest(unittest.TestCase):
    def setUp(self):
        self.manifest = yaml.safe_load(packaging.read("packaging/example.lumetwin.Lumetwin.yml"))
        self.modules = {module["name"]: module for module in self.manifest["modules"]}

    def options(self, module):
        return self.modules[module]["config-opts"]

    def test_permissions_are_exactly_these(self):
        self.assertEqual(set(self.manifest["finish-args"]), {
            "--socket=wayland", "--socket=fallback-x11", "--share=ipc", "--filesystem=xdg-download",
            "--talk-name=com.canonical.Unity"})

    def test_every_source_is_pinned(self):
        for name, module in self.modules.items():
            kinds = [source["type"] for source in module["sources"] if source["type"] not in ("shell", "patch")]
            self.assertIn(kinds, [["dir"]] if name == "lumetwin" else [["archive"], ["git"]], name)
            for source in module["sources"]:
                if source["type"] in ("archive", "git"):
                    self.assertRegex(source["url"], "^https://")
                if source["type"] == "archive":
                    self.assertRegex(source["sha256"], "^[0-9a-f]{64}$")
                if source["type"] == "git":
                    self.assertRegex(source.get("commit") or source["tag"], r"^([0-9a-f]{40}|(release-|v)?\d+(\.\d+)+)$", name)

    def test_each_library_comes_before_its_users(self):
        order = list(self.modules)
        for library, user in (("nasm", "x264"), ("nasm", "x265-ten"), ("x265-ten", "x265"), ("nasm", "dav1d"), ("x264", "ffmpeg"), ("x265", "ffmpeg"),
                              ("dav1d", "ffmpeg"), ("ffmpeg", "libheif"), ("zimg", "lumetwin"), ("fmt", "lumetwin"),
                              ("rubberband", "lumetwin"), ("nlohmann-json", "lumetwin"), ("pugixml", "lumetwin"),
                              ("utfcpp", "lumetwin"), ("libseccomp", "lumetwin")):
            self.assertLess(order.index(library), order.index(user))
        self.assertEqual(order[-1], "lumetwin")

    def test_spatial_video_can_be_written(self):
        for depth in ("x265-ten", "x265"):
            self.assertIn("-DENABLE_MULTIVIEW=ON", self.options(depth))
        self.assertIn("-DLUMETWIN_SYSTEM_MEDIA=ON", self.options("lumetwin"))

    def test_x265_is_mended_as_in_the_media_stack(self):
        folder = packaging.SOURCE / "scripts/patches"
        patches = [f"../scripts/patches/{patch.name}" for patch in sorted(folder.glob("x265-*.patch"))]
        self.assertTrue(patches)
        for depth in ("x265-ten", "x265"):
            paths = [path for source in self.modules[depth]["sources"] for path in source.get("paths", [])]
            self.assertEqual(paths, patches)

    def test_x265_has_both_depths_as_in_the_media_stack(self):
        for option in ("-DHIGH_BIT_DEPTH=ON", "-DEXPORT_C_API=OFF"):
            self.assertIn(option, self.options("x265-ten"))
            self.assertIn(option, packaging.read("scripts/stack.sh"))
        self.assertIn("-DLINKED_10BIT=ON", self.options("x265"))
        self.assertIn("-DLINKED_10BIT=ON", packaging.read("scripts/stack.sh"))

    def test_ffmpeg_reads_what_the_media_stack_reads(self):
        for kind in ("decoder", "demuxer", "parser"):
            wanted = first_match(rf"^ffmpeg_{kind}s=(\S+)$", "scripts/stack.sh")
            self.assertIn(f"--enable-{kind}={wanted}", self.options("ffmpeg"))

    def test_ffmpeg_has_the_encoders_that_lumetwin_uses(self):
        libraries = set(re.findall(r'"(libx26\d)"', packaging.read("media/ffmpeg/VideoEncoder.cpp")))
        self.assertEqual(libraries, {"libx264", "libx265"})
        for library in libraries:
            self.assertIn(f"--enable-{library}", self.options("ffmpeg"))
        self.assertIn("--enable-encoder=libx264,libx265,aac", self.options("ffmpeg"))
        self.assertIn("--enable-muxer=mov,mp4,matroska", self.options("ffmpeg"))

    def test_libheif_decodes_only_through_ffmpeg(self):
        ours = {option for option in self.options("libheif") if option.startswith("-DWITH_")}
        stack = set(re.findall(r"-DWITH_\w+=\w+", packaging.read("scripts/stack.sh")))
        self.assertEqual(ours - {"-DWITH_EXAMPLES=OFF"}, stack - {"-DWITH_EXAMPLES=ON"})


if __name__ == "__main__":
    packaging.main()
