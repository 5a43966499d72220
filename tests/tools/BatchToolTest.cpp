// SPDX-License-Identifier: GPL-3.0-or-later
// The program's output and exit status without a terminal.
#include "tests/tools/BatchFixture.h"
#include "tools/Commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace lumetwin::test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

class BatchTool : public BatchFixture {
protected:
    ProgramResult convert(std::vector<std::string> inputs) {
        inputs.insert(inputs.begin(), {"--output", folder / "out"});
        return run(inputs);
    }
};

TEST_F(BatchTool, WithoutThreadsItEndsWithThatReason) {
    const std::string input = file("a.mov");
    const char *const arguments[] = {"lumetwin-batch", "inspect", input.c_str()};
    testing::internal::CaptureStderr();
    const int status = batch::runBatchTool(3, arguments, []() -> MediaOperations {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    });
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "lumetwin-batch: Resource temporarily unavailable\n");
    EXPECT_EQ(status, batch::someFailed);
}

TEST_F(BatchTool, PlainLinesReportEachFile) {
    for (const char *name : {"a.mov", "fail.heic", "plain.mov", "notes.txt"})
        file(name);
    const ProgramResult result = convert({folder / "in"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output,
                MatchesRegex("\\[1/3\\] a.mov\n"
                             "a.mov → a_sbs.mp4\n"
                             "\\[2/3\\] fail.heic\n"
                             "\\[VP\\] ❌ fail.heic: Error Domain=VideoProcessor Code=-1 \"acted failure\"\n"
                             "\\[3/3\\] plain.mov\n"
                             "\\[VP\\] ⏭ skip \\(not spatial\\) plain.mov\n"
                             "Converted: 1, skipped: 1, failed: 1 \\([0-9:]+\\)\n"
                             "  fail.heic: acted failure\n"));
    EXPECT_EQ(result.errors, "");
}

TEST_F(BatchTool, WarningsAreShownBelowTheirFileAndCounted) {
    const ProgramResult result = convert({file("a.mov"), file("note.mov"), file("warn.mov")});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output,
                MatchesRegex("\\[1/3\\] a.mov\n"
                             "a.mov → a_sbs.mp4\n"
                             "\\[2/3\\] note.mov\n"
                             "note.mov → note_sbs.mp4\n"
                             "  Note: Chapters left out: 3\n"
                             "\\[3/3\\] warn.mov\n"
                             "warn.mov → warn_sbs.mp4\n"
                             "  Warning: The data is damaged or ends early: 90 frames written, 120 expected.\n"
                             "  Note: Chapters left out: 3\n"
                             "Converted: 3 \\(1 with warnings\\), skipped: 0, failed: 0 \\([0-9:]+\\)\n"));
}

TEST_F(BatchTool, WarningNamesTheOptionThatAvoidsIt) {
    EXPECT_THAT(
        convert({file("fast.mov")}).output,
        HasSubstr("  Warning: The film plays 1.5 % faster than its source. “Keep the film’s own timing” prevents "
                  "this. (--keep-timing)\n"));
}

TEST_F(BatchTool, StrictCountsWarningsAsFailuresButNotNotes) {
    EXPECT_EQ(convert({"--strict", file("a.mov"), file("note.mov"), file("plain.mov")}).status, 0);
    EXPECT_EQ(convert({"--strict", file("a.mov"), file("warn.mov")}).status, 1);
    EXPECT_EQ(convert({file("a.mov"), file("warn.mov")}).status, 0);
}

TEST_F(BatchTool, ExistingFilesAreReplacedNumberedOrSkipped) {
    const std::string input = file("a.mov");
    EXPECT_THAT(convert({input}).output, HasSubstr("a.mov → a_sbs.mp4\n"));
    EXPECT_THAT(convert({input}).output, HasSubstr("a.mov → a_sbs.mp4\n"));
    EXPECT_THAT(convert({"--on-existing", "keep-both", input}).output, HasSubstr("a.mov → a_sbs 2.mp4\n"));
    EXPECT_THAT(convert({"--on-existing=skip", input}).output,
                HasSubstr("[VP] ⏭ skip (its result exists) a.mov\nConverted: 0, skipped: 1, failed: 0"));
    EXPECT_THAT(convert({"--on-existing=replace", input}).output, HasSubstr("a.mov → a_sbs.mp4\n"));
}

TEST_F(BatchTool, RecursiveConvertsSubfoldersAndKeepsTheirTree) {
    std::filesystem::create_directories(folder / "in/2024/may");
    file("top.mov");
    file("2024/may/deep.mov");
    EXPECT_THAT(convert({folder / "in"}).output, HasSubstr("Converted: 1, "));
    const ProgramResult result = convert({"--recursive", folder / "in"});
    EXPECT_THAT(result.output, HasSubstr("Converted: 2, skipped: 0, failed: 0"));
    EXPECT_TRUE(std::filesystem::exists(folder / "out/2024/may/deep_sbs.mp4"));
    EXPECT_THAT(convert({"--recursive", folder / "in/top.mov"}).errors,
                HasSubstr("--recursive changes nothing without an input folder"));
}

TEST_F(BatchTool, AllConvertedOrSkippedIsSuccess) {
    EXPECT_EQ(convert({file("a.mov"), file("plain.mov")}).status, 0);
    EXPECT_EQ(convert({file("plain.mov")}).status, 0);
}

