// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"
#include "tests/engine/batch/BatchRun.h"

#include <gmock/gmock.h>

#include <new>

namespace lumetwin::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Failure = BatchRun;

TEST_F(Failure, NoOutputFolder) {
    file("v.mov");
    useFolder();
    settings->outputFolderURL.reset();
    run();
    EXPECT_THAT(completions, ElementsAre(Completion{false, text("error.no.folder")}));
    EXPECT_THAT(progress, IsEmpty());
}

TEST_F(Failure, NoInput) {
    run();
    EXPECT_THAT(completions, ElementsAre(Completion{false, text("error.no.folder")}));
}

TEST_F(Failure, FolderThatIsNotThere) {
    settings->inputFolderURL = input / "gone";
    run();
    EXPECT_THAT(completions, ElementsAre(Completion{false, formatted("error.read.input.folder",
                                                                     std::string("No such file or directory"))}));
    EXPECT_THAT(progress, IsEmpty());
}

TEST_F(Failure, FolderThatIsAFile) {
    settings->inputFolderURL = file("v.mov");
    run();
    EXPECT_THAT(completions, ElementsAre(Completion{false, "The input folder cannot be read: Not a directory"}));
}

TEST_F(Failure, WithoutMemoryBetweenFilesTheRunEndsWithThatReason) {
    spatial("1.mov");
    onConvert("1.mov", [this](const ConversionControl *) {
        processor->onResult = [](const FileResult &) { throw std::bad_alloc(); };
    });
    useFolder();
    run();
    EXPECT_THAT(completions, ElementsAre(Completion{false, "There is not enough memory."}));
}

TEST_F(Failure, OneBadFileDoesNotStopTheOthers) {
    for (const char *name : {"1.mov", "2.mov", "3.mov", "4.mov", "5.mov"})
        spatial(name);
    onConvert("3.mov", [](const ConversionControl *) { throw processorError("broken"); });
    useFolder();
    run();
    EXPECT_EQ(calls.size(), 5u);
    EXPECT_THAT(log, ElementsAre("[VP] ❌ 3.mov: Error Domain=VideoProcessor Code=-1 \"broken\""));
    EXPECT_THAT(failures, ElementsAre("3.mov|broken"));
    EXPECT_EQ(converted.size(), 4u);
    EXPECT_THAT(completions, ElementsAre(Completion{false, "Converted: 4, failed: 1"}));
}

TEST_F(Failure, PhotosFailLikeVideos) {
    settings->direction = ConversionDirection::sbsToSpatial;
    file("a.jpg");
    file("b.png");
    onConvert("a.jpg", [](const ConversionControl *) { throw processorError("Cannot open photo: a.jpg"); });
    useFolder();
    run();
    EXPECT_THAT(failures, ElementsAre("a.jpg|Cannot open photo: a.jpg"));
    EXPECT_THAT(completions, ElementsAre(Completion{false, "Converted: 1, failed: 1"}));
}

TEST_F(Failure, ErrorsOfAnyKindStayWithTheirFile) {
    for (const char *name : {"1.mov", "2.mov", "3.mov"})
        spatial(name);
    onConvert("1.mov", [](const ConversionControl *) { throw std::bad_alloc(); });
    onConvert("2.mov", [](const ConversionControl *) { throw 42; });
    useFolder();
    run();
    EXPECT_THAT(failures, ElementsAre("1.mov|There is not enough memory.", "2.mov|unknown error"));
    EXPECT_THAT(log, ElementsAre("[VP] ❌ 1.mov: There is not enough memory.", "[VP] ❌ 2.mov: unknown error"));
    EXPECT_THAT(completions, ElementsAre(Completion{false, "Converted: 1, failed: 2"}));
}

TEST_F(Failure, MessageOfSeveralLinesStaysOneLogLine) {
    spatial("v.mov");
    onConvert("v.mov", [](const ConversionControl *) { throw std::runtime_error("one\ntwo"); });
    useFolder();
    run();
    EXPECT_THAT(log, ElementsAre("[VP] ❌ v.mov: one\uFFFDtwo"));
}

