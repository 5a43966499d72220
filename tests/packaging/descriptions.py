# SPDX-License-Identifier: GPL-3.0-or-later
"""The desktop entry, the metainfo and the manual pages are valid and agree with the program."""
import os
import re
import unittest
import xml.etree.ElementTree

from packaging import DESKTOP, ID, METAINFO, SOURCE, tool_output, desktop_entry, main, read, run

LANGUAGE = "{http://www.w3.org/XML/1998/namespace}lang"


class Validators(unittest.TestCase):
    def test_desktop_entry_is_valid(self):
        self.assertEqual(tool_output("desktop-file-validate", DESKTOP), "")

    def test_metainfo_is_valid(self):
        result = run("appstreamcli", "validate", "--no-net", METAINFO)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertNotRegex(result.stdout, r"(?m)^[EW]:")

    def test_manual_pages_are_valid(self):
        environment = dict(os.environ, LC_ALL="C.UTF-8", MANROFFSEQ="", MANWIDTH="80")
        for page in sorted((SOURCE / "resources/man").glob("*.1")):
            with self.subTest(page=page.name):
                result = run("man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page, env=environment)
                self.assertEqual((result.returncode, result.stderr), (0, ""))
                self.assertGreater(len(result.stdout), 1000)


class Names(unittest.TestCase):
    def setUp(self):
        self.metainfo = xml.etree.ElementTree.parse(METAINFO).getroot()
        self.entry = desktop_entry()

    def test_one_id_everywhere(self):
        self.assertIn(f'set(LUMETWIN_ID "{ID}")', read("app/CMakeLists.txt"))
        self.assertEqual(self.metainfo.findtext("id"), ID)
        self.assertEqual(self.metainfo.find("launchable").text, f"{ID}.desktop")
        self.assertRegex(read("packaging/example.lumetwin.Lumetwin.yml"), rf"(?m)^id: {re.escape(ID)}$")

    def test_the_program_uses_this_id(self):
        self.assertIn("applicationId[] = LUMETWIN_ID", read("app/ApplicationIcon.h"))
        self.assertIn("setDesktopFileName(QLatin1String(applicationId))", read("app/main.cpp"))
        self.assertRegex(read("app/MainWindowController.cpp"), r"DesktopPresence>\(.*QLatin1String\(applicationId\)")
        presence = read("ui/desktop/DesktopPresence.cpp")
        self.assertIn('QStringLiteral("application://%1.desktop").arg(desktopId_)', presence)
        self.assertIn('{QStringLiteral("desktop-entry"), desktopId}', presence)

    def test_icons_have_this_name(self):
        self.assertEqual(self.entry["Icon"], ID)
        self.assertEqual(self.metainfo.find("icon[@type='stock']").text, ID)
        for icon in (ID, f"{ID}-symbolic"):
            picture = xml.etree.ElementTree.parse(SOURCE / "resources/icons" / f"{icon}.svg").getroot()
            self.assertEqual(picture.tag, "{http://www.w3.org/2000/svg}svg")
            width, height = picture.get("viewBox").split()[2:]
            self.assertEqual(width, height)

    def test_names_and_categories_agree(self):
        self.assertEqual(self.metainfo.findtext("name"), self.entry["Name"])
        listed = {category.text for category in self.metainfo.iter("category")}
        self.assertLessEqual(listed, set(self.entry["Categories"].split(";")))
        version = re.search(r"VERSION (\S+) LANGUAGES", read("CMakeLists.txt"))[1]
        self.assertEqual(self.metainfo.find("releases/release").get("version"), version)

    def test_opened_files_are_passed_to_the_program(self):
        self.assertEqual(self.entry["Exec"], "lumetwin %F")
        self.assertEqual(self.metainfo.find("provides/binary").text, "lumetwin")
        kinds = set(self.entry["MimeType"].rstrip(";").split(";"))
        for kind in ("video/quicktime", "video/mp4", "video/x-msvideo", "video/x-matroska", "video/webm",
                     "video/3gpp", "video/mp2t", "video/x-ms-wmv", "image/heif", "image/jpeg",
                     "image/png", "image/tiff"):
            self.assertIn(kind, kinds)
        # A desktop without a default would open every folder with Lumetwin, even for "Show in Folder".
        self.assertNotIn("inode/directory", kinds)

    def test_everything_is_translated(self):
        for key in ("GenericName", "Comment", "Keywords"):
            self.assertIn(f"{key}[ja]", self.entry)
        for parent in self.metainfo.iter():
            for tag in ("summary", "p", "li", "caption"):
                languages = [child.get(LANGUAGE, "en") for child in parent.findall(tag)]
                self.assertEqual(languages.count("en"), languages.count("ja"), f"{tag} in {parent.tag}")


if __name__ == "__main__":
    main("desktop-file-validate", "appstreamcli", "man")
