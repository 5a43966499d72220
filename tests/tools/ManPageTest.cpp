// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/MediaKinds.h"
#include "tests/support/TestMedia.h"
#include "tools/Json.h"
#include "tools/OptionTable.h"
#include "tools/RunDocument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace lumetwin::batch {
namespace {

const std::filesystem::path page = std::filesystem::path(LUMETWIN_SOURCE_DIR) / "resources/man/lumetwin-batch.1";

/// The page's source without escape sequences.
std::string pageText() {
    const auto bytes = test::readFile(page);
    std::string text(bytes.begin(), bytes.end());
    std::erase(text, '\\');
    return text;
}

TEST(ManPage, NamesEveryOptionAndExtension) {
    const std::string text = pageText();
    for (const Option &option : optionTable()) {
        // A switch has no value. Any other option is followed by its value in the same line.
        const std::string value = option.argument.empty() ? "\n" : "  " + std::string(option.argument);
        EXPECT_THAT(text, testing::HasSubstr(std::string(option.name) + value));
    }
    for (const auto extension : videoExtensions)
        EXPECT_THAT(text, testing::HasSubstr("." + std::string(extension)));
    for (const auto extension : furtherVideoExtensions)
        EXPECT_THAT(text, testing::HasSubstr("." + std::string(extension)));
    for (const auto extension : photoExtensions)
        EXPECT_THAT(text, testing::HasSubstr("." + std::string(extension)));
    for (const auto extension : furtherPhotoExtensions)
        EXPECT_THAT(text, testing::HasSubstr("." + std::string(extension)));
}

/// The names of all members, including those of inner objects.
std::set<std::string> memberNames(const Json &document) {
    std::set<std::string> names;
    for (const auto &[name, value] : document.items()) {
        if (document.is_object())
            names.insert(name);
        if (value.is_structured())
            names.merge(memberNames(value));
    }
    return names;
}

TEST(ManPage, DescribesEveryNameOfAReport) {
    const ConversionSettings settings;
    FileResult result;
    result.input = "a.mov";
    result.state = FileState::convertedWithWarnings;
    std::set<std::string> names;
    for (int kind = 0; !rawValue(static_cast<WarningKind>(kind)).empty(); ++kind)
        names.emplace(rawValue(static_cast<WarningKind>(kind)));
    for (int state = 0; !rawValue(static_cast<FileState>(state)).empty(); ++state)
        names.emplace(rawValue(static_cast<FileState>(state)));
    result.warnings.push_back({WarningKind::gainMapLeft, {}});
    names.merge(memberNames(Json::parse(runDocument({.settings = settings, .results = {result}, .message = {}}))));
    EXPECT_GT(names.size(), 50u);
    const std::string text = pageText();
    for (const std::string &name : names)
        EXPECT_THAT(text, testing::ContainsRegex("[ \n]" + name + "([ ,\n]|$)"));
}

TEST(ManPage, FormatterReportsNoErrors) {
    if (test::runProgram({"man", "--version"}).status != 0)
        GTEST_SKIP() << "man is not installed";
    const test::ProgramResult result =
        test::runProgram({"env", "LC_ALL=C.UTF-8", "MANROFFSEQ=", "MANWIDTH=80", "man", "--warnings", "-E", "UTF-8",
                          "-l", "-Tutf8", "-Z", page.string()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_GT(result.output.size(), 1000u);
}

} // namespace
} // namespace lumetwin::batch
