# SPDX-License-Identifier: GPL-3.0-or-later
"""The help pages: valid, the same in both languages, with every picture, and quoting the window's texts exactly."""
import html.parser
import re
import struct
import unittest

from packaging import METAINFO, SOURCE, tool_output, main, read, texts

FOLDER = SOURCE / "resources/help/mac/lumetw"
PAGES = {"en": "index_en.html", "ja": "index.html"}
QUOTES = {"en": r"“([^”]+)”", "ja": r"「([^」]+)」"}
# A text from Qt's own translation, in the alert at the end.
TOOLKIT = {"en": "Show Details...", "ja": "詳細を表示..."}
# Texts of buttons while they are disabled, and one button that is a symbol and explained as such.
UNEXPLAINED = {"button.stopping", "button.checking", "button.reset.format"}


class Page(html.parser.HTMLParser):
    """The tags of a page with their attributes, and its texts."""

    def __init__(self, language):
        super().__init__()
        self.tags, self.headings, self.words = [], [], ""
        self.feed((FOLDER / PAGES[language]).read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attributes):
        self.tags.append((tag, dict(attributes)))
        if tag == "th":
            self.headings.append("")

    def handle_endtag(self, tag):
        self.tags.append((f"/{tag}", {}))

    def handle_data(self, data):
        self.words += data
        if self.headings and self.tags[-1][0] == "th":
            self.headings[-1] += data

    def all(self, tag, attribute):
        return [attributes[attribute] for name, attributes in self.tags if name == tag and attribute in attributes]


def png_size(path):
    data = path.read_bytes()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", path
    return struct.unpack(">II", data[16:24])


class HelpPages(unittest.TestCase):
    def setUp(self):
        self.pages = {language: Page(language) for language in PAGES}
        self.texts = {language: texts(language) for language in PAGES}

    def key_of(self, language, words):
        if words == TOOLKIT[language]:
            return "toolkit"
        keys = [key for key, text in self.texts[language].items() if text == words]
        self.assertTrue(keys, f"not a text of the window: {words}")
        return keys[0]

    def test_markup_is_valid(self):
        for page in PAGES.values():
            self.assertEqual(tool_output("xmllint", "--html", "--noout", FOLDER / page), "")

    def test_both_languages_have_the_same_structure(self):
        def structure(language):
            for tag, attributes in self.pages[language].tags:
                ids = {name: value for name, value in attributes.items() if name in ("id", "class", "width", "height")}
                source = re.sub(r"-(en|ja)\.png$", "", attributes.get("src", ""))
                target = attributes.get("href", "") if tag == "a" and "lang" not in attributes else ""
                yield tag, ids, source, target

        self.assertEqual(list(structure("en")), list(structure("ja")))

    def test_links_resolve(self):
        for language, page in self.pages.items():
            self.assertEqual(page.tags[0], ("html", {"lang": language}))
            ids = page.all("h2", "id")
            self.assertEqual([f"#{name}" for name in ids], [link for link in page.all("a", "href") if link[0] == "#"])
            others = [link for link in page.all("a", "href") + page.all("link", "href") if link[0] != "#"]
            self.assertIn(PAGES["ja" if language == "en" else "en"], others)
            for link in others:
                self.assertTrue((FOLDER / link).is_file(), link)

    def test_pictures_exist_and_are_described(self):
        shown = set()
        for language, page in self.pages.items():
            for tag, attributes in page.tags:
                if tag != "img":
                    continue
                picture = FOLDER / attributes["src"]
                self.assertTrue(picture.stem.endswith(f"-{language}"), picture)
                self.assertEqual(png_size(picture), (int(attributes["width"]), int(attributes["height"])), picture)
                self.assertLess(picture.stat().st_size, 150 * 1024, picture)
                self.assertGreater(len(attributes["alt"]), 10, picture)
                shown.add(picture)
        self.assertEqual(shown, set((FOLDER / "pictures").iterdir()))

    def test_quotations_are_texts_of_the_window(self):
        keys = {}
        for language, page in self.pages.items():
            keys[language] = [self.key_of(language, words) for words in re.findall(QUOTES[language], page.words)]
        # The order of sentences differs between the languages, the quotations do not.
        self.assertEqual(sorted(keys["en"]), sorted(keys["ja"]))
        self.assertGreater(len(keys["en"]), 20)

    def test_options_are_named_as_in_the_window(self):
        keys = {}
        for language, page in self.pages.items():
            options = [heading for heading in page.headings if heading]
            keys[language] = []
            for option in options:
                # For a long text the part before its explanation is enough.
                found = [key for key, text in self.texts[language].items()
                         if text == option or text.startswith((f"{option}: ", f"{option}（"))]
                self.assertTrue(found, f"no option: {option}")
                keys[language].append(found[0])
        self.assertEqual(keys["en"], keys["ja"])
        named = {key for key in self.texts["en"] if key.startswith("option.") and ".help" not in key}
        wanted = named | {"resize.mode.label", "preview.mode.side.by.side", "preview.disparity", "preview.swap",
                          "preview.suggest.adjustment"}
        self.assertEqual(set(keys["en"]), wanted)

    def test_every_button_is_explained(self):
        quoted = {self.key_of("en", words) for words in re.findall(QUOTES["en"], self.pages["en"].words)}
        buttons = {key for key in self.texts["en"] if key.startswith(("button.", "direction.", "resize.mode."))}
        self.assertEqual(buttons - quoted - UNEXPLAINED - {"resize.mode.label"}, set())

    def test_every_extension_is_named(self):
        code = read("engine/inspection/MediaKinds.h")
        extensions = re.findall(r'"(\w+)"', code)
        self.assertGreater(len(extensions), 10)
        for page in self.pages.values():
            for extension in extensions:
                self.assertRegex(page.words, rf"\b{extension}\b")

    def test_pages_are_where_the_menu_opens_them(self):
        code = read("app/HelpPages.h")
        for page in PAGES.values():
            self.assertIn(f'"/mac/lumetw/{page}"', code)

    def test_metainfo_shows_pictures_of_the_help(self):
        sources = re.findall(r'width="(\d+)" height="(\d+)">https://[^/]+/mac/lumetw/([^<]+)<', METAINFO.read_text("utf-8"))
        self.assertEqual(len(sources), 2)
        for width, height, picture in sources:
            self.assertEqual(png_size(FOLDER / picture), (int(width), int(height)))


if __name__ == "__main__":
    main("xmllint")
