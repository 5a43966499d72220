// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the program on media that the media stack's ffmpeg draws.
#include "tests/support/StereoScenes.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <set>
#include <unistd.h>

namespace lumetwin::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class EndToEnd : public testing::Test {
protected:
    EndToEnd() {
        setenv("LC_ALL", "C.UTF-8", 1);
        for (const char *name : {"in", "out", "back"})
            std::filesystem::create_directory(folder / name);
    }

    std::string in(const std::string &name) { return folder / ("in/" + name); }
    std::string out(const std::string &name) { return folder / ("out/" + name); }

    /// Draws a side-by-side clip with a tone: a bright left eye and a dark right eye, 320 × 180 each.
    void drawClip(const std::string &file, const std::vector<std::string> &more = {}) {
        std::vector<std::string> arguments{"-f",
                                           "lavfi",
                                           "-i",
                                           "color=c=0xc0c0c0:size=320x180:rate=30:duration=1",
                                           "-f",
                                           "lavfi",
                                           "-i",
                                           "color=c=0x404040:size=320x180:rate=30:duration=1",
                                           "-f",
                                           "lavfi",
                                           "-i",
                                           "sine=frequency=440:sample_rate=48000:duration=1",
                                           "-filter_complex",
                                           "[0:v][1:v]hstack,format=yuv420p[both]",
                                           "-map",
                                           "[both]",
                                           "-map",
                                           "2:a",
                                           "-c:v",
                                           "libx264",
                                           "-preset",
                                           "veryfast",
                                           "-c:a",
                                           "aac"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        arguments.push_back(file);
        ffmpeg(arguments);
    }

    ProgramResult batch(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), LUMETWIN_BATCH);
        return runProgram(arguments);
    }

    ProgramResult toSpatial(std::vector<std::string> inputs) {
        inputs.insert(inputs.begin(), {"--direction", "sbsToSpatial", "--output", folder / "out"});
        return batch(inputs);
    }

    ProgramResult toSpatialAsUser(const std::string &input) {
        return runProgramAsUser({LUMETWIN_BATCH, "--direction", "sbsToSpatial", "--output", folder / "out", input});
    }

    std::set<std::string> outputs() {
        std::set<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(folder / "out"))
            names.insert(entry.path().filename());
        return names;
    }

    TemporaryFolder folder;
};

TEST_F(EndToEnd, VideoThereAndBackKeepsTheEyesOnTheirSides) {
    drawClip(in("clip.mp4"));
    const ProgramResult there = toSpatial(
        {"--horizontal-fov", "71.5", "--stereo-baseline", "63.8", "--disparity-adjustment", "-1.25", in("clip.mp4")});
    ASSERT_EQ(there.status, 0) << there.output;
    EXPECT_EQ(outputs(), std::set<std::string>{"clip_spatial.mov"});
    EXPECT_EQ(batch({"inspect", out("clip_spatial.mov")}).output, out("clip_spatial.mov") +
                                                                      ": spatial video\n"
                                                                      "  Horizontal field of view: 71.50°\n"
                                                                      "  Camera baseline: 63.800 mm\n"
                                                                      "  Disparity adjustment: -1.25 %\n"
                                                                      "  Views: left, right\n"
                                                                      "  Hero eye: left\n"
                                                                      "  Projection: rect\n");
    const ProgramResult back = batch({"--output", folder / "back", folder / "out"});
    ASSERT_EQ(back.status, 0) << back.output;
    const std::filesystem::path result = folder / "back/clip_spatial_sbs.mp4";
    const LumaFrames frames = decodeLuma(result);
    EXPECT_EQ(frames.width, 640);
    EXPECT_EQ(frames.height, 180);
    ASSERT_EQ(frames.frames.size(), 30u);
    for (const std::size_t frame : {0, 15, 29}) {
        EXPECT_GT(frames.mean(frame, 0, 0, 320, 180), 150) << "the left eye is bright";
        EXPECT_LT(frames.mean(frame, 320, 0, 320, 180), 100) << "the right eye is dark";
    }
    EXPECT_THAT(ffprobe(result, "stream=codec_name"), HasSubstr("codec_name=aac"));
}

