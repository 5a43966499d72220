// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/TextTable.h"

#include <gtest/gtest.h>

namespace lumetwin {
namespace {

std::string errorOf(std::string_view po) {
    try {
        parseTextTable(po);
    } catch (const TextTableError &error) {
        return error.what();
    }
    return "no error";
}

TEST(TextTable, ReadsEntriesInOrder) {
    const auto entries = parseTextTable("# A comment.\n"
                                        "msgid \"\"\n"
                                        "msgstr \"Language: ja\\n\"\n"
                                        "\n"
                                        "#. For translators.\n"
                                        "#, c-format\n"
                                        "msgctxt \"b.format\"\n"
                                        "msgid \"%d files\"\n"
                                        "msgstr \"%d 個\"\n"
                                        "\n"
                                        "msgctxt \"a\"\n"
                                        "msgid \"One\"\n"
                                        "msgstr \"\"\n");
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].key, "b.format");
    EXPECT_EQ(entries[0].english, "%d files");
    EXPECT_EQ(entries[0].translation, "%d 個");
    EXPECT_EQ(entries[0].shown(), "%d 個");
    EXPECT_TRUE(entries[0].isFormat);
    EXPECT_EQ(entries[1].key, "a");
    EXPECT_EQ(entries[1].shown(), "One");
    EXPECT_FALSE(entries[1].isFormat);
}

TEST(TextTable, JoinsStringsAndResolvesEscapes) {
    const auto entries = parseTextTable("msgctxt \"a\"\n"
                                        "msgid \"\"\n"
                                        "\"first\\n\"\n"
                                        "\"\\\"second\\\"\\t\\\\\"\n"
                                        "msgstr \"\"");
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].english, "first\n\"second\"\t\\");
}

TEST(TextTable, FuzzyTranslationIsNotShown) {
    const auto entries = parseTextTable("#, fuzzy, c-format\nmsgctxt \"a\"\nmsgid \"New %d\"\nmsgstr \"Old %d\"\n");
    EXPECT_EQ(entries.at(0).shown(), "New %d");
    EXPECT_TRUE(entries.at(0).isFormat);
}

TEST(TextTable, TakesLinesOfOtherSystemsAndObsoleteEntries) {
    const auto entries = parseTextTable("msgctxt \"a\"\r\nmsgid \"A\"\r\nmsgstr \"B\"\r\n"
                                        "#~ msgctxt \"old\"\r\n#~ msgid \"x\"\r\n#~ msgstr \"y\"\r\n");
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].shown(), "B");
}

TEST(TextTable, EntriesNeedNoBlankLineBetweenThem) {
    EXPECT_EQ(parseTextTable("msgctxt \"a\"\nmsgid \"A\"\nmsgstr \"\"\n"
                             "msgctxt \"b\"\nmsgid \"B\"\nmsgstr \"\"\n# end\n")
                  .size(),
              2u);
}

TEST(TextTable, EmptyTableHasNoEntries) {
    EXPECT_TRUE(parseTextTable("").empty());
}

TEST(TextTable, NamesTheLineOfAMistake) {
    EXPECT_EQ(errorOf("msgctxt \"a\"\nmsgid \"A\"\nmsgstr \"A\n"), "line 3: a string without its quotation marks");
    EXPECT_EQ(errorOf("msgctxt \"a\"\nmsgid \"a\"b\"\nmsgstr \"\"\n"), "line 2: a quotation mark within a string");
    EXPECT_EQ(errorOf("msgctxt \"a\"\nmsgid \"\\x\"\nmsgstr \"\"\n"), "line 2: an unknown escape in a string");
    EXPECT_EQ(errorOf("msgctxt \"a\"\nmsgid \"x\\\"\n"), "line 2: an unknown escape in a string");
    EXPECT_EQ(errorOf("\"lost\"\n"), "line 1: a string that belongs to nothing");
    EXPECT_EQ(errorOf("msgstr \"A\"\n"), "line 1: unexpected msgstr");
    EXPECT_EQ(errorOf("msgid \"A\"\nmsgctxt \"a\"\n"), "line 2: unexpected msgctxt");
    EXPECT_EQ(errorOf("msgctxt \"a\"\nmsgid \"A\"\nmsgid_plural \"As\"\n"), "line 3: unexpected msgid_plural");
    EXPECT_EQ(errorOf("msgctxt \"a\"\nmsgid \"A\"\nmsgid \"A\"\n"), "line 3: given twice");
    EXPECT_EQ(errorOf("msgctxt \"a\"\nmsgid \"A\"\n\nmsgstr \"A\"\n"), "line 3: an entry that is not complete");
    EXPECT_EQ(errorOf("msgctxt \"a\"\n"), "line 1: an entry that is not complete");
    EXPECT_EQ(errorOf("msgid \"A\"\nmsgstr \"\"\n"), "line 2: an entry without its key (msgctxt)");
    EXPECT_EQ(errorOf("\xEF\xBB\xBFmsgid \"\"\nmsgstr \"\"\n"), "line 1: unexpected \xEF\xBB\xBFmsgid");
    EXPECT_EQ(errorOf("words\n"), "line 1: neither a comment, a keyword nor a string");
    EXPECT_EQ(errorOf("msgctxt \"a\"\nmsgid \"A\"\nmsgstr \"\"\n\nmsgctxt \"a\"\nmsgid \"A\"\nmsgstr \"\"\n"),
              "line 7: a second entry for a");
}

} // namespace
} // namespace lumetwin
