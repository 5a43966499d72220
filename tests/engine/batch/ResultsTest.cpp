// SPDX-License-Identifier: GPL-3.0-or-later
// What each file of a run comes to, and what happens to files that are there already.
#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"
#include "tests/engine/batch/BatchRun.h"

#include <gmock/gmock.h>

#include <chrono>

namespace lumetwin::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Results : public BatchRun {
protected:
    std::vector<FileState> states() const {
        std::vector<FileState> all;
        for (const FileResult &result : results)
            all.push_back(result.state);
        return all;
    }

    /// Runs once more and forgets what was seen before.
    void runAgain() {
        results.clear();
        calls.clear();
        failures.clear();
        run();
    }

    std::string written(const std::filesystem::path &file) {
        const auto bytes = readFile(file);
        return {bytes.begin(), bytes.end()};
    }

    /// A result of a former run: whole, and newer (or older) than every input.
    void earlier(const std::filesystem::path &file, int secondsNewer) {
        ffmpeg({"-f", "lavfi", "-i", "color=size=64x64", "-frames:v", "1", "-c:v", "libx264", file});
        std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now() +
                                                   std::chrono::seconds(secondsNewer));
    }
};

TEST_F(Results, EveryStateComesWithItsFacts) {
    spatial("1.mov");
    spatial("2.mov");
    file("3.mov");
    spatial("4.mov");
    spatial("5.mov");
    spatial("6.mov");
    onConvert("2.mov", [&](const ConversionControl *) {
        writeFile(output / "2_sbs.mp4.partial", std::string("nine less"));
        nextOutcome = {.written = true,
                       .framesWritten = 90,
                       .framesExpected = 99,
                       .warnings = {{WarningKind::framesMissing, {std::int64_t{90}, std::int64_t{99}}}}};
    });
    onConvert("4.mov", [](const ConversionControl *) { throw processorError("broken"); });
    onConvert("5.mov", [&](const ConversionControl *) { processor->cancelRequested = true; });
    useFolder();
    run();
    EXPECT_THAT(states(), ElementsAre(FileState::converted, FileState::convertedWithWarnings, FileState::skipped,
                                      FileState::failed, FileState::cancelled, FileState::notReached));
    EXPECT_EQ(results[1].output, output / "2_sbs.mp4");
    EXPECT_EQ(results[1].bytes, 9u);
    EXPECT_EQ(results[1].framesWritten, 90);
    EXPECT_EQ(results[1].framesExpected, 99);
    EXPECT_EQ(results[1].reason, "");
    EXPECT_GT(results[1].seconds, 0);
    EXPECT_EQ(results[2].reason, "Skipped: not spatial");
    EXPECT_EQ(results[3].reason, "broken");
    for (const std::size_t index : {2, 3, 4, 5}) {
        EXPECT_EQ(results[index].output, "") << index;
        EXPECT_EQ(results[index].bytes, 0u) << index;
    }
    for (std::size_t index = 0; index < 6; ++index)
        EXPECT_EQ(results[index].input, input / (std::to_string(index + 1) + ".mov"));
}

TEST_F(Results, NotesAloneAreNoWarnings) {
    spatial("v.mov");
    nextOutcome.warnings = {{WarningKind::chaptersLeft, {std::int64_t{3}}}};
    useFolder();
    run();
    EXPECT_THAT(states(), ElementsAre(FileState::converted));
    EXPECT_EQ(results[0].warnings.size(), 1u);
}

TEST_F(Results, StatesHaveStableNames) {
    const std::vector<std::pair<FileState, std::string>> names{
        {FileState::converted, "converted"},  {FileState::convertedWithWarnings, "convertedWithWarnings"},
        {FileState::skipped, "skipped"},      {FileState::upToDate, "upToDate"},
        {FileState::failed, "failed"},        {FileState::cancelled, "cancelled"},
        {FileState::notReached, "notReached"}};
    for (const auto &[state, name] : names)
        EXPECT_EQ(rawValue(state), name);
}

TEST_F(Results, FolderIsConvertedIntoItselfTwice) {
    spatial("a.mov");
    spatial("b.heic");
    settings->outputFolderURL = input.path();
    useFolder();
    run();
    ASSERT_THAT(states(), ElementsAre(FileState::converted, FileState::converted));
    writeFile(input / "a_sbs.mp4", std::string("of the first run"));
    runAgain();
    EXPECT_THAT(failures, IsEmpty());
    EXPECT_THAT(states(),
                ElementsAre(FileState::converted, FileState::skipped, FileState::converted, FileState::skipped))
        << "what the first run has made does not suit the direction";
    EXPECT_EQ(written(input / "a_sbs.mp4"), "converted");
    EXPECT_EQ(written(input / "a.mov"), "source");
}

