// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/VideoPackings.h"

#include "tests/support/Drawing.h"
#include "tests/support/MovieFileWriter.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin::media {
namespace {

using Arrangement = StereoPacking::Arrangement;
using test::TemporaryFolder;
using testing::HasSubstr;
using testing::Not;

struct Marked {
    VideoCodec codec;
    Container container;
    StereoPacking packing;
};

constexpr int frameWidth = 96;
constexpr int frameHeight = 64;

/// Long enough for a second random access picture.
void writeMovie(const std::filesystem::path &file, const Marked &marked, int frames = 260) {
    test::MovieFileWriter writer(file, marked.container, {});
    VideoEncoding encoding;
    encoding.codec = marked.codec;
    encoding.width = frameWidth;
    encoding.height = frameHeight;
    encoding.averageBitRate = 200'000;
    encoding.packing = marked.packing;
    writer.addVideo(encoding);
    writer.start(600);
    for (int frame = 0; frame < frames; ++frame)
        writer.append(
            test::drawn(frameWidth, frameHeight, yuv420, [&](int, int x, int y) { return 60 + (x * y + frame) % 90; }),
            frame * 20, 20);
    writer.finishVideo();
    writer.finish();
}

std::vector<Marked> everyMark(const std::vector<Container> &containers = {Container::mpeg4, Container::quickTime}) {
    std::vector<Marked> all;
    for (const VideoCodec codec : {VideoCodec::h264, VideoCodec::hevc})
        for (const Container container : containers)
            for (const Arrangement arrangement : {Arrangement::sideBySide, Arrangement::overUnder})
                for (const bool rightFirst : {false, true})
                    for (const bool isHalf : {false, true})
                        all.push_back({codec, container, {arrangement, rightFirst, isHalf}});
    return all;
}

int count(const std::string &text, const std::string &part) {
    int found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++found;
    return found;
}

/// What the stack's ffmpeg reads in the units of a stream.
std::string unitsOf(const std::filesystem::path &file) {
    return test::runProgram({test::stackProgram("ffmpeg"), "-v", "info", "-i", file.string(), "-c", "copy", "-bsf:v",
                             "trace_headers", "-f", "null", "-"})
        .errors;
}

std::string line(const std::string &text, const std::string &name) {
    const std::size_t at = text.find(name);
    return at == std::string::npos ? std::string() : text.substr(at, text.find('\n', at) - at);
}

TEST(PackingMarks, areReadBack) {
    const TemporaryFolder folder;
    for (const Marked &marked : everyMark()) {
        writeMovie(folder / "out.mov", marked, 5);
        const VideoPackings found = readVideoPackings(InputFile(folder / "out.mov"));
        StereoPacking stream = marked.packing;
        stream.isHalf = stream.isHalf && marked.codec == VideoCodec::hevc;
        EXPECT_EQ(found.stream, stream);
        EXPECT_EQ(found.container, marked.packing.rightEyeFirst ? std::nullopt : std::optional(stream));
        EXPECT_EQ(test::decodeLuma(folder / "out.mov").frames.size(), 5u);
    }
}

TEST(PackingMarks, areInEachRandomAccessPictureForOthersToo) {
    const TemporaryFolder folder;
    for (const VideoCodec codec : {VideoCodec::h264, VideoCodec::hevc})
        for (const bool rightFirst : {false, true}) {
            writeMovie(folder / "out.mp4", {codec, Container::mpeg4, {Arrangement::sideBySide, rightFirst, true}});
            const std::string units = unitsOf(folder / "out.mp4");
            const int keyFrames = count(test::ffprobe(folder / "out.mp4", "packet=flags"), "flags=K");
            EXPECT_GE(keyFrames, 2);
            EXPECT_EQ(count(units, "Frame Packing Arrangement"), keyFrames);
            EXPECT_THAT(line(units, "arrangement_type "), HasSubstr("= 3"));
            EXPECT_THAT(line(units, "content_interpretation_type"), HasSubstr(rightFirst ? "= 2" : "= 1"));
            if (codec == VideoCodec::hevc) {
                EXPECT_THAT(line(units, "upsampled_aspect_ratio_flag"), HasSubstr("= 1"));
            }
        }
}

TEST(PackingMarks, areSeenByOthersInTheContainer) {
    const TemporaryFolder folder;
    for (const Marked &marked : everyMark()) {
        if (marked.packing.rightEyeFirst)
            continue;
        const bool over = marked.packing.arrangement == Arrangement::overUnder;
        writeMovie(folder / "out.mov", marked, 2);
        EXPECT_THAT(test::ffprobe(folder / "out.mov", "stream_side_data=type,inverted"),
                    HasSubstr(over ? "type=top and bottom" : "type=side by side"));
        EXPECT_THAT(test::output({"exiftool", "-Stereoscopic3D", (folder / "out.mov").string()}),
                    HasSubstr(over ? "Top-Bottom" : "Left-Right"));
    }
}

TEST(PackingMarks, leaveTheShownShapeAlone) {
    const TemporaryFolder folder;
    for (const Marked &marked : everyMark()) {
        writeMovie(folder / "out.mov", marked, 2);
        EXPECT_THAT(test::ffprobe(folder / "out.mov", "stream=sample_aspect_ratio"),
                    testing::AnyOf(HasSubstr("=N/A"), HasSubstr("=1:1")));
    }
}

TEST(PackingMarks, ofMatroskaSayEverything) {
    const TemporaryFolder folder;
    for (const Marked &marked : everyMark({Container::matroska})) {
        writeMovie(folder / "out.mkv", marked, 5);
        const VideoPackings found = readVideoPackings(InputFile(folder / "out.mkv"));
        EXPECT_EQ(found.container, marked.packing);
        EXPECT_EQ(found.stream, marked.packing);
        EXPECT_EQ(test::decodeLuma(folder / "out.mkv").frames.size(), 5u);
    }
}

TEST(PackingMarks, ofMatroskaAreSeenByOthers) {
    const TemporaryFolder folder;
    for (const Marked &marked : everyMark({Container::matroska})) {
        const auto &[arrangement, rightFirst, isHalf] = marked.packing;
        const bool over = arrangement == Arrangement::overUnder;
        writeMovie(folder / "out.mkv", marked, 2);
        EXPECT_THAT(test::ffprobe(folder / "out.mkv", "stream_side_data=type,inverted"),
                    testing::AllOf(HasSubstr(over ? "type=top and bottom" : "type=side by side"),
                                   HasSubstr(rightFirst ? "inverted=1" : "inverted=0")));
        const std::string shape = !isHalf ? "=1:1" : over ? "=1:2" : "=2:1";
        EXPECT_THAT(test::ffprobe(folder / "out.mkv", "stream=sample_aspect_ratio"), HasSubstr(shape));
        const std::string report = test::output({"mediainfo", (folder / "out.mkv").string()});
        EXPECT_THAT(line(report, "MultiView_Layout"),
                    testing::AllOf(HasSubstr(over ? "Top-Bottom" : "Side by Side"),
                                   HasSubstr(rightFirst ? "right eye first" : "left eye first")));
        // The display size is that of one eye: a half one is as wide as the frame, or as high.
        const std::string eye = isHalf ? "1.500" : over ? "3.000" : "0.750";
        EXPECT_THAT(test::output({"mediainfo", "--Output=Video;%DisplayAspectRatio%", (folder / "out.mkv").string()}),
                    HasSubstr(eye));
    }
}

TEST(PackingMarks, areNoneWhereNothingIsSaid) {
    const TemporaryFolder folder;
    for (const VideoCodec codec : {VideoCodec::h264, VideoCodec::hevc}) {
        test::MovieFileWriter writer(folder / "out.mp4", Container::mpeg4, {});
        VideoEncoding encoding;
        encoding.codec = codec;
        encoding.width = frameWidth;
        encoding.height = frameHeight;
        encoding.averageBitRate = 200'000;
        writer.addVideo(encoding);
        writer.start(600);
        writer.append(test::drawn(frameWidth, frameHeight, yuv420, [](int, int, int) { return 90; }), 0, 20);
        writer.finishVideo();
        writer.finish();
        EXPECT_EQ(readVideoPackings(InputFile(folder / "out.mp4")), VideoPackings{});
        EXPECT_THAT(unitsOf(folder / "out.mp4"), Not(HasSubstr("Frame Packing")));
    }
}

} // namespace
} // namespace lumetwin::media