TEST_F(EndToEnd, PhotoThereAndBackKeepsTheEyesOnTheirSides) {
    drawClip(in("clip.mp4"));
    ffmpeg({"-i", in("clip.mp4"), "-frames:v", "1", in("photo.png")});
    const ProgramResult there = toSpatial(
        {"--horizontal-fov", "70", "--stereo-baseline", "64", "--disparity-adjustment", "3", in("photo.png")});
    ASSERT_EQ(there.status, 0) << there.output;
    EXPECT_EQ(outputs(), std::set<std::string>{"photo_spatial.heic"});
    const std::string words = batch({"inspect", out("photo_spatial.heic")}).output;
    EXPECT_THAT(words, HasSubstr(": spatial photo\n  Horizontal field of view: 70.0"));
    EXPECT_THAT(words, HasSubstr("  Camera baseline: 64.000 mm\n  Disparity adjustment: 3.00 %\n"));
    const ProgramResult back = batch({"--output", folder / "back", "--sbs-photo-output-format", "png", folder / "out"});
    ASSERT_EQ(back.status, 0) << back.output;
    systemFfmpeg({"-i", folder / "back/photo_spatial_sbs.png", "-pix_fmt", "yuv444p", folder / "back/photo.y4m"});
    const LumaFrames picture = decodeLuma(folder / "back/photo.y4m");
    EXPECT_EQ(picture.width, 640);
    EXPECT_EQ(picture.height, 180);
    EXPECT_GT(picture.mean(0, 0, 0, 320, 180), 150) << "the left eye is bright";
    EXPECT_LT(picture.mean(0, 320, 0, 320, 180), 100) << "the right eye is dark";
}