std::vector<Warning> sameNameAs(const std::string &name) {
    return {{WarningKind::sameOutputName, {name}}};
}

TEST_F(Results, TwoInputsOfOneOutputNameAreBothWarned) {
    spatial("x.mov");
    spatial("x.mp4");
    useFolder();
    run();
    EXPECT_THAT(states(), ElementsAre(FileState::convertedWithWarnings, FileState::convertedWithWarnings));
    EXPECT_EQ(results[0].warnings, sameNameAs("x.mp4"));
    EXPECT_EQ(results[1].warnings, sameNameAs("x.mov"));
    EXPECT_EQ(results[0].output, results[1].output);
}

TEST_F(Results, RivalThatIsSkippedIsNone) {
    spatial("x.mov");
    file("x.mp4");
    useFolder();
    run();
    EXPECT_THAT(states(), ElementsAre(FileState::converted, FileState::skipped));
    EXPECT_THAT(results[0].warnings, IsEmpty());
}

TEST_F(Results, FilesOfOneNameInTwoFoldersAreRivals) {
    std::filesystem::create_directories(input / "1");
    std::filesystem::create_directories(input / "2");
    spatial("1/x.mov");
    spatial("2/x.mov");
    settings->inputFiles = {input / "1/x.mov", input / "2/x.mov"};
    run();
    EXPECT_EQ(results[0].warnings, sameNameAs("x.mov"));
    EXPECT_EQ(results[1].warnings, sameNameAs("x.mov"));
}

TEST_F(Results, KeepBothNumbersWhatIsThereAndWhatTheRunWrites) {
    settings->onExisting = OnExisting::keepBoth;
    spatial("x.mov");
    spatial("x.mp4");
    writeFile(output / "x_sbs.mp4", std::string("older"));
    useFolder();
    run();
    EXPECT_THAT(states(), ElementsAre(FileState::converted, FileState::converted)) << "and nobody is warned";
    EXPECT_EQ(results[0].output, output / "x_sbs 2.mp4");
    EXPECT_EQ(results[1].output, output / "x_sbs 3.mp4");
    EXPECT_EQ(written(output / "x_sbs.mp4"), "older");
}

TEST_F(Results, SkipLeavesWhatIsThereAndWhatTheRunHasWritten) {
    settings->onExisting = OnExisting::skip;
    spatial("w.mov");
    spatial("x.mov");
    spatial("x.mp4");
    writeFile(output / "w_sbs.mp4", std::string("older"));
    useFolder();
    run();
    EXPECT_THAT(states(), ElementsAre(FileState::skipped, FileState::converted, FileState::skipped));
    EXPECT_EQ(results[0].reason, "Skipped: w_sbs.mp4 is there already");
    EXPECT_EQ(results[2].reason, "Skipped: x_sbs.mp4 is there already");
    EXPECT_THAT(skips, ElementsAre(Skip{"w.mov", results[0].reason}, Skip{"x.mp4", results[2].reason}));
    EXPECT_EQ(written(output / "w_sbs.mp4"), "older");
    EXPECT_THAT(completions, ElementsAre(Completion{true, "Converted: 1, failed: 0"}));
}

TEST_F(Results, UpToDateFilesAreLeftAlone) {
    settings->skipExisting = true;
    spatial("a.mov");
    spatial("b.mov");
    spatial("c.mov");
    earlier(output / "a_sbs.mp4", 10);
    earlier(output / "b_sbs.mp4", -1000);
    writeFile(output / "c_sbs.mp4", std::string());
    useFolder();
    run();
    EXPECT_THAT(states(), ElementsAre(FileState::upToDate, FileState::converted, FileState::converted));
    EXPECT_EQ(results[0].output, output / "a_sbs.mp4");
    EXPECT_EQ(results[0].reason, "Up to date");
    EXPECT_THAT(calls, ElementsAre("videoToSBS b.mov b_sbs.mp4", "videoToSBS c.mov c_sbs.mp4"));
}

TEST_F(Results, NumberedResultIsUpToDateToo) {
    settings->skipExisting = true;
    settings->onExisting = OnExisting::keepBoth;
    spatial("a.mov");
    earlier(output / "a_sbs.mp4", -1000);
    useFolder();
    run();
    EXPECT_EQ(results[0].output, output / "a_sbs 2.mp4");
    earlier(output / "a_sbs 2.mp4", 10);
    runAgain();
    EXPECT_THAT(states(), ElementsAre(FileState::upToDate)) << "and there is no third one each night";
    EXPECT_EQ(results[0].output, output / "a_sbs 2.mp4");
    settings->onExisting = OnExisting::replace;
    runAgain();
    EXPECT_THAT(states(), ElementsAre(FileState::converted)) << "the number is not asked for";
}

