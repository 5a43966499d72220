// SPDX-License-Identifier: GPL-3.0-or-later
// What holds for the tables as a whole: they know every key of the code and no other, and a translation takes
// the arguments that the English text takes.
#include "engine/texts/TextTable.h"
#include "engine/texts/Texts.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <regex>
#include <set>

namespace lumetwin {
namespace {

namespace fs = std::filesystem;

const fs::path sourceFolder = LUMETWIN_SOURCE_DIR;
const std::array languageNames{"en", "ja"};

std::string contents(const fs::path &file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::map<std::string, TextEntry> table(const std::string &language) {
    std::map<std::string, TextEntry> result;
    for (const TextEntry &entry : parseTextTable(contents(sourceFolder / "resources/text" / (language + ".po"))))
        result.emplace(entry.key, entry);
    return result;
}

/// What the program's own code says, file by file.
std::map<fs::path, std::string> sources() {
    std::map<fs::path, std::string> result;
    for (const char *room : {"engine", "worker", "tools", "ui", "app"})
        for (const auto &entry : fs::recursive_directory_iterator(sourceFolder / room))
            if (entry.path().extension() == ".cpp" || entry.path().extension() == ".h")
                result.emplace(entry.path(), contents(entry.path()));
    return result;
}

std::set<std::string> matches(const std::string &code, const std::regex &pattern) {
    std::set<std::string> result;
    for (std::sregex_iterator match(code.begin(), code.end(), pattern), end; match != end; ++match)
        result.insert((*match)[1]);
    return result;
}

/// The argument types of a printf format by argument position: 'd' integer, 'f' floating point, 's' string.
/// '?' marks what this program does not use.
std::map<int, char> placeholders(const std::string &format) {
    static const std::regex conversion("%(?:%|(?:([1-9])\\$)?[-+ 0#]*[0-9]*(?:\\.[0-9]+)?(?:ll|l)?(.))");
    std::map<int, char> result;
    int next = 1;
    for (std::sregex_iterator match(format.begin(), format.end(), conversion), end; match != end; ++match) {
        if (!(*match)[2].matched)
            continue;
        const int position = (*match)[1].matched ? std::stoi((*match)[1]) : next++;
        const char type = (*match)[2].str()[0];
        result[position] = type == 'd' || type == 'f' || type == 's' ? type : '?';
    }
    return result;
}

std::string types(const std::string &format) {
    std::string result;
    for (const auto &[position, type] : placeholders(format)) {
        EXPECT_EQ(position, static_cast<int>(result.size()) + 1) << "arguments have gaps: " << format;
        result += type;
    }
    return result;
}

/// What the code hands to each format, in this order. Formats named here and nowhere in the tables are not
/// wanted; formats in the tables must be named here.
const std::map<std::string, std::string> arguments{
    {"about.libraries.format", "s"},
    {"about.version.format", "s"},
    {"alert.all.skipped.format", "d"},
    {"alert.check.side.by.side.format", "s"},
    {"alert.check.side.by.side.size.format", "dd"},
    {"alert.check.unreadable.format", "s"},
    {"alert.overwrite.message.format", "s"},
    {"alert.overwrite.more.format", "d"},
    {"alert.spatial.baseline.format", "f"},
    {"alert.spatial.check.no.title", "s"},
    {"alert.spatial.check.yes.title", "s"},
    {"alert.spatial.disparity.format", "f"},
    {"alert.spatial.fov.format", "f"},
    {"batch.frames.format", "d"},
    {"batch.inspect.baseline.format", "f"},
    {"batch.inspect.disparity.format", "f"},
    {"batch.inspect.eyes.format", "s"},
    {"batch.inspect.fov.format", "f"},
    {"batch.inspect.hero.format", "s"},
    {"batch.inspect.layout.format", "ss"},
    {"batch.inspect.parallax.format", "ffff"},
    {"batch.inspect.projection.format", "s"},
    {"batch.note.format", "s"},
    {"batch.rate.format", "f"},
    {"batch.summary.converted.format", "d"},
    {"batch.summary.converted.warnings.format", "dd"},
    {"batch.summary.failed.format", "d"},
    {"batch.summary.format", "ss"},
    {"batch.summary.skipped.format", "d"},
    {"batch.summary.unfinished.format", "d"},
    {"batch.summary.up.to.date.format", "d"},
    {"batch.summary.would.be.converted.format", "dd"},
    {"batch.time.left.format", "s"},
    {"batch.warning.format", "s"},
    {"batch.would.be.converted.format", "s"},
    {"button.reset.format", "s"},
    {"check.videos.format", "dd"},
    {"detail.file.format", "ss"},
    {"error.because.format", "ss"},
    {"error.cause.format", "ss"},
    {"error.eye.sizes.differ.format", "dddd"},
    {"error.field.format", "s"},
    {"error.folder.not.readable.format", "ss"},
    {"error.input.is.folder.format", "s"},
    {"error.input.is.no.file.format", "s"},
    {"error.layout.unsupported.format", "s"},
    {"error.output.folder.missing.format", "s"},
    {"error.output.folder.not.writable.format", "ss"},
    {"error.output.is.folder.format", "s"},
    {"error.output.is.input.format", "ss"},
    {"error.output.no.space.format", "sff"},
    {"error.output.unwritable.format", "s"},
    {"error.photo.cannot.create.destination.format", "s"},
    {"error.photo.cannot.open.file.format", "s"},
    {"error.photo.cannot.open.format", "s"},
    {"error.photo.finalization.failed.format", "s"},
    {"error.photo.no.destination.format", "s"},
    {"error.photo.not.spatial.format", "s"},
    {"error.photo.too.few.images.format", "d"},
    {"error.photo.write.failed.format", "s"},
    {"error.read.input.folder", "s"},
    {"error.resize.odd.format", "dd"},
    {"error.worker.format", "ss"},
    {"error.worker.not.confined.format", "s"},
    {"field.range.format", "ss"},
    {"label.files.selected.format", "d"},
    {"layout.right.first.format", "s"},
    {"media.complete.format", "s"},
    {"media.create.format", "s"},
    {"media.decode.format", "s"},
    {"media.decode.sound.format", "s"},
    {"media.encode.format", "s"},
    {"media.encode.sound.format", "s"},
    {"media.open.format", "s"},
    {"media.read.format", "s"},
    {"media.rename.format", "s"},
    {"media.write.format", "s"},
    {"note.chapters.left.format", "d"},
    {"note.depth.reduced.format", "dd"},
    {"note.encoder.depth.format", "d"},
    {"note.disparity.chosen.format", "f"},
    {"note.eyes.put.right.format", "s"},
    {"note.layout.used.format", "ss"},
    {"note.more.pictures.left.format", "d"},
    {"note.rotation.left.format", "d"},
    {"note.sound.tracks.left.format", "d"},
    {"note.stereo.values.taken.format", "s"},
    {"note.subtitles.left.format", "d"},
    {"note.tried.again.format", "s"},
    {"option.baseline.help.format", "sss"},
    {"option.disparity.help.format", "sss"},
    {"option.fov.help.format", "sss"},
    {"progress.elapsed.format", "dd"},
    {"progress.filecount.format", "dd"},
    {"progress.files.format", "ddd"},
    {"progress.frame.format", "ddd"},
    {"progress.frame.processed.format", "d"},
    {"progress.left.format", "dd"},
    {"progress.processing.format", "s"},
    {"progress.rate.format", "f"},
    {"projection.other.format", "s"},
    {"resize.preview.format", "dddd"},
    {"resize.preview.spatial.format", "dd"},
    {"resize.warn.not16.format", "dd"},
    {"resize.warn.odd.format", "dd"},
    {"status.complete", "dd"},
    {"status.skipped.exists.format", "s"},
    {"status.warned.skipped.format", "dd"},
    {"value.baseline.format", "f"},
    {"value.disparity.format", "f"},
    {"value.fov.format", "f"},
    {"warning.eyes.not.level.format", "f"},
    {"warning.frames.missing.format", "dd"},
    {"warning.layouts.disagree.format", "ssss"},
    {"warning.name.suggests.layout.format", "s"},
    {"warning.not.rectilinear.format", "s"},
    {"warning.picture.suggests.layout.format", "s"},
    {"warning.same.output.name.format", "s"},
    {"warning.sound.away.format", "f"},
    {"warning.sound.ends.early.format", "s"},
    {"warning.speed.faster.format", "f"},
    {"warning.speed.slower.format", "f"},
    {"warning.too.far.behind.format", "f"},
    {"warning.too.near.format", "f"},
    {"warning.without.sound.format", "s"},
    {"window.progress.format", "d"},
    {"files.advice.no.stereo.format", "d"},
    {"files.advice.not.spatial.format", "d"},
    {"files.advice.spatial.format", "d"},
    {"files.layout.format", "ss"},
    {"files.layout.looks.format", "s"},
    {"files.report.failed.format", "s"},
    {"files.result.failed.format", "s"},
    {"files.result.warning.format", "s"},
    {"files.result.skipped.format", "s"},
    {"files.size.eye.format", "dd"},
    {"files.size.format", "dd"},
    {"files.state.becomes.format", "s"},
    {"files.state.replaces.format", "s"},
    {"files.state.running.format", "d"},
    {"files.state.unreadable.format", "s"},
    {"files.total.converted.format", "d"},
    {"files.total.failed.format", "d"},
    {"files.total.files.format", "d"},
    {"files.total.left.out.format", "d"},
    {"files.total.skipped.format", "d"},
    {"files.total.stopped.format", "d"},
    {"files.total.unreadable.format", "d"},
    {"files.total.warnings.format", "d"},
    {"files.total.will.skip.format", "d"},
    {"preview.disparity.format", "fff"},
    {"preview.vertical.format", "f"},
    {"worker.exited.format", "d"},
    {"worker.no.start.format", "s"},
    {"worker.signal.format", "ds"},
    {"worker.silence.format", "d"},
};

/// Plain texts whose keys end like those of formats: captions of format menus.
const std::set<std::string> captions{"option.output.format", "option.photo.output.format"};

TEST(Catalogue, PlaceholdersAreReadRight) {
    EXPECT_EQ(types("plain, 100%%"), "");
    EXPECT_EQ(types("%d of %lld, %s, %.1f%%"), "ddsf");
    EXPECT_EQ(types("%2$s: %1$d"), "ds");
    EXPECT_EQ(types("%02d:%02d"), "dd");
}

TEST(Catalogue, EveryKeyOfTheCodeIsInEveryTable) {
    static const std::regex lookedUp("[^:\\w](?:text|format)\\(\\s*\"([^\"]+)\"");
    static const std::regex literal("\"([a-z]+(?:\\.[a-zA-Z0-9]+)+)\"");
    for (const char *language : languageNames) {
        const auto entries = table(language);
        std::set<std::string> families;
        for (const auto &[key, entry] : entries)
            families.insert(key.substr(0, key.find('.')));
        for (const auto &[file, code] : sources()) {
            for (const std::string &key : matches(code, lookedUp))
                EXPECT_TRUE(entries.count(key)) << key << " of " << file << " is missing in " << language;
            for (const std::string &key : matches(code, literal))
                EXPECT_TRUE(entries.count(key) || !families.count(key.substr(0, key.find('.'))))
                    << key << " of " << file << " is missing in " << language;
        }
    }
}

TEST(Catalogue, NoEntryIsUnused) {
    std::string everything;
    for (const auto &[file, code] : sources())
        everything += code;
    for (const char *language : languageNames)
        for (const auto &[key, entry] : table(language))
            EXPECT_NE(everything.find('"' + key + '"'), std::string::npos) << key << " in " << language;
}

TEST(Catalogue, TablesAgreeOnKeysAndEnglish) {
    const auto english = table("en");
    const auto japanese = table("ja");
    EXPECT_EQ(english.size(), japanese.size());
    for (const auto &[key, entry] : english) {
        ASSERT_TRUE(japanese.count(key)) << key;
        EXPECT_EQ(japanese.at(key).english, entry.english) << key << ": the translation is of an older text";
        EXPECT_FALSE(entry.english.empty()) << key;
        EXPECT_TRUE(entry.translation.empty()) << key << ": the English text is msgid";
        EXPECT_FALSE(japanese.at(key).translation.empty()) << key << " has no translation";
    }
}

TEST(Catalogue, KeysAreDottedLowerCaseWords) {
    static const std::regex shape("[a-z][a-z0-9]*(\\.[a-z0-9]+)+");
    for (const auto &[key, entry] : table("en"))
        EXPECT_TRUE(std::regex_match(key, shape) || key == "resize.mode.cropFill") << key;
}

TEST(Catalogue, FormatsTakeTheArgumentsOfTheCode) {
    for (const char *language : languageNames)
        for (const auto &[key, entry] : table(language)) {
            const auto expected = arguments.find(key);
            EXPECT_EQ(entry.isFormat, expected != arguments.end()) << key << " in " << language;
            EXPECT_EQ(types(entry.shown()), expected == arguments.end() ? "" : expected->second)
                << key << " in " << language;
            EXPECT_TRUE(entry.isFormat || !key.ends_with(".format") || captions.count(key)) << key;
        }
    const auto english = table("en");
    for (const auto &[key, types] : arguments)
        EXPECT_TRUE(english.count(key)) << key;
}

TEST(Catalogue, PlainTextsHaveNoPercentEscapes) {
    for (const char *language : languageNames)
        for (const auto &[key, entry] : table(language))
            EXPECT_TRUE(entry.isFormat || entry.shown().find("%%") == std::string::npos)
                << key << " is shown as it stands";
}

TEST(Catalogue, GettextAcceptsTheTables) {
    if (std::system("msgfmt --version >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "msgfmt (package gettext) is not installed";
    for (const char *language : languageNames) {
        const fs::path file = sourceFolder / "resources/text" / (std::string(language) + ".po");
        const std::string command = "msgfmt --check --output-file=/dev/null '" + file.string() + "' 2>&1";
        FILE *judge = popen(command.c_str(), "r");
        ASSERT_TRUE(judge);
        std::string words;
        for (int character; (character = std::fgetc(judge)) != EOF;)
            words += static_cast<char>(character);
        EXPECT_EQ(pclose(judge), 0) << words;
        EXPECT_EQ(words, "");
    }
}

} // namespace
} // namespace lumetwin
