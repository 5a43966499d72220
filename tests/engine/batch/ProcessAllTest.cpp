// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ConversionInput.h"
#include "engine/texts/Texts.h"
#include "media/InputFile.h"
#include "tests/engine/batch/BatchRun.h"
#include "tests/support/Paths.h"

#include <gmock/gmock.h>

namespace lumetwin::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using ProcessAll = BatchRun;

TEST_F(ProcessAll, FolderListsVisibleMediaFilesUpperCaseFirst) {
    for (const char *name : {"b.heic", "notes.txt", ".x.mov", "A.MOV"})
        file(name);
    useFolder();
    run();
    EXPECT_THAT(progress, ElementsAre(Progress{0, 2, "A.MOV"}, Progress{1, 2, "b.heic"}));
}

TEST_F(ProcessAll, FolderIsNotSearchedDeeper) {
    std::filesystem::create_directory(input / "trip");
    file("trip/deep.mov");
    file("top.mov");
    useFolder();
    run();
    EXPECT_THAT(progress, ElementsAre(Progress{0, 1, "top.mov"}));
}

TEST_F(ProcessAll, FilesThatTheUserLeftOutAreNoPartOfTheRun) {
    file("a.mov");
    settings->leftOut = {file("b.mov")};
    useFolder();
    run();
    EXPECT_THAT(progress, ElementsAre(Progress{0, 1, "a.mov"}));
}

TEST_F(ProcessAll, NamesAreSortedPlainly) {
    settings->inputFiles = {file("IMG_9.heic"), file("a.mov"), file("IMG_10.heic"), file("B.mov"), file("é.mov")};
    run();
    std::vector<std::string> names;
    for (const Progress &seen : progress)
        names.push_back(seen.fileName);
    EXPECT_THAT(names, ElementsAre("B.mov", "IMG_10.heic", "IMG_9.heic", "a.mov", "é.mov"));
}

TEST_F(ProcessAll, EqualNamesKeepTheirOrder) {
    std::filesystem::create_directory(input / "1");
    std::filesystem::create_directory(input / "2");
    settings->direction = ConversionDirection::sbsToSpatial;
    settings->inputFiles = {file("2/x.mp4"), file("1/x.mp4"), file("2/w.mp4")};
    run();
    EXPECT_THAT(sources, ElementsAre(input / "2/w.mp4", input / "2/x.mp4", input / "1/x.mp4"));
    EXPECT_THAT(*settings->inputFiles, ElementsAre(input / "2/x.mp4", input / "1/x.mp4", input / "2/w.mp4"))
        << "the settings are only read";
}

TEST_F(ProcessAll, ChosenFilesGoBeforeTheFolder) {
    file("folder.mov");
    settings->inputFiles = {file("chosen.mov")};
    useFolder();
    run();
    EXPECT_THAT(progress, ElementsAre(Progress{0, 1, "chosen.mov"}));
}

TEST_F(ProcessAll, ChosenHiddenFileIsConverted) {
    settings->direction = ConversionDirection::sbsToSpatial;
    settings->inputFiles = {file(".hidden.mov")};
    run();
    EXPECT_THAT(calls, ElementsAre("videoToSpatial .hidden.mov .hidden_spatial.mov"));
}

TEST_F(ProcessAll, UnsupportedFilesAreInvisible) {
    settings->inputFiles = {file("notes.txt"), file("movie"), file("x.mov.zip"), file("mov")};
    run();
    EXPECT_THAT(progress, IsEmpty());
    EXPECT_THAT(skips, IsEmpty());
    EXPECT_THAT(completions, ElementsAre(Completion{false, text("error.no.media.files")}));
}

TEST_F(ProcessAll, EmptyListAndEmptyFolderHaveNoMediaFiles) {
    settings->inputFiles.emplace();
    run();
    settings->inputFiles.reset();
    useFolder();
    run();
    const Completion nothing{false, text("error.no.media.files")};
    EXPECT_THAT(completions, ElementsAre(nothing, nothing));
}