TEST_F(BatchTool, NothingToConvertIsAFailure) {
    const ProgramResult result = convert({folder / "in"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "There are no videos or photos to convert.\n");
}

TEST_F(BatchTool, UnknownKindsOfFilesAreMentioned) {
    const ProgramResult result = convert({file("notes.txt"), file("a.mov")});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors,
                MatchesRegex("lumetwin-batch: .*notes.txt is left out: its kind of file is not known\n"));
    EXPECT_THAT(result.output, StartsWith("[1/1] a.mov\n"));
}

TEST_F(BatchTool, WrongUsageIsTwoAndConvertsNothing) {
    const std::string input = file("a.mov");
    const std::string output = folder / "out";
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{}, "no input: name files, or one folder"},
        {{input}, "no output folder: name one with --output"},
        {{"--output", output}, "no input: name files, or one folder"},
        {{"--bogus", "--output", output, input}, "unknown option --bogus"},
        {{"--output", folder / "gone", input}, "the output folder does not exist: " + (folder / "gone").string()},
        {{"--output", input, input}, "the output folder does not exist: " + input},
        {{"--output", output, input + "x"}, input + "x: No such file or directory"},
        {{"--output", output, input, folder / "out"},
         "inputs are files or one folder: " + (folder / "out").string() + " is a folder"},
        {{"inspect"}, "no file to inspect"},
        {{"inspect", "--output", output, input}, "unknown option --output of inspect"},
    };
    for (const auto &[arguments, complaint] : cases) {
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << complaint;
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.errors, "lumetwin-batch: " + complaint + "\nTry 'lumetwin-batch --help'.\n");
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder / "out"));
}

TEST_F(BatchTool, HelpAndVersionNeedNothingElse) {
    const ProgramResult help = run({"--bogus", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, StartsWith("Usage: lumetwin-batch"));
    EXPECT_EQ(run({"-h"}).output, help.output);
    const ProgramResult version = runProgram({LUMETWIN_BATCH, "--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.output,
                testing::StartsWith("lumetwin-batch " LUMETWIN_VERSION
                                    "\nFiles are worked on in a process that is confined by: system calls,"));
}

TEST_F(BatchTool, UsesTheLanguageOfTheLocale) {
    setenv("LC_ALL", "ja_JP.UTF-8", 1);
    const ProgramResult result = convert({file("a.mov")});
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_THAT(result.output, HasSubstr("変換済み：1 件、スキップ：0 件、失敗：0 件"));
}

TEST_F(BatchTool, FolderNamedLikeAVideoAmongFilesFailsAlone) {
    std::filesystem::create_directory(folder / "in/x.mov");
    const ProgramResult result = convert({"--direction", "sbsToSpatial", folder / "in/x.mov", file("plain.mov")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("  x.mov: x.mov is a folder, not a file.\n"));
    EXPECT_THAT(result.output, HasSubstr("plain.mov → plain_spatial.mov\n"));
}

/// Starts the program, waits until it works on a file, and sends a signal. Returns the exit status.
int statusAfterSignal(const std::vector<std::string> &command, int signal, bool ignoredBefore = false) {
    int output[2];
    EXPECT_EQ(pipe2(output, O_CLOEXEC), 0);
    const pid_t program = fork();
    if (program == 0) {
        if (ignoredBefore)
            std::signal(signal, SIG_IGN);
        dup2(output[1], 1);
        dup2(output[1], 2);
        std::vector<char *> arguments;
        for (const std::string &argument : command)
            arguments.push_back(const_cast<char *>(argument.c_str()));
        arguments.push_back(nullptr);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    close(output[1]);
    std::string written;
    char buffer[256];
    bool sent = false;
    for (ssize_t count; (count = read(output[0], buffer, sizeof buffer)) > 0;) {
        written.append(buffer, static_cast<std::size_t>(count));
        if (!sent && written.find("slow.mov") != std::string::npos) {
            sent = true;
            kill(program, signal);
            if (ignoredBefore)
                kill(program, SIGTERM);
        }
    }
    close(output[0]);
    int status = 0;
    waitpid(program, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

TEST_F(BatchTool, EveryTerminationSignalStopsCleanly) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        EXPECT_EQ(statusAfterSignal({ACTED_BATCH, "--output", folder / "out", file("slow.mov")}, signal), 130)
            << signal;
}

TEST_F(BatchTool, StoppedRunWritesItsReport) {
    const std::string report = folder / "report.json";
    ASSERT_EQ(statusAfterSignal({ACTED_BATCH, "--report", report, "--output", folder / "out", file("a.mov"),
                                 file("slow.mov"), file("z.mov")},
                                SIGINT),
              130);
    const auto bytes = readFile(report);
    const auto document = nlohmann::json::parse(bytes.begin(), bytes.end());
    EXPECT_EQ(document["stopped"], true);
    EXPECT_EQ(document["exitStatus"], 130);
    EXPECT_EQ(document["message"], "Stopped. Files that were already finished are kept.");
    EXPECT_EQ(document["files"][0]["state"], "converted");
    EXPECT_EQ(document["files"][1]["state"], "cancelled");
    EXPECT_EQ(document["files"][1]["frames"]["written"], 8);
    EXPECT_EQ(document["files"][1]["output"], nullptr);
    EXPECT_EQ(document["files"][2]["state"], "notReached");
    EXPECT_EQ(document["totals"]["cancelled"], 1);
    EXPECT_EQ(document["totals"]["notReached"], 1);
}

TEST_F(BatchTool, SignalThatWasIgnoredStaysIgnored) {
    // If SIGHUP counted, the SIGTERM after it would be the second signal, which kills.
    EXPECT_EQ(statusAfterSignal({ACTED_BATCH, "--output", folder / "out", file("slow.mov")}, SIGHUP, true), 130);
}

} // namespace
} // namespace lumetwin::test