TEST_F(Results, WithoutTheWishNothingIsUpToDate) {
    spatial("a.mov");
    earlier(output / "a_sbs.mp4", 10);
    useFolder();
    run();
    EXPECT_THAT(states(), ElementsAre(FileState::converted));
}

TEST_F(Results, OfTwoFilesThatShareAnOutputNoneIsUpToDate) {
    settings->skipExisting = true;
    spatial("x.mov");
    spatial("x.mp4");
    earlier(output / "x_sbs.mp4", 10);
    useFolder();
    run();
    EXPECT_EQ(calls.size(), 2u) << "nobody knows which of them the result is of";
}

TEST_F(Results, FolderIntoItselfGoesOnWhereItWas) {
    settings->skipExisting = true;
    settings->outputFolderURL = input.path();
    spatial("a.mov");
    spatial("b.mov");
    earlier(input / "a_sbs.mp4", 10);
    useFolder();
    run();
    EXPECT_THAT(states(), ElementsAre(FileState::upToDate, FileState::skipped, FileState::converted));
}

class Tree : public Results {
protected:
    Tree() {
        settings->recursive = true;
        for (const char *name : {"2023", "2024/may"})
            std::filesystem::create_directories(input / name);
        useFolder();
    }
};

TEST_F(Tree, IsKeptInTheOutput) {
    spatial("top.mov");
    spatial("2023/same.mov");
    spatial("2024/may/same.mov");
    run();
    EXPECT_THAT(states(), ElementsAre(FileState::converted, FileState::converted, FileState::converted))
        << "equal names in different folders are no rivals";
    EXPECT_EQ(results[0].output, output / "top_sbs.mp4");
    EXPECT_EQ(results[1].output, output / "2023/same_sbs.mp4");
    EXPECT_EQ(results[2].output, output / "2024/may/same_sbs.mp4");
    for (const FileResult &result : results)
        EXPECT_EQ(written(result.output), "converted");
}

TEST_F(Tree, FoldersWithoutResultsAreNotMade) {
    spatial("2024/may/v.mov");
    file("2023/w.mov");
    run();
    EXPECT_TRUE(std::filesystem::exists(output / "2024/may/v_sbs.mp4"));
    EXPECT_FALSE(std::filesystem::exists(output / "2023"));
}

TEST_F(Tree, OutputInsideTheInputIsNoInput) {
    spatial("2024/may/v.mov");
    std::filesystem::create_directory(input / "results");
    settings->outputFolderURL = input / "results";
    run();
    const auto first = results.size();
    runAgain();
    EXPECT_EQ(results.size(), first);
    EXPECT_EQ(results[0].output, input / "results/2024/may/v_sbs.mp4");
}

TEST_F(Tree, IsConvertedIntoItselfTwice) {
    spatial("2024/may/v.mov");
    settings->outputFolderURL = input.path();
    run();
    EXPECT_EQ(results[0].output, input / "2024/may/v_sbs.mp4");
    runAgain();
    EXPECT_THAT(states(), ElementsAre(FileState::converted, FileState::skipped));
}

TEST_F(Tree, WithoutTheWishFoldersBelowAreLeftAlone) {
    settings->recursive = false;
    spatial("top.mov");
    spatial("2024/may/v.mov");
    run();
    EXPECT_THAT(calls, ElementsAre("videoToSBS top.mov top_sbs.mp4"));
}

TEST_F(Tree, FolderThatCannotBeEnteredHasFailed) {
    spatial("2023/a.mov");
    spatial("2024/may/b.mov");
    // A name that is too long for the system, so that root cannot enter the folder either.
    std::filesystem::path deep = input / "2023";
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(deep);
    for (int level = 0; level < 20; ++level) {
        std::filesystem::create_directory(std::string(250, 'd'));
        std::filesystem::current_path(std::string(250, 'd'));
    }
    std::filesystem::current_path(before);
    run();
    ASSERT_THAT(states(), ElementsAre(FileState::converted, FileState::failed, FileState::converted));
    EXPECT_EQ(results[1].reason, "The folder " + std::string(250, 'd') + " cannot be read (File name too long).");
    EXPECT_THAT(completions, ElementsAre(Completion{false, "Converted: 2, failed: 1"}));
    EXPECT_EQ(calls.size(), 2u) << "nothing is converted in its place";
}

} // namespace
} // namespace lumetwin::test
