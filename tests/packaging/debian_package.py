# SPDX-License-Identifier: GPL-3.0-or-later
"""The .deb that cpack makes: its control data, and its documents as the Debian policy requires them."""
import gzip
import pathlib
import re
import tempfile
import unittest

from packaging import BUILD, CMAKE, HELP_FILES, ID, main, read, run


class DebianPackage(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        folder = pathlib.Path(cls.scratch.name)
        # No compression: it would take as long as everything else together.
        result = run(CMAKE.with_name("cpack"), "-G", "DEB", "-B", folder, "-D", "CPACK_DEBIAN_COMPRESSION_TYPE=none",
                     "--config", BUILD / "CPackConfig.cmake")
        packages = list(folder.glob("*.deb"))
        if result.returncode or len(packages) != 1:
            raise RuntimeError(result.stdout + result.stderr)
        cls.package = packages[0]
        cls.tree = folder / "tree"
        run("dpkg-deb", "-x", cls.package, cls.tree, check=True)

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def field(self, name):
        return run("dpkg-deb", "-f", self.package, name).stdout.strip()

    def unpacked(self, path):
        return gzip.decompress((self.tree / path).read_bytes()).decode()

    def test_version_agrees_with_project_and_changelog(self):
        version = re.search(r"VERSION (\S+) LANGUAGES", read("CMakeLists.txt"))[1]
        self.assertEqual(self.field("Version"), f"{version}-1")
        self.assertTrue(read("packaging/debian/changelog").startswith(f"lumetwin ({version}-1) "))
        self.assertEqual(self.package.name, f"lumetwin_{version}-1_{self.field('Architecture')}.deb")

    def test_dependencies_are_computed(self):
        depends = self.field("Depends")
        for library in ("libc6", "libqt6widgets6", "libqt6svg6", "libx264-", "libdav1d", "libzimg", "libtiff"):
            self.assertIn(library, depends)
        # Linked statically, from the private stack.
        for library in ("libavcodec", "libx265", "libheif"):
            self.assertNotIn(library, depends)

    def test_packages_loaded_at_run_time_are_dependencies(self):
        for package in ("qt6-qpa-plugins", "qt6-translations-l10n", "hicolor-icon-theme"):
            self.assertIn(package, self.field("Depends"))
        for package in ("qt6-wayland", "fonts-noto-cjk", "xdg-utils"):
            self.assertIn(package, self.field("Recommends"))

    def test_files_are_the_expected_ones(self):
        files = {str(file.relative_to(self.tree)) for file in self.tree.rglob("*") if not file.is_dir()}
        self.assertEqual(files, {
            "usr/bin/lumetwin", "usr/bin/lumetwin-batch", "usr/libexec/lumetwin/lumetwin-worker",
            f"usr/share/applications/{ID}.desktop",
            "usr/share/doc/lumetwin/README.md", "usr/share/doc/lumetwin/changelog.Debian.gz",
            "usr/share/doc/lumetwin/changelog.gz", "usr/share/doc/lumetwin/copyright",
            f"usr/share/icons/hicolor/scalable/apps/{ID}.svg",
            f"usr/share/icons/hicolor/symbolic/apps/{ID}-symbolic.svg",
            "usr/share/lintian/overrides/lumetwin",
            "usr/share/man/man1/lumetwin-batch.1.gz", "usr/share/man/man1/lumetwin.1.gz",
            f"usr/share/metainfo/{ID}.metainfo.xml",
            f"usr/share/mime/packages/{ID}.xml", "usr/share/kio/servicemenus/lumetwin.desktop",
            "usr/share/nautilus-python/extensions/lumetwin.py", "usr/share/nemo/actions/lumetwin-to-side-by-side.nemo_action",
            "usr/share/nemo/actions/lumetwin-to-spatial.nemo_action",
            "usr/share/bash-completion/completions/lumetwin-batch.bash", "usr/share/zsh/vendor-completions/_lumetwin-batch",
            "usr/share/fish/vendor_completions.d/lumetwin-batch.fish",
        } | {f"usr/{page}" for page in HELP_FILES})

    def test_folders_are_readable_by_all(self):
        for file in self.tree.rglob("*"):
            if file.is_dir():
                self.assertEqual(oct(file.stat().st_mode & 0o777), oct(0o755), file)

    def test_documents_have_the_right_content(self):
        documents = "usr/share/doc/lumetwin"
        self.assertEqual(self.unpacked(f"{documents}/changelog.gz"), read("CHANGELOG.md"))
        self.assertEqual(self.unpacked(f"{documents}/changelog.Debian.gz"), read("packaging/debian/changelog"))
        licence = (self.tree / documents / "copyright").read_text("utf-8")
        self.assertIn("/usr/share/common-licenses/GPL-3", licence)
        for part in ("FFmpeg", "x265", "libheif"):
            self.assertIn(part, licence)
        for page in ("lumetwin", "lumetwin-batch"):
            self.assertEqual(self.unpacked(f"usr/share/man/man1/{page}.1.gz"), read(f"resources/man/{page}.1"))

    def test_programs_are_stripped(self):
        for program in ("bin/lumetwin", "bin/lumetwin-batch", "libexec/lumetwin/lumetwin-worker"):
            sections = run("readelf", "-S", "-W", self.tree / "usr" / program).stdout
            self.assertIn(".text", sections)
            self.assertNotIn(".symtab", sections)


if __name__ == "__main__":
    main("dpkg-deb", "dpkg-shlibdeps", "readelf")
