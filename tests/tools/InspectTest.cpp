// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/StereoScenes.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>
#include <unistd.h>

namespace lumetwin::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class Inspect : public testing::Test {
protected:
    Inspect() { setenv("LC_ALL", "C.UTF-8", 1); }

    ProgramResult inspect(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {LUMETWIN_BATCH, "inspect"});
        return runProgram(arguments);
    }

    TemporaryFolder folder;
};

TEST_F(Inspect, FilesWithoutMediaAreNotSpatial) {
    for (const char *name : {"empty.mov", "text.heic", "notes.txt"}) {
        writeFile(folder / name, std::string(name[0] == 'e' ? "" : "just words"));
        const ProgramResult result = inspect({folder / name});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.output, (folder / name).string() + ": not spatial\n");
        EXPECT_EQ(result.errors, "");
    }
}

TEST_F(Inspect, FilesThatCannotBeReadHaveFailed) {
    writeFile(folder / "a.mov", std::string());
    const ProgramResult result = inspect({folder / "gone.mov", folder / "a.mov", folder.path()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, (folder / "a.mov").string() + ": not spatial\n");
    EXPECT_EQ(result.errors, "lumetwin-batch: " + (folder / "gone.mov").string() +
                                 ": No such file or directory\nlumetwin-batch: " + folder.path().string() +
                                 ": Is a directory\n");
}

TEST_F(Inspect, AnOutputThatCannotBeWrittenIsAFailure) {
    writeFile(folder / "a.mov", std::string());
    for (const char *format : {"", " --json"}) {
        const ProgramResult result =
            runProgram({"sh", "-c", std::string(R"(exec "$0" inspect "$1")") + format + " >/dev/full", LUMETWIN_BATCH,
                        folder / "a.mov"});
        EXPECT_EQ(result.status, 1) << format;
        EXPECT_THAT(result.errors, HasSubstr("the output cannot be written: No space left on device")) << format;
    }
}

TEST_F(Inspect, DoesNotWaitForPipes) {
    ASSERT_EQ(mkfifo((folder / "a.mov").c_str(), 0600), 0);
    ASSERT_EQ(mkfifo((folder / "a.png").c_str(), 0600), 0);
    const ProgramResult result = inspect({folder / "a.mov", folder / "a.png"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "lumetwin-batch: " + (folder / "a.mov").string() + ": Not a regular file\n" +
                                 "lumetwin-batch: " + (folder / "a.png").string() + ": Not a regular file\n");
}

TEST_F(Inspect, UnreadableFileIsReportedWithTheReason) {
    writeFile(folder / "a.mov", std::string());
    std::filesystem::permissions(folder / "a.mov", std::filesystem::perms::none);
    const ProgramResult result = runProgramAsUser({LUMETWIN_BATCH, "inspect", folder / "a.mov"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, EndsWith(": Permission denied\n"));
}

TEST_F(Inspect, JsonIsAnArrayWithAnObjectForEachFile) {
    const std::string name = folder / "a \"quoted\\\" name\n\xff.mov";
    writeFile(name, std::string());
    const ProgramResult result = inspect({"--json", name, folder / "gone.heic"});
    EXPECT_EQ(result.status, 1);
    const ProgramResult judged = runProgram({"python3", "-c",
                                             "import json, sys\n"
                                             "first, second = json.loads(sys.argv[1])\n"
                                             "print(first['file'].split('/')[-1].encode('unicode_escape').decode(), "
                                             "first['kind'], first['spatial'], first['stereoBaseline'], "
                                             "first['projection'], second['error'])",
                                             result.output});
    EXPECT_EQ(judged.output, "a \"quoted\\\\\" name\\n\\ufffd.mov video False None None No such file or directory\n")
        << result.output << judged.errors;
}

TEST_F(Inspect, TellsWhatThePictureLooksLike) {
    const std::string photo = folder / "a.jpg";
    writePicture(besideEachOther(drawnEyes({.far = 3, .near = -0.5, .things = 3})), photo);
    const ProgramResult result = inspect({photo});
    EXPECT_THAT(result.output, HasSubstr("  Disparity in the picture: near -"));
    EXPECT_THAT(result.output, HasSubstr("  Warning: Its far parts are 3.0% of the width behind the screen."));
    const nlohmann::json picture = nlohmann::json::parse(inspect({"--json", photo}).output)[0]["picture"];
    EXPECT_EQ(picture["seen"], "sideBySide");
    EXPECT_EQ(picture["level"], true);
    EXPECT_EQ(picture["flat"], false);
    EXPECT_EQ(picture["probablySwapped"], false);
    EXPECT_NEAR(picture["disparity"]["farthest"].get<double>(), 3, 0.1);
    EXPECT_EQ(picture["warnings"], nlohmann::json::array({"tooFarBehind"}));
}

TEST_F(Inspect, NamesTheLayoutThatThePictureHas) {
    const std::string photo = folder / "a.png";
    writePicture(aboveEachOther(drawnEyes()), photo);
    EXPECT_THAT(inspect({photo}).output, HasSubstr("  Warning: Its picture looks like: over-under."));
}

TEST_F(Inspect, RealSpatialMovie) {
    const auto samples = sampleMedia();
    if (!samples)
        GTEST_SKIP() << "the folder of sample media is not there";
    const std::string movie = *samples / "spatial-video/water_180_mvhevc_5frames.mov";
    EXPECT_EQ(inspect({movie}).output, movie + ": spatial video\n"
                                               "  Horizontal field of view: 64.00°\n"
                                               "  Camera baseline: 19.240 mm\n"
                                               "  Disparity adjustment: 2.00 %\n"
                                               "  Views: left, right\n"
                                               "  Projection: rect\n");
    EXPECT_EQ(nlohmann::json::parse(inspect({"--json", movie}).output),
              nlohmann::json::array({{{"file", movie},
                                      {"kind", "video"},
                                      {"spatial", true},
                                      {"horizontalFOV", 64},
                                      {"stereoBaseline", 19.24},
                                      {"disparityAdjustment", 2},
                                      {"layout", nullptr},
                                      {"otherLayout", nullptr},
                                      {"picture", nullptr},
                                      {"leftEye", true},
                                      {"rightEye", true},
                                      {"heroEye", nullptr},
                                      {"layout", nullptr},
                                      {"otherLayout", nullptr},
                                      {"picture", nullptr},
                                      {"projection", "rect"},
                                      {"multilayer", true}}}));
}

TEST_F(Inspect, RealSpatialPhoto) {
    const auto samples = sampleMedia();
    if (!samples)
        GTEST_SKIP() << "the folder of sample media is not there";
    const std::string photo = *samples / "spatial-photo/spatial_photo.heic";
    const std::string words = inspect({photo}).output;
    EXPECT_THAT(words, StartsWith(photo + ": spatial photo\n  Horizontal field of view: 80.0"));
    EXPECT_THAT(words, HasSubstr("  Camera baseline: 63.807 mm\n"));
    EXPECT_THAT(words, HasSubstr("  Disparity adjustment: 2.93 %\n"));
}

TEST_F(Inspect, RealOrdinaryMediaIsNotSpatial) {
    const auto samples = sampleMedia();
    if (!samples)
        GTEST_SKIP() << "the folder of sample media is not there";
    for (const char *kind : {"ordinary", "broken", "sbs-video", "sbs-image"})
        for (const auto &entry : std::filesystem::directory_iterator(*samples / kind)) {
            const ProgramResult result = inspect({entry.path().string()});
            EXPECT_EQ(result.status, 0);
            EXPECT_THAT(result.output, StartsWith(entry.path().string() + ": not spatial\n"));
        }
}

} // namespace
} // namespace lumetwin::test