TEST_F(Failure, FolderNamedLikeAVideo) {
    std::filesystem::create_directory(input / "x.mov");
    useFolder();
    run();
    EXPECT_THAT(skips, ElementsAre(Skip{"x.mov", text("status.skipped.not.spatial")}));
    settings->direction = ConversionDirection::sbsToSpatial;
    run();
    EXPECT_THAT(failures, ElementsAre("x.mov|x.mov is a folder, not a file."));
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(Failure, FolderThatIsChosenAsAFileKeepsItsName) {
    std::filesystem::create_directory(input / "x.mov");
    settings->direction = ConversionDirection::sbsToSpatial;
    settings->inputFiles = {std::filesystem::path((input / "x.mov").string() + "/")};
    run();
    EXPECT_THAT(progress, ElementsAre(Progress{0, 1, "x.mov"}));
    EXPECT_THAT(failures, ElementsAre("x.mov|x.mov is a folder, not a file."));
}

TEST_F(Failure, OutputFolderThatVanishes) {
    spatial("1.mov");
    spatial("2.mov");
    spatial("3.mov");
    const std::filesystem::path folder = output / "results";
    std::filesystem::create_directory(folder);
    settings->outputFolderURL = folder;
    onConvert("1.mov", [&](const ConversionControl *) { std::filesystem::remove_all(folder); });
    useFolder();
    run();
    EXPECT_EQ(calls.size(), 1u);
    EXPECT_THAT(failures, ElementsAre("1.mov|Cannot rename the partial file to 1_sbs.mp4: No such file or directory",
                                      "2.mov|The output folder results does not exist.",
                                      "3.mov|The output folder results does not exist."));
}

TEST_F(Failure, OutputThatIsAnInputIsNotWritten) {
    spatial("a.mov");
    spatial("a_sbs.mp4");
    settings->outputFolderURL = input.path();
    useFolder();
    run();
    EXPECT_THAT(failures, ElementsAre("a.mov|Converting a.mov would overwrite a_sbs.mp4, which is also an input."));
    EXPECT_THAT(calls, ElementsAre("videoToSBS a_sbs.mp4 a_sbs_sbs.mp4"));
    EXPECT_EQ(readFile(input / "a_sbs.mp4").size(), std::string("source").size());
    EXPECT_THAT(completions, ElementsAre(Completion{false, "Converted: 1, failed: 1"}));
}

TEST_F(Failure, InputThatTheRunSkipsIsNoObstacle) {
    spatial("a.mov");
    file("a_sbs.mp4");
    settings->outputFolderURL = input.path();
    useFolder();
    run();
    EXPECT_THAT(failures, IsEmpty());
    EXPECT_THAT(calls, ElementsAre("videoToSBS a.mov a_sbs.mp4"));
    EXPECT_EQ(readFile(input / "a_sbs.mp4").size(), std::string("converted").size());
}

TEST_F(Failure, OutputThatIsALinkToItsOwnSourceIsNotWritten) {
    spatial("a.mov");
    std::filesystem::create_symlink(input / "a.mov", output / "a_sbs.mp4");
    useFolder();
    run();
    EXPECT_THAT(failures, ElementsAre("a.mov|Converting a.mov would overwrite a.mov, which is also an input."));
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_EQ(readFile(input / "a.mov").size(), std::string("source").size());
}

TEST_F(Failure, PlaceIsLookedAtBeforeTheWork) {
    spatial("a.mov");
    spatial("b.mov");
    std::filesystem::create_directory(output / "a_sbs.mp4");
    useFolder();
    run();
    EXPECT_THAT(failures, ElementsAre("a.mov|There is a folder of the name a_sbs.mp4."));
    EXPECT_THAT(calls, ElementsAre("videoToSBS b.mov b_sbs.mp4"));
}

TEST_F(Failure, OutputThatIsNoInputOfTheRunMayBeReplaced) {
    spatial("a.mov");
    file("a_sbs.mp4");
    settings->outputFolderURL = input.path();
    settings->inputFiles = {input / "a.mov"};
    run();
    EXPECT_THAT(failures, IsEmpty());
    EXPECT_THAT(calls, ElementsAre("videoToSBS a.mov a_sbs.mp4"));
}

} // namespace
} // namespace lumetwin::test
