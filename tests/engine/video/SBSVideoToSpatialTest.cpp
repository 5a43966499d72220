// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/SBSVideoToSpatial.h"

#include "engine/texts/ProcessorError.h"
#include "media/MediaError.h"
#include "media/PartialFile.h"
#include "tests/support/Clips.h"
#include "tests/support/Conversions.h"
#include "tests/support/Paths.h"
#include "tests/support/SpatialMovie.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

namespace lumetwin {
namespace {

using test::BoxFile;
using test::Clip;
using test::draw;
using test::expectViews;
using test::TemporaryFolder;
using test::toSpatial;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Progress = std::pair<std::int64_t, std::int64_t>;

TEST(SBSVideoToSpatial, makesTheLeftHalfTheLeftView) {
    const TemporaryFolder folder;
    toSpatial({}, draw(folder / "in.mp4"), folder / "out.mov");
    expectViews(folder / "out.mov", 192, 96);
    test::checkAccessUnits(test::videoSamples(BoxFile(folder / "out.mov")));
    EXPECT_FALSE(std::filesystem::exists(media::PartialFile::nameFor(folder / "out.mov")));
}

TEST(SBSVideoToSpatial, exchangesTheViews) {
    const TemporaryFolder folder;
    ConversionSettings settings;
    settings.swapLeftRight = true;
    toSpatial(settings, draw(folder / "in.mp4"), folder / "out.mov");
    expectViews(folder / "out.mov", 192, 96, test::rightLuma, test::leftLuma);
}

TEST(SBSVideoToSpatial, ignoresHalfWidth) {
    const TemporaryFolder folder;
    ConversionSettings settings;
    settings.halfWidth = true;
    toSpatial(settings, draw(folder / "in.mp4"), folder / "out.mov");
    expectViews(folder / "out.mov", 192, 96);
}

TEST(SBSVideoToSpatial, givesAnOddLastColumnToNeitherEye) {
    const TemporaryFolder folder;
    Clip clip;
    clip.format = "yuv444p";
    clip.video = {"-c:v", "ffv1"};
    for (const int width : {385, 387}) {
        clip.width = width;
        toSpatial({}, draw(folder / "in.mkv", clip), folder / "out.mov");
        expectViews(folder / "out.mov", width / 2, 96);
        const auto right = test::decodeLuma(folder / "out.mov", "0:v:0:vpos:right");
        EXPECT_NEAR(right.mean(0, right.width - 1, 48, 1, 48), test::rightLuma, 8) << "the white column is gone";
        const auto left = test::decodeLuma(folder / "out.mov", "0:v:0:vpos:left");
        EXPECT_NEAR(left.mean(0, left.width - 1, 48, 1, 48), test::leftLuma, 8);
    }
}

TEST(SBSVideoToSpatial, keepsTheExactSizeOfOddAndTinyEyes) {
    const TemporaryFolder folder;
    Clip clip;
    clip.format = "yuv444p";
    clip.video = {"-c:v", "ffv1"};
    for (const auto &[width, height] :
         std::vector<std::pair<int, int>>{{382, 97}, {194, 98}, {128, 64}, {34, 18}, {62, 131}}) {
        clip.width = width;
        clip.height = height;
        toSpatial({}, draw(folder / "in.mkv", clip), folder / "out.mov");
        expectViews(folder / "out.mov", width / 2, height);
        const BoxFile movie(folder / "out.mov");
        const auto head = movie.payload("moov/trak/tkhd");
        EXPECT_EQ(test::number32(head, head.size() - 8), static_cast<std::uint32_t>(width / 2) << 16);
        EXPECT_EQ(test::number32(head, head.size() - 4), static_cast<std::uint32_t>(height) << 16);
    }
}

TEST(SBSVideoToSpatial, takesEyesOfOnePixel) {
    const TemporaryFolder folder;
    test::ffmpeg({"-f", "lavfi", "-i", "color=c=gray:s=2x1:r=30", "-frames:v", "2", "-pix_fmt", "yuv444p", "-c:v",
                  "ffv1", (folder / "in.mkv").string()});
    toSpatial({}, folder / "in.mkv", folder / "out.mov");
    const auto decoded = test::decodeLuma(folder / "out.mov", "0:v:0:vpos:right");
    EXPECT_EQ(decoded.width, 1);
    EXPECT_EQ(decoded.height, 1);
    EXPECT_EQ(decoded.frames.size(), 2U);
}

TEST(SBSVideoToSpatial, refusesASourceOfOneColumn) {
    const TemporaryFolder folder;
    test::ffmpeg({"-f", "lavfi", "-i", "color=c=gray:s=1x16:r=30", "-frames:v", "1", "-pix_fmt", "yuv444p", "-c:v",
                  "ffv1", (folder / "in.mkv").string()});
    EXPECT_THROW(toSpatial({}, folder / "in.mkv", folder / "out.mov"), media::MediaError);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mov"));
    EXPECT_FALSE(std::filesystem::exists(media::PartialFile::nameFor(folder / "out.mov")));
}

TEST(SBSVideoToSpatial, refusesResizeTargetsThatCannotBeCoded) {
    const TemporaryFolder folder;
    const auto input = draw(folder / "in.mp4");
    ConversionSettings settings;
    settings.enableResize = true;
    for (const auto &[width, height] :
         std::vector<std::pair<std::int64_t, std::int64_t>>{{0, 100},
                                                            {-4, 100},
                                                            {100, 70000},
                                                            {16000, 16000},
                                                            {std::int64_t{1} << 33, 2},
                                                            {INT64_MAX - 1, 2},
                                                            {INT64_MAX - 1, INT64_MAX - 1}}) {
        settings.resizeWidth = width;
        settings.resizeHeight = height;
        EXPECT_THROW(toSpatial(settings, input, folder / "out.mov"), media::MediaError) << width << " x " << height;
        EXPECT_FALSE(std::filesystem::exists(media::PartialFile::nameFor(folder / "out.mov")));
    }
}

TEST(SBSVideoToSpatial, keepsThePartialFileOfAWriterThatFails) {
    const TemporaryFolder folder;
    Clip clip;
    clip.frames = 90;
    clip.filter = "noise=alls=20:allf=t";
    const auto input = draw(folder / "in.mp4", clip);
    const test::FileSizeLimit limit(65536);
    EXPECT_THROW(toSpatial({}, input, folder / "out.mov"), media::MediaError);
    EXPECT_EQ(std::filesystem::file_size(media::PartialFile::nameFor(folder / "out.mov")), 65536U);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mov"));
}

TEST(SBSVideoToSpatial, showsWhatThereIsOfFramesThatChangeTheirSize) {
    const TemporaryFolder folder;
    Clip clip;
    clip.video = {"-c:v", "libx265", "-x265-params", "log-level=none:repeat-headers=1", "-f", "hevc"};
    auto bytes = test::readFile(draw(folder / "a.hevc", clip));
    clip.width = 192;
    clip.height = 48;
    const auto smaller = test::readFile(draw(folder / "b.hevc", clip));
    bytes.insert(bytes.end(), smaller.begin(), smaller.end());
    test::writeFile(folder / "in.hevc", bytes);
    toSpatial({}, folder / "in.hevc", folder / "out.mov");
    const auto left = test::decodeLuma(folder / "out.mov", "0:v:0:vpos:left");
    const auto right = test::decodeLuma(folder / "out.mov", "0:v:0:vpos:right");
    ASSERT_EQ(left.frames.size(), 6U);
    EXPECT_EQ(left.width, 192);
    EXPECT_NEAR(left.mean(5, 60, 30, 30, 15), test::leftLuma, 4) << "the smaller frame lies in the upper left";
    EXPECT_NEAR(left.mean(5, 20, 60, 150, 30), 16, 3) << "black is below it";
    EXPECT_NEAR(right.mean(5, 10, 10, 170, 80), 16, 3) << "it does not reach the right eye";
}

TEST(SBSVideoToSpatial, resizesInEveryMode) {
    const TemporaryFolder folder;
    const auto input = draw(folder / "in.mp4");
    ConversionSettings settings;
    settings.enableResize = true;
    settings.resizeWidth = 100;
    settings.resizeHeight = 100;
    const auto view = [&](ResizeMode mode) {
        settings.resizeMode = mode;
        toSpatial(settings, input, folder / "out.mov");
        auto decoded = test::decodeLuma(folder / "out.mov", "0:v:0:vpos:left");
        EXPECT_EQ(decoded.width, 100);
        EXPECT_EQ(decoded.height, 100);
        return decoded;
    };
    const auto stretched = view(ResizeMode::stretch);
    EXPECT_NEAR(stretched.mean(0, 2, 2, 20, 20), test::markLuma, 5);
    EXPECT_NEAR(stretched.mean(0, 2, 90, 96, 8), test::leftLuma, 3);
    // 192 × 96 scaled by 1.0417 to 200 × 100, the middle 100 columns of it: the mark (50 columns) falls away.
    const auto filled = view(ResizeMode::cropFill);
    EXPECT_NEAR(filled.mean(0, 4, 2, 94, 96), test::leftLuma, 3);
    // Scaled by 0.5208 to 100 × 50, with bars of 25 rows.
    const auto boxed = view(ResizeMode::letterbox);
    EXPECT_NEAR(boxed.mean(0, 0, 0, 100, 22), 16, 2);
    EXPECT_NEAR(boxed.mean(0, 0, 78, 100, 22), 16, 2);
    EXPECT_NEAR(boxed.mean(0, 2, 28, 18, 6), test::markLuma, 6);
    EXPECT_NEAR(boxed.mean(0, 40, 45, 50, 25), test::leftLuma, 3);
}

TEST(SBSVideoToSpatial, fitsWithoutBarsOrCropInATie) {
    const TemporaryFolder folder;
    const auto input = draw(folder / "in.mp4");
    ConversionSettings settings;
    settings.enableResize = true;
    settings.resizeWidth = 384;
    settings.resizeHeight = 192;
    for (const ResizeMode mode : {ResizeMode::cropFill, ResizeMode::letterbox}) {
        settings.resizeMode = mode;
        toSpatial(settings, input, folder / "out.mov");
        expectViews(folder / "out.mov", 384, 192);
    }
}

TEST(SBSVideoToSpatial, followsTheResizeModeOnlyWhenResizing) {
    const TemporaryFolder folder;
    const auto input = draw(folder / "in.mp4");
    ConversionSettings settings;
    std::vector<std::vector<std::uint8_t>> views;
    for (const ResizeMode mode : allResizeModes) {
        settings.resizeMode = mode;
        toSpatial(settings, input, folder / "out.mov");
        views.push_back(test::decodeLuma(folder / "out.mov").frames.at(0));
    }
    EXPECT_EQ(views[0], views[1]);
    EXPECT_EQ(views[0], views[2]);
}

TEST(SBSVideoToSpatial, losesNoneOfAThousandFrames) {
    const TemporaryFolder folder;
    // Each frame's luma says which one it is.
    test::ffmpeg({"-f", "lavfi", "-i", "color=gray:s=64x32:r=60,format=yuv420p,geq=lum='20+mod(N\\,200)':cb=128:cr=128",
                  "-frames:v", "1000", "-c:v", "libx264", "-preset", "ultrafast", "-qp", "2",
                  (folder / "in.mp4").string()});
    const auto run = toSpatial({}, folder / "in.mp4", folder / "out.mov");
    EXPECT_EQ(run.progress.size(), 125U);
    EXPECT_EQ(run.progress.back(), Progress(992, 1000));
    const auto samples = test::videoSamples(BoxFile(folder / "out.mov"));
    test::checkAccessUnits(samples);
    const auto right = test::decodeLuma(folder / "out.mov", "0:v:0:vpos:right");
    ASSERT_EQ(right.frames.size(), 1000U);
    for (std::size_t frame = 0; frame < 1000; ++frame)
        ASSERT_NEAR(right.mean(frame, 0, 0, 32, 32), 20 + static_cast<double>(frame % 200), 2) << frame;
}

TEST(SBSVideoToSpatial, reportsEveryEighthFrameAfterIt) {
    const TemporaryFolder folder;
    Clip clip;
    clip.frames = 30;
    const auto run = toSpatial({}, draw(folder / "in.mp4", clip), folder / "out.mov");
    EXPECT_THAT(run.progress, ElementsAre(Progress{0, 30}, Progress{8, 30}, Progress{16, 30}, Progress{24, 30}));
    EXPECT_THAT(run.warnings, IsEmpty());
}

TEST(SBSVideoToSpatial, readsEveryDepthSubsamplingAndRange) {
    const TemporaryFolder folder;
    for (const std::string format : {"yuv420p10le", "yuv422p", "yuv422p10le", "yuv444p", "yuv444p10le"}) {
        SCOPED_TRACE(format);
        Clip clip;
        clip.format = format;
        clip.video = {"-c:v", "ffv1"};
        toSpatial({}, draw(folder / "in.mkv", clip), folder / "out.mov");
        expectViews(folder / "out.mov", 192, 96);
    }
}

TEST(SBSVideoToSpatial, keepsColourTagsAndRange) {
    const TemporaryFolder folder;
    Clip clip;
    clip.filter = "setparams=range=full:color_primaries=bt2020:color_trc=smpte2084:colorspace=bt2020nc";
    clip.video = {"-c:v", "libx265", "-x265-params", "log-level=none", "-tag:v", "hvc1"};
    toSpatial({}, draw(folder / "in.mp4", clip), folder / "out.mov");
    EXPECT_EQ(
        test::ffprobe(folder / "out.mov", "stream=pix_fmt,color_range,color_space,color_transfer,color_primaries"),
        "pix_fmt=yuvj420p\ncolor_range=pc\ncolor_space=bt2020nc\ncolor_transfer=smpte2084\ncolor_primaries=bt2020\n");
}

TEST(SBSVideoToSpatial, replacesTheExtensionAndAnExistingFile) {
    const TemporaryFolder folder;
    const auto input = draw(folder / "in.mp4");
    test::writeFile(folder / "out.mov", "an older file");
    toSpatial({}, input, folder / "out.avi");
    EXPECT_FALSE(std::filesystem::exists(folder / "out.avi"));
    expectViews(folder / "out.mov", 192, 96);
}

TEST(SBSVideoToSpatial, leavesNothingWhenCancelled) {
    const TemporaryFolder folder;
    Clip clip;
    clip.frames = 60;
    clip.sound = "sine=d=2";
    const auto input = draw(folder / "in.mp4", clip);
    std::atomic<bool> cancel{false};
    std::int64_t last = -1;
    ConversionControl control;
    control.cancelRequested = &cancel;
    control.onFrameProgress = [&](std::int64_t frame, std::int64_t) {
        last = frame;
        cancel = frame >= 8;
    };
    EXPECT_NO_THROW(convertSBSVideoToSpatial({}, input, folder / "out.mov", control));
    EXPECT_EQ(last, 8);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mov"));
    EXPECT_FALSE(std::filesystem::exists(media::PartialFile::nameFor(folder / "out.mov")));
}

TEST(SBSVideoToSpatial, failsWithoutAVideoTrack) {
    const TemporaryFolder folder;
    test::ffmpeg({"-f", "lavfi", "-i", "sine=d=0.2", (folder / "sound.mp4").string()});
    EXPECT_THROW(toSpatial({}, folder / "sound.mp4", folder / "out.mov"), ProcessorError);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mov"));
}

TEST(SBSVideoToSpatial, failsWhereTheSourceCannotBeRead) {
    const TemporaryFolder folder;
    EXPECT_THROW(toSpatial({}, folder / "missing.mp4", folder / "out.mov"), media::MediaError);
    test::writeFile(folder / "text.mp4", "this is no movie");
    EXPECT_THROW(toSpatial({}, folder / "text.mp4", folder / "out.mov"), media::MediaError);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mov"));
}

TEST(SBSVideoToSpatial, failsWhereTheOutputCannotBeCreated) {
    const TemporaryFolder folder;
    const auto input = draw(folder / "in.mp4");
    EXPECT_THROW(toSpatial({}, input, folder / "no such folder/out.mov"), media::MediaError);
}

TEST(SBSVideoToSpatial, tellsHowFarADamagedSourceWent) {
    const TemporaryFolder folder;
    Clip clip;
    clip.frames = 40;
    clip.video = {"-c:v", "mpeg4", "-q:v", "2", "-g", "4", "-movflags", "+faststart"};
    clip.filter = "noise=alls=4:allf=t";
    auto bytes = test::readFile(draw(folder / "whole.mp4", clip));
    bytes.resize(bytes.size() * 6 / 10);
    test::writeFile(folder / "half.mp4", bytes);
    const auto run = toSpatial({}, folder / "half.mp4", folder / "out.mov");
    expectViews(folder / "out.mov", 192, 96);
    const std::size_t written = test::videoSamples(BoxFile(folder / "out.mov")).size();
    EXPECT_LT(written, 40U);
    ASSERT_EQ(run.warnings.size(), 1U);
    EXPECT_THAT(run.warnings[0], HasSubstr(std::to_string(written) + " frames written, 40 expected"));
}

TEST(SBSVideoToSpatial, keepsDateAndPlace) {
    const TemporaryFolder folder;
    Clip clip;
    clip.video.insert(clip.video.end(),
                      {"-metadata", "creation_time=2024-05-06T07:08:09Z", "-metadata", "title=Harbour"});
    toSpatial({}, draw(folder / "in.mp4", clip), folder / "out.mov");
    EXPECT_THAT(test::ffprobe(folder / "out.mov", "format_tags"), HasSubstr("2024-05-06T07:08:09"));
    EXPECT_THAT(test::ffprobe(folder / "out.mov", "format_tags"), HasSubstr("Harbour"));
}

} // namespace
} // namespace lumetwin
