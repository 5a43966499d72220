// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/Texts.h"

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>

namespace lumetwin {
namespace {

class Texts : public testing::Test {
protected:
    void TearDown() override { setTextLocale("en"); }
};

TEST_F(Texts, UnknownKeyShowsItself) {
    setTextLocale("en");
    EXPECT_EQ(text("no.such.key"), "no.such.key");
    EXPECT_EQ(formatted("no.such.format", std::int64_t{1}), "no.such.format");
}

TEST_F(Texts, DefaultStandsInOnlyForAMissingKey) {
    setTextLocale("en");
    EXPECT_EQ(text("no.such.key", "Drop folder here"), "Drop folder here");
    EXPECT_NE(text("status.cancelled", "a default"), "a default");
}

TEST_F(Texts, FollowsTheLocale) {
    setTextLocale("ja_JP.UTF-8");
    EXPECT_EQ(textLanguage(), "ja");
    EXPECT_EQ(text("status.skipped.spatial"), "スキップ：すでに空間メディアです");
    setTextLocale("en_GB.UTF-8");
    EXPECT_EQ(textLanguage(), "en");
    EXPECT_EQ(text("status.skipped.spatial"), "Skipped: already spatial");
}

TEST_F(Texts, EveryFormOfAJapaneseLocaleNameIsJapanese) {
    for (const char *locale : {"ja", "ja_JP", "ja_JP.eucJP", "ja.UTF-8", "ja-JP", "ja_JP@calendar"}) {
        setTextLocale(locale);
        EXPECT_EQ(textLanguage(), "ja") << locale;
    }
}

TEST_F(Texts, LocaleWithoutATableIsEnglish) {
    for (const char *locale : {"", "C", "POSIX", "C.UTF-8", "de_DE.UTF-8", "jam_JM", "j", "xx", "_ja", "\xff"}) {
        setTextLocale("ja");
        setTextLocale(locale);
        EXPECT_EQ(textLanguage(), "en") << locale;
    }
}

TEST_F(Texts, FillsWideIntegers) {
    setTextLocale("en");
    EXPECT_EQ(formatted("status.complete", std::numeric_limits<std::int64_t>::max(), std::int64_t{0}),
              "Converted: 9223372036854775807, failed: 0");
}

TEST_F(Texts, PercentSignsInAStringArgumentStay) {
    setTextLocale("en");
    EXPECT_EQ(formatted("error.read.input.folder", std::string("100%s")), "The input folder cannot be read: 100%s");
}

/// Leaves with a status that tells the language of a process with this environment, which is read only once.
[[noreturn]] void exitByLanguage(const char *all, const char *messages, const char *lang) {
    const auto set = [](const char *name, const char *value) { value ? setenv(name, value, 1) : unsetenv(name); };
    set("LC_ALL", all);
    set("LC_MESSAGES", messages);
    set("LANG", lang);
    std::_Exit(textLanguage() == "ja" ? 10 : 11);
}

TEST(TextsDeathTest, EnvironmentDecidesUntilALocaleIsSet) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto japanese = testing::ExitedWithCode(10);
    const auto english = testing::ExitedWithCode(11);
    EXPECT_EXIT(exitByLanguage(nullptr, nullptr, "ja_JP.UTF-8"), japanese, "");
    EXPECT_EXIT(exitByLanguage(nullptr, "ja_JP.UTF-8", "en_US.UTF-8"), japanese, "");
    EXPECT_EXIT(exitByLanguage("C", "ja_JP.UTF-8", "ja_JP.UTF-8"), english, "");
    EXPECT_EXIT(exitByLanguage("", "", "ja_JP.UTF-8"), japanese, "");
    EXPECT_EXIT(exitByLanguage(nullptr, nullptr, nullptr), english, "");
}

} // namespace
} // namespace lumetwin