TEST_F(ProcessAll, EachKindAndDirectionHasItsConverter) {
    spatial("v.mov");
    spatial("p.heic");
    useFolder();
    run();
    settings->direction = ConversionDirection::sbsToSpatial;
    spatialNames.clear();
    run();
    EXPECT_THAT(calls, ElementsAre("photoToSBS p.heic p_sbs.jpg", "videoToSBS v.mov v_sbs.mp4",
                                   "imageToSpatial p.heic p_spatial.heic", "videoToSpatial v.mov v_spatial.mov"));
    const Completion two{true, "Converted: 2, failed: 0"};
    EXPECT_THAT(completions, ElementsAre(two, two));
    EXPECT_THAT(converted,
                ElementsAre("p.heic|p_sbs.jpg", "v.mov|v_sbs.mp4", "p.heic|p_spatial.heic", "v.mov|v_spatial.mov"));
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(ProcessAll, WhatIsNotSpatialIsSkippedOnTheWayToSBS) {
    file("p.heic");
    file("v.mov");
    useFolder();
    run();
    const std::string reason = text("status.skipped.not.spatial");
    EXPECT_THAT(skips, ElementsAre(Skip{"p.heic", reason}, Skip{"v.mov", reason}));
    EXPECT_THAT(log,
                ElementsAre("[VP] \u23ED skip (not spatial photo) p.heic", "[VP] \u23ED skip (not spatial) v.mov"));
    EXPECT_THAT(progress, ElementsAre(Progress{0, 2, "p.heic"}, Progress{1, 2, "v.mov"}));
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_TRUE(std::filesystem::is_empty(output.path()));
    EXPECT_THAT(completions, ElementsAre(Completion{true, "Converted: 0, failed: 0"}));
}

TEST_F(ProcessAll, WhatIsSpatialIsSkippedOnTheWayToSpatial) {
    settings->direction = ConversionDirection::sbsToSpatial;
    spatial("p.heic");
    spatial("v.mov");
    useFolder();
    run();
    const std::string reason = text("status.skipped.spatial");
    EXPECT_THAT(skips, ElementsAre(Skip{"p.heic", reason}, Skip{"v.mov", reason}));
    EXPECT_THAT(log, ElementsAre("[VP] \u23ED skip (spatial photo) p.heic", "[VP] \u23ED skip (spatial video) v.mov"));
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_THAT(completions, ElementsAre(Completion{true, "Converted: 0, failed: 0"}));
}

TEST_F(ProcessAll, EveryVideoExtensionIsAVideo) {
    settings->direction = ConversionDirection::sbsToSpatial;
    for (const char *name : {"clip.avi", "clip.hevc", "clip.mkv"})
        file(name);
    useFolder();
    run();
    EXPECT_THAT(calls,
                ElementsAre("videoToSpatial clip.avi clip_spatial.mov", "videoToSpatial clip.hevc clip_spatial.mov",
                            "videoToSpatial clip.mkv clip_spatial.mov"));
}

TEST_F(ProcessAll, EveryFileIsAnnouncedWhateverBecomesOfIt) {
    spatial("a.mov");
    file("b.mov");
    spatial("c.mov");
    onConvert("c.mov", [](const ConversionControl *) { throw std::runtime_error("no luck"); });
    useFolder();
    run();
    EXPECT_THAT(progress, ElementsAre(Progress{0, 3, "a.mov"}, Progress{1, 3, "b.mov"}, Progress{2, 3, "c.mov"}));
    EXPECT_THAT(completions, ElementsAre(Completion{false, "Converted: 1, failed: 1"}));
}

TEST_F(ProcessAll, FrameProgressAndWarningsPass) {
    spatial("v.mov");
    onConvert("v.mov", [](const ConversionControl *control) {
        ASSERT_TRUE(control);
        control->onFrameProgress(0, 20);
        control->onFrameProgress(8, 20);
        EXPECT_FALSE(control->cancelled());
    });
    nextOutcome.warnings = {{WarningKind::withoutSound, {std::string("it is encrypted")}},
                            {WarningKind::chaptersLeft, {std::int64_t{3}}}};
    useFolder();
    run();
    EXPECT_THAT(frames, ElementsAre(std::pair(0, 20), std::pair(8, 20)));
    EXPECT_THAT(log, ElementsAre("[VP] ⚠️ v.mov: The video is written without sound (it is encrypted).",
                                 "[VP] ℹ️ v.mov: Chapters left out: 3"));
}

TEST_F(ProcessAll, ExistingOutputIsNoObstacle) {
    spatial("v.mov");
    writeFile(output / "v_sbs.mp4", std::string("older"));
    useFolder();
    run();
    EXPECT_EQ(readFile(output / "v_sbs.mp4").size(), std::string("converted").size());
}

TEST_F(ProcessAll, RunsWithoutCallbacks) {
    spatial("v.mov");
    file("w.mov");
    const std::string printed = [&] {
        testing::internal::CaptureStdout();
        auto operations = MediaOperations{
            .look =
                [](const media::InputFile &from) {
                    MediaFacts facts;
                    facts.isSpatial = from.path().filename() == "v.mov";
                    return facts;
                },
            .lookClosely = {},
            .examine = {},
            .measure = {},
            .convertSpatialVideoToSBS = [](auto &&...) -> Outcome { throw std::runtime_error("no luck"); },
            .convertSBSVideoToSpatial = {},
            .convertSpatialPhotoToSBS = {},
            .convertSBSImageToSpatial = {},
        };
        useFolder();
        VideoProcessor(settings, SystemVersion::current(), operations).processAll();
        return testing::internal::GetCapturedStdout();
    }();
    EXPECT_EQ(printed, "[VP] ❌ v.mov: no luck\n[VP] ⏭ skip (not spatial) w.mov\n");
}

TEST_F(ProcessAll, StrangeNamesCannotBreakTheLog) {
    file("a\nb\x1b[2J.mov");
    file("c\xff.mov");
    useFolder();
    run();
    EXPECT_THAT(
        log, ElementsAre("[VP] ⏭ skip (not spatial) a\uFFFDb\uFFFD[2J.mov", "[VP] ⏭ skip (not spatial) c\uFFFD.mov"));
    EXPECT_EQ(progress.at(0).fileName, "a\nb\x1b[2J.mov") << "callbacks get the name as it is";
}

TEST_F(ProcessAll, MessagesFollowTheLanguage) {
    setTextLocale("ja");
    file("v.mov");
    useFolder();
    run();
    EXPECT_THAT(skips, ElementsAre(Skip{"v.mov", "スキップ：空間メディアではありません"}));
    EXPECT_THAT(completions, ElementsAre(Completion{true, "変換済み：0 件、失敗：0 件"}));
}

TEST_F(ProcessAll, OlderSystemsDoNotWriteSpatialVideo) {
    settings->direction = ConversionDirection::sbsToSpatial;
    file("p.jpg");
    file("v.mp4");
    useFolder();
    run({14, 3, 9});
    EXPECT_THAT(calls, ElementsAre("imageToSpatial p.jpg p_spatial.heic"));
    const std::string reason = text("error.macos14.required");
    EXPECT_THAT(log, ElementsAre("[VP] ❌ v.mp4: Error Domain=VideoProcessor Code=-1 \"" + reason + "\""));
    EXPECT_THAT(failures, ElementsAre("v.mp4|" + reason));
    EXPECT_THAT(completions, ElementsAre(Completion{false, "Converted: 1, failed: 1"}));
    calls.clear();
    run({14, 4, 0});
    EXPECT_THAT(calls, ElementsAre("imageToSpatial p.jpg p_spatial.heic", "videoToSpatial v.mp4 v_spatial.mov"));
}

TEST_F(ProcessAll, OlderSystemsStillMakeSBSVideo) {
    spatial("v.mov");
    useFolder();
    run({14, 0, 0});
    EXPECT_THAT(calls, ElementsAre("videoToSBS v.mov v_sbs.mp4"));
}

} // namespace
} // namespace lumetwin::test
