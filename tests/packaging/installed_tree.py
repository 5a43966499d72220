# SPDX-License-Identifier: GPL-3.0-or-later
"""cmake --install creates exactly the tree of a native program, and the installed program starts."""
import os
import tempfile
import unittest
import pathlib

from packaging import BUILD, CMAKE, HELP_FILES, ID, main, run

TREE = {
    "bin/lumetwin", "bin/lumetwin-batch", "libexec/lumetwin/lumetwin-worker",
    f"share/applications/{ID}.desktop",
    "share/doc/lumetwin/CHANGELOG.md", "share/doc/lumetwin/LICENSE", "share/doc/lumetwin/README.md",
    f"share/icons/hicolor/scalable/apps/{ID}.svg", f"share/icons/hicolor/symbolic/apps/{ID}-symbolic.svg",
    "share/man/man1/lumetwin-batch.1", "share/man/man1/lumetwin.1",
    f"share/metainfo/{ID}.metainfo.xml",
    f"share/mime/packages/{ID}.xml", "share/kio/servicemenus/lumetwin.desktop",
    "share/nautilus-python/extensions/lumetwin.py", "share/nemo/actions/lumetwin-to-side-by-side.nemo_action",
    "share/nemo/actions/lumetwin-to-spatial.nemo_action",
    "share/bash-completion/completions/lumetwin-batch.bash", "share/zsh/vendor-completions/_lumetwin-batch",
    "share/fish/vendor_completions.d/lumetwin-batch.fish",
} | HELP_FILES


class InstalledTree(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.prefix = pathlib.Path(cls.scratch.name, "usr")
        result = run(CMAKE, "--install", BUILD, "--prefix", cls.prefix)
        if result.returncode:
            raise RuntimeError(result.stdout + result.stderr)

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def test_files_are_the_expected_ones(self):
        files = {str(file.relative_to(self.prefix)) for file in self.prefix.rglob("*") if not file.is_dir()}
        self.assertEqual(files, TREE)

    def test_only_programs_are_executable(self):
        for file in self.prefix.rglob("*"):
            if file.is_file():
                wanted = 0o755 if "share" not in file.relative_to(self.prefix).parts else 0o644
                self.assertEqual(oct(file.stat().st_mode & 0o777), oct(wanted), file)

    def test_programs_have_no_path_of_the_build(self):
        for program in ("bin/lumetwin", "bin/lumetwin-batch", "libexec/lumetwin/lumetwin-worker"):
            dynamic = run("readelf", "-d", self.prefix / program).stdout
            self.assertIn("NEEDED", dynamic)
            self.assertNotRegex(dynamic, "RUNPATH|RPATH")
            self.assertRegex(dynamic, "BIND_NOW|FLAGS_1.*NOW")

    def test_installed_batch_tool_starts(self):
        result = run(self.prefix / "bin/lumetwin-batch", "--help", env=dict(os.environ, LC_ALL="C.UTF-8"))
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertTrue(result.stdout.startswith("Usage: lumetwin-batch"))

    def test_installed_program_finds_its_worker_wherever_the_tree_stands(self):
        result = run(self.prefix / "bin/lumetwin-batch", "--version")
        self.assertIn("confined by: system calls", result.stdout)

    def test_worker_knows_no_window(self):
        needed = run("readelf", "-d", self.prefix / "libexec/lumetwin/lumetwin-worker").stdout
        self.assertIn("NEEDED", needed)
        self.assertNotIn("libQt", needed)


if __name__ == "__main__":
    main("readelf")