TEST_F(EndToEnd, BadPhotosFailAloneWithTheirReason) {
    writeFile(in("empty.jpg"), std::string());
    writeFile(in("text.png"), std::string("just words\n"));
    writeFile(in("text.heic"), std::string("just words\n"));
    const ProgramResult result = toSpatial({folder / "in"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(outputs().empty());
    EXPECT_THAT(result.output, HasSubstr("Converted: 0, skipped: 0, failed: 3"));
    const std::string unknown = "not an image of a known kind";
    for (const auto &[name, cause] : {std::pair<std::string, std::string>{"empty.jpg", "The file is empty"},
                                      {"text.png", unknown},
                                      {"text.heic", unknown}})
        EXPECT_THAT(result.output, HasSubstr("\n  " + name + ": Cannot open photo: " + name + " (" + cause + ")\n"));
}

TEST_F(EndToEnd, OptionsReachTheConversion) {
    drawClip(in("clip.mp4"));
    ASSERT_EQ(toSpatial({"--swap-left-right", "--no-copy-audio", in("clip.mp4")}).status, 0);
    const ProgramResult back =
        batch({"--output", folder / "back", "--sbs-output-format", "movHEVC", "--half-width", "--enable-resize",
               "--resize-width", "160", "--resize-height", "96", "--resize-mode", "stretch", folder / "out"});
    ASSERT_EQ(back.status, 0) << back.output;
    const std::filesystem::path result = folder / "back/clip_spatial_sbs.mov";
    const LumaFrames frames = decodeLuma(result);
    EXPECT_EQ(frames.width, 160);
    EXPECT_EQ(frames.height, 96);
    EXPECT_LT(frames.mean(0, 0, 0, 80, 96), 100);
    EXPECT_GT(frames.mean(0, 80, 0, 80, 96), 150);
    const std::string streams = ffprobe(result, "stream=codec_name");
    EXPECT_THAT(streams, HasSubstr("codec_name=hevc"));
    EXPECT_THAT(streams, Not(HasSubstr("codec_name=aac")));
}

TEST_F(EndToEnd, BadInputsFailAloneWithTheirReason) {
    drawClip(in("good.mp4"));
    std::vector<std::uint8_t> bytes = readFile(in("good.mp4"));
    bytes.resize(2000);
    writeFile(in("cut.mp4"), bytes); // the headers are at the end, so they are cut off
    writeFile(in("empty.mov"), std::string());
    writeFile(in("text.mov"), std::string("just words\n"));
    std::filesystem::create_directory(in("folder.mov"));
    ffmpeg({"-f", "lavfi", "-i", "sine=frequency=440:duration=1", "-c:a", "aac", "-f", "mp4", in("sound.m4v")});
    const ProgramResult result = toSpatial({folder / "in"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(outputs(), std::set<std::string>{"good_spatial.mov"});
    EXPECT_THAT(result.output, HasSubstr("good.mp4 → good_spatial.mov\n"));
    EXPECT_THAT(result.output, HasSubstr("Converted: 1, skipped: 0, failed: 5"));
    for (const char *name : {"cut.mp4", "empty.mov", "text.mov"})
        EXPECT_THAT(result.output, HasSubstr("\n  " + std::string(name) + ": Cannot open " + name + ": "));
    EXPECT_THAT(result.output, HasSubstr("\n  sound.m4v: The file has no video track.\n"));
    EXPECT_THAT(result.output, HasSubstr("\n  folder.mov: folder.mov is a folder, not a file.\n"));
    EXPECT_THAT(result.output,
                HasSubstr("[VP] ❌ sound.m4v: Error Domain=VideoProcessor Code=-1 \"The file has no video track.\"\n"));
}

TEST_F(EndToEnd, BadInputsAreNotSpatial) {
    writeFile(in("empty.mov"), std::string());
    writeFile(in("text.mkv"), std::string("just words\n"));
    const ProgramResult result = batch({"--output", folder / "out", folder / "in"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("Converted: 0, skipped: 2, failed: 0"));
    EXPECT_TRUE(outputs().empty());
}

TEST_F(EndToEnd, TextNamedLikeAVideoIsNotSpatialAndFailsAsSideBySide) {
    const std::vector<std::string> names{"clip.avi", "clip.hevc", "clip.m4v", "clip.mkv", "clip.mov", "clip.mp4"};
    for (const std::string &name : names)
        writeFile(in(name), std::string("just words, not a movie, whatever the name of the file says\n"));
    const ProgramResult skipped = batch({"--output", folder / "out", folder / "in"});
    EXPECT_EQ(skipped.status, 0);
    EXPECT_THAT(skipped.output, HasSubstr("Converted: 0, skipped: 6, failed: 0"));
    const ProgramResult failed = toSpatial({folder / "in"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_THAT(failed.output, HasSubstr("Converted: 0, skipped: 0, failed: 6"));
    for (const std::string &name : names)
        EXPECT_THAT(failed.output, HasSubstr("\n  " + name + ": Cannot open " + name + ": "));
    EXPECT_TRUE(outputs().empty());
}

TEST_F(EndToEnd, EncryptedSpatialVideoFailsAlone) {
    drawClip(in("clip.mp4"));
    ASSERT_EQ(toSpatial({in("clip.mp4")}).status, 0);
    ffmpeg({"-i", out("clip_spatial.mov"), "-c", "copy", "-strict", "unofficial", "-encryption_scheme", "cenc-aes-ctr",
            "-encryption_key", "00112233445566778899aabbccddeeff", "-encryption_kid",
            "112233445566778899aabbccddeeff00", (folder / "a_secret.mp4").string()});
    const ProgramResult result = batch({"--output", folder / "back", folder / "a_secret.mp4", out("clip_spatial.mov")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("Converted: 1, skipped: 0, failed: 1"));
    EXPECT_THAT(result.output, HasSubstr("  a_secret.mp4: Cannot decode a_secret.mp4: the movie is encrypted\n"));
    EXPECT_FALSE(std::filesystem::exists(folder / "back/a_secret_sbs.mp4"));
    EXPECT_TRUE(std::filesystem::exists(folder / "back/clip_spatial_sbs.mp4"));
}

TEST_F(EndToEnd, DamagedDataIsConvertedWithAWarning) {
    drawClip(in("cut.mp4"), {"-movflags", "+faststart"});
    std::vector<std::uint8_t> bytes = readFile(in("cut.mp4"));
    bytes.resize(bytes.size() * 6 / 10);
    writeFile(in("cut.mp4"), bytes);
    const ProgramResult result = toSpatial({in("cut.mp4")});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("cut.mp4 → cut_spatial.mov\n  Warning: The data is damaged or ends early: "));
    EXPECT_THAT(result.output, HasSubstr("Converted: 1 (1 with warnings), skipped: 0, failed: 0"));
    EXPECT_EQ(outputs(), std::set<std::string>{"cut_spatial.mov"});
}

TEST_F(EndToEnd, MessagesForClosedStreamsAreNotWrittenIntoTheOutput) {
    drawClip(in("cut.mp4"), {"-movflags", "+faststart"});
    std::vector<std::uint8_t> bytes = readFile(in("cut.mp4"));
    bytes.resize(bytes.size() * 6 / 10);
    writeFile(in("cut.mp4"), bytes);
    const ProgramResult result =
        runProgram({"sh", "-c", R"(exec "$0" "$@" <&- >&- 2>&-)", LUMETWIN_BATCH, "--direction", "sbsToSpatial",
                    "--output", folder / "out", "--no-copy-audio", in("cut.mp4")});
    EXPECT_EQ(result.status, 0);
    const auto written = readFile(out("cut_spatial.mov"));
    EXPECT_THAT(std::string(written.begin(), written.end()), Not(HasSubstr("cut.mp4")));
}

TEST_F(EndToEnd, OutputNeverReplacesAnInput) {
    drawClip(in("clip.mp4"));
    std::filesystem::copy(in("clip.mp4"), in("clip_spatial.mov"));
    const auto before = readFile(in("clip_spatial.mov"));
    const ProgramResult result = batch({"--direction", "sbsToSpatial", "--output", folder / "in", folder / "in"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(
        result.output,
        HasSubstr("  clip.mp4: Converting clip.mp4 would overwrite clip_spatial.mov, which is also an input.\n"));
    EXPECT_EQ(readFile(in("clip_spatial.mov")), before);
    EXPECT_TRUE(std::filesystem::exists(in("clip_spatial_spatial.mov"))) << "the other file is converted";
}

TEST_F(EndToEnd, FolderCanBeConvertedIntoItselfTwice) {
    drawClip(in("clip.mp4"));
    drawClip(in("other.mp4"));
    const std::vector<std::string> command{"--direction", "sbsToSpatial", "--output", folder / "in", folder / "in"};
    EXPECT_THAT(batch(command).output, HasSubstr("Converted: 2, skipped: 0, failed: 0"));
    const ProgramResult second = batch(command);
    EXPECT_EQ(second.status, 0) << second.output;
    EXPECT_THAT(second.output, HasSubstr("Converted: 2, skipped: 2, failed: 0"));
    std::filesystem::remove(in("other_spatial.mov"));
    std::vector<std::string> third = command;
    third.insert(third.begin(), "--skip-existing");
    EXPECT_THAT(batch(third).output, HasSubstr("[VP] ⏭ skip (up to date) clip.mp4\n"));
    EXPECT_TRUE(std::filesystem::exists(in("other_spatial.mov")));
    EXPECT_THAT(batch(third).output, HasSubstr("Converted: 0, skipped: 2, up to date: 2, failed: 0"));
}

TEST_F(EndToEnd, InputWithoutReadPermissionIsReported) {
    writeFile(in("clip.mp4"), std::string("a secret"));
    std::filesystem::permissions(in("clip.mp4"), std::filesystem::perms::none);
    const ProgramResult result = toSpatialAsUser(in("clip.mp4"));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, EndsWith("  clip.mp4: Cannot open clip.mp4: Permission denied\n"));
}

TEST_F(EndToEnd, InputFolderWithoutReadPermissionIsReported) {
    std::filesystem::permissions(folder / "in", std::filesystem::perms::none);
    const ProgramResult result = toSpatialAsUser(folder / "in");
    std::filesystem::permissions(folder / "in", std::filesystem::perms::all);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "The input folder cannot be read: Permission denied\n");
}

TEST_F(EndToEnd, OutputFolderThatCannotBeWrittenIsReported) {
    drawClip(in("clip.mp4"));
    // Not even root can create files there.
    const ProgramResult result = batch({"--direction", "sbsToSpatial", "--output", "/proc", in("clip.mp4")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("  clip.mp4: Cannot create clip_spatial.mov: "));
}

TEST_F(EndToEnd, FullDiskIsReportedAndTheBatchGoesOn) {
    // A limit for file sizes simulates a full disk.
    drawClip(in("a.mp4"));
    drawClip(in("b.mp4"));
    const ProgramResult result = runProgram({"sh", "-c", "ulimit -f 16; exec \"$@\"", "sh", LUMETWIN_BATCH,
                                             "--direction", "sbsToSpatial", "--output", folder / "out", folder / "in"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("  a.mp4: Cannot write a_spatial.mov: File too large\n"
                                         "  b.mp4: Cannot write b_spatial.mov: File too large\n"));
    EXPECT_EQ(outputs(), (std::set<std::string>{"a_spatial.mov.partial", "b_spatial.mov.partial"}))
        << "what was written so far, and nothing under a finished name";
}

TEST_F(EndToEnd, ADryRunWarnsAndWritesNothing) {
    writePicture(besideEachOther(drawnEyes({.far = 3})), in("a.jpg"));
    const std::string report = folder / "report.json";
    const ProgramResult result = batch({"--dry-run", "--strict", "--direction", "sbsToSpatial", "--report", report,
                                        "--output", folder / "out", in("a.jpg")});
    EXPECT_EQ(result.status, 1) << "there are warnings";
    EXPECT_THAT(result.output, HasSubstr("a.jpg would be converted\n  Warning: Its far parts are 3.0%"));
    EXPECT_THAT(result.output, HasSubstr("Would be converted: 1 (1 with warnings)"));
    EXPECT_TRUE(std::filesystem::is_empty(folder / "out"));
    const nlohmann::json file = nlohmann::json::parse(readFile(report))["files"][0];
    EXPECT_EQ(file["state"], "wouldBeConverted");
    EXPECT_EQ(file["output"], nullptr);
    EXPECT_EQ(file["warnings"][0]["kind"], "tooFarBehind");
    EXPECT_NEAR(file["disparity"]["farthest"].get<double>(), 3, 0.1);
}

TEST_F(EndToEnd, TheDisparityAdjustmentIsChosenFromThePicture) {
    writePicture(besideEachOther(drawnEyes({.far = -0.5, .near = -1})), in("a.jpg"));
    const ProgramResult result = batch(
        {"--disparity-adjustment", "auto", "--direction", "sbsToSpatial", "--output", folder / "out", in("a.jpg")});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("Note: Disparity adjustment, chosen from the picture: 2.5"));
    const std::string json = output({LUMETWIN_BATCH, "inspect", "--json", out("a_spatial.heic")});
    EXPECT_NEAR(nlohmann::json::parse(json)[0]["disparityAdjustment"].get<double>(), 2.5, 0.06);
}

TEST_F(EndToEnd, ThePictureNeverChangesALayout) {
    writePicture(aboveEachOther(drawnEyes({.width = 512, .height = 256})), in("a.png"));
    const ProgramResult result = batch({"--direction", "sbsToSpatial", "--output", folder / "out", in("a.png")});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("Warning: Its picture looks like: over-under."));
    EXPECT_THAT(output({stackProgram("heif-info"), out("a_spatial.heic")}), HasSubstr("256x512")); // side by side
    const ProgramResult quiet =
        batch({"--no-check-stereo", "--direction", "sbsToSpatial", "--output", folder / "out", in("a.png")});
    EXPECT_THAT(quiet.output, Not(HasSubstr("Warning")));
}

} // namespace
} // namespace lumetwin::test
