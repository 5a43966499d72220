// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/SpatialVideoToSBS.h"

#include "engine/texts/ProcessorError.h"
#include "engine/video/VideoConversion.h"
#include "media/MediaError.h"
#include "tests/support/Clips.h"
#include "tests/support/Conversions.h"
#include "tests/support/Paths.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

namespace lumetwin {
namespace {

using test::drawStereo;
using test::expectHalves;
using test::ffmpeg;
using test::leftLuma;
using test::rightLuma;
using test::TemporaryFolder;
using test::toSBS;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(SpatialVideoToSBS, putsTheLeftEyeOnTheLeftInEveryFormat) {
    const TemporaryFolder folder;
    const auto input = drawStereo(folder / "in.mov", {192, 108, 20});
    ConversionSettings settings;
    for (const auto &[format, name, codec, container] :
         std::vector<std::tuple<SBSOutputFormat, std::string, std::string, std::string>>{
             {SBSOutputFormat::mp4H264, "a.mp4", "h264", "isom"},
             {SBSOutputFormat::mp4H265, "b.mp4", "hevc", "isom"},
             {SBSOutputFormat::movHEVC, "c.mov", "hevc", "qt  "},
             {SBSOutputFormat::mkvH264, "d.mkv", "h264", "matroska"},
             {SBSOutputFormat::mkvH265, "e.mkv", "hevc", "matroska"}}) {
        settings.sbsOutputFormat = format;
        toSBS(settings, input, folder / name);
        expectHalves(folder / name, 384, 108, leftLuma, rightLuma);
        EXPECT_EQ(test::decodeLuma(folder / name).frames.size(), 20u);
        EXPECT_THAT(test::ffprobe(folder / name, "stream=codec_name"), HasSubstr("codec_name=" + codec));
        EXPECT_THAT(test::ffprobe(folder / name, "format=format_name:format_tags=major_brand"),
                    HasSubstr("=" + container));
    }
}

TEST(SpatialVideoToSBS, exchangesTheEyes) {
    const TemporaryFolder folder;
    ConversionSettings settings;
    settings.swapLeftRight = true;
    toSBS(settings, drawStereo(folder / "in.mov", {192, 108, 3}), folder / "out.mp4");
    expectHalves(folder / "out.mp4", 384, 108, rightLuma, leftLuma);
}

TEST(SpatialVideoToSBS, resizesInEveryMode) {
    const TemporaryFolder folder;
    const auto input = drawStereo(folder / "in.mov", {192, 108, 2});
    for (const bool halfWidth : {false, true})
        for (const ResizeMode mode : allResizeModes) {
            ConversionSettings settings;
            settings.halfWidth = halfWidth;
            settings.enableResize = true;
            settings.resizeWidth = 160;
            settings.resizeHeight = 160;
            settings.resizeMode = mode;
            toSBS(settings, input, folder / "out.mp4");
            const auto decoded = test::decodeLuma(folder / "out.mp4");
            const int width = halfWidth ? 160 : 320;
            ASSERT_EQ(decoded.width, width);
            ASSERT_EQ(decoded.height, 160);
            EXPECT_NEAR(decoded.mean(0, width / 4 + 8, 80, 16, 16), leftLuma, 4);
            EXPECT_NEAR(decoded.mean(0, width * 3 / 4 + 8, 80, 16, 16), rightLuma, 4);
            // 160 × 90 in 160 × 160: bars of 35 rows.
            const double top = decoded.mean(0, width / 2 - 24, 4, 16, 24);
            EXPECT_NEAR(top, mode == ResizeMode::letterbox ? 16 : leftLuma, 4);
            EXPECT_NEAR(decoded.mean(0, width / 2 - 24, 132, 16, 24), mode == ResizeMode::letterbox ? 16 : leftLuma, 4);
        }
}

TEST(SpatialVideoToSBS, ignoresTheModeWithoutResizing) {
    const TemporaryFolder folder;
    const auto input = drawStereo(folder / "in.mov", {192, 108, 2});
    std::vector<std::vector<std::uint8_t>> frames;
    for (const ResizeMode mode : allResizeModes) {
        ConversionSettings settings;
        settings.resizeMode = mode;
        toSBS(settings, input, folder / "out.mp4");
        frames.push_back(test::decodeLuma(folder / "out.mp4").frames.at(0));
    }
    EXPECT_EQ(frames[0], frames[1]);
    EXPECT_EQ(frames[0], frames[2]);
}

TEST(SpatialVideoToSBS, leavesTheLastColumnOfAnOddFrameBlack) {
    const TemporaryFolder folder;
    ConversionSettings settings;
    settings.halfWidth = true;
    settings.compressionQuality = 1;
    toSBS(settings, drawStereo(folder / "in.mov", {193, 108, 2}), folder / "out.mp4");
    const auto decoded = test::decodeLuma(folder / "out.mp4");
    ASSERT_EQ(decoded.width, 193);
    EXPECT_NEAR(decoded.mean(0, 40, 50, 40, 40), leftLuma, 4);
    EXPECT_NEAR(decoded.mean(0, 96 + 40, 50, 40, 40), rightLuma, 4);
    EXPECT_NEAR(decoded.mean(0, 191, 50, 1, 40), rightLuma, 12);
    EXPECT_NEAR(decoded.mean(0, 192, 50, 1, 40), 16, 12);
}

TEST(SpatialVideoToSBS, showsAnOddEyeWhole) {
    const TemporaryFolder folder;
    ConversionSettings settings;
    settings.compressionQuality = 1;
    toSBS(settings, drawStereo(folder / "in.mov", {193, 107, 2}), folder / "out.mp4");
    const auto decoded = test::decodeLuma(folder / "out.mp4");
    EXPECT_EQ(decoded.width, 386);
    EXPECT_EQ(decoded.height, 107);
    EXPECT_NEAR(decoded.mean(0, 192, 50, 1, 40), leftLuma, 12);
    EXPECT_NEAR(decoded.mean(0, 193, 50, 1, 40), rightLuma, 12);
}

TEST(SpatialVideoToSBS, showsOneViewToBothEyes) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=192x108:r=30:d=0.2", "-c:v", "libx264", (folder / "flat.mp4").string()});
    toSBS({}, folder / "flat.mp4", folder / "out.mp4");
    const auto decoded = test::decodeLuma(folder / "out.mp4");
    ASSERT_EQ(decoded.frames.size(), 6u);
    const auto [left, right] = test::halves(decoded, 3);
    EXPECT_GT(test::psnr(left, right), 35);
}

TEST(SpatialVideoToSBS, reportsEveryEighthFrame) {
    const TemporaryFolder folder;
    const test::Conversion run = toSBS({}, drawStereo(folder / "in.mov", {128, 96, 25}), folder / "out.mp4");
    EXPECT_THAT(run.progress, ElementsAre(std::pair(0, 25), std::pair(8, 25), std::pair(16, 25), std::pair(24, 25)));
    EXPECT_TRUE(run.warnings.empty());
}

TEST(SpatialVideoToSBS, reportsTenSecondsFromTheFirstFrameToTheLastEighth) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=64x64:r=30:d=10", "-c:v", "libx264", "-preset", "ultrafast",
            (folder / "in.mp4").string()});
    std::vector<std::pair<std::int64_t, std::int64_t>> expected;
    for (std::int64_t frame = 0; frame <= 296; frame += 8)
        expected.emplace_back(frame, 300);
    EXPECT_EQ(toSBS({}, folder / "in.mp4", folder / "out.mp4").progress, expected);
}

TEST(SpatialVideoToSBS, rebuildsAConstantRate) {
    const TemporaryFolder folder;
    for (const auto &[rate, step] :
         std::vector<std::pair<std::string, int>>{{"24", 25}, {"30000/1001", 20}, {"60", 10}, {"25", 24}}) {
        ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=64x64:r=" + rate + ":d=0.5", "-c:v", "libx264",
                (folder / "in.mp4").string()});
        toSBS({}, folder / "in.mp4", folder / "out.mp4");
        const std::string times = test::ffprobe(folder / "out.mp4", "packet=pts", {"-read_intervals", "%+#40"});
        EXPECT_THAT(times, HasSubstr("pts=0\n"));
        EXPECT_THAT(times, HasSubstr("pts=" + std::to_string(step) + "\n")) << rate;
        EXPECT_THAT(times, HasSubstr("pts=" + std::to_string(5 * step) + "\n")) << rate;
    }
}

TEST(SpatialVideoToSBS, doesNotKeepTheSourcesGaps) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=64x64:r=30:d=2", "-vf", "select='not(between(n,10,40))'", "-fps_mode",
            "vfr", "-c:v", "libx264", (folder / "in.mp4").string()});
    toSBS({}, folder / "in.mp4", folder / "out.mp4");
    EXPECT_EQ(test::decodeLuma(folder / "out.mp4").frames.size(), 29u);
}

/// The encoders write what they were asked for into the stream.
bool wasAskedFor(const std::filesystem::path &file, int kilobits) {
    const auto bytes = test::readFile(file);
    const std::string_view text(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    return text.find("bitrate=" + std::to_string(kilobits) + " ") != std::string_view::npos;
}

TEST(SpatialVideoToSBS, asksForTheAverageBitRateOfTheRule) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=640x360:r=30:d=0.2", "-c:v", "libx264", (folder / "in.mp4").string()});
    ConversionSettings settings;
    for (const SBSOutputFormat format : allSBSOutputFormats) {
        settings.sbsOutputFormat = format;
        settings.compressionQuality = 0.5;
        toSBS(settings, folder / "in.mp4", folder / "out.mp4");
        EXPECT_TRUE(wasAskedFor(folder / "out.mp4", 1036)); // 30 × 1280 × 360 × 0.15 × 0.5 = 1,036,800
        settings.compressionQuality = 0.01;
        toSBS(settings, folder / "in.mp4", folder / "out.mp4");
        EXPECT_TRUE(wasAskedFor(folder / "out.mp4", 1000));
    }
}

TEST(AverageBitRate, followsTheRuleAndItsFloor) {
    EXPECT_EQ(averageBitRate(30, 3840.0 * 1080, 0.5), 9'331'200);
    EXPECT_EQ(averageBitRate(30, 3840.0 * 1080, 0.01), 1'000'000);
    EXPECT_EQ(averageBitRate(15, 320.0 * 90, 1), 1'000'000);
}

TEST(VideoTiming, truncatesTheFrameDuration) {
    const auto timing = [](float fps, double duration) {
        VideoInfo info;
        info.fps = fps;
        info.duration = duration;
        return videoTiming(info);
    };
    EXPECT_EQ(timing(30, 10).totalFrames, 300);
    EXPECT_EQ(timing(30, 10).frameDuration, 20);
    EXPECT_EQ(timing(29.97F, 10).frameDuration, 20);
    EXPECT_EQ(timing(24, 10).frameDuration, 25);
    EXPECT_EQ(timing(60, 10).frameDuration, 10);
    EXPECT_EQ(timing(0, 10).frameDuration, 20);
    EXPECT_EQ(timing(0, 10).totalFrames, 0);
    EXPECT_EQ(timing(0, 10).rate, 30);
}

TEST(SpatialVideoToSBS, replacesAnExistingOutput) {
    const TemporaryFolder folder;
    test::writeFile(folder / "out.mp4", std::string("an older file"));
    toSBS({}, drawStereo(folder / "in.mov", {128, 96, 2}), folder / "out.mp4");
    expectHalves(folder / "out.mp4", 256, 96, leftLuma, rightLuma);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mp4.partial"));
}

TEST(SpatialVideoToSBS, failsWithoutAVideoTrack) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "sine=d=0.5", "-c:a", "aac", (folder / "sound.mp4").string()});
    EXPECT_THROW(toSBS({}, folder / "sound.mp4", folder / "out.mp4"), ProcessorError);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mp4"));
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mp4.partial"));
}

TEST(SpatialVideoToSBS, convertsADamagedMovieAsFarAsItGoesAndSaysSo) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=320x240:r=25:d=2", "-c:v", "libx264", "-g", "10", "-movflags",
            "+faststart", (folder / "in.mp4").string()});
    auto bytes = test::readFile(folder / "in.mp4");
    bytes.resize(bytes.size() * 7 / 10);
    test::writeFile(folder / "in.mp4", bytes);
    const test::Conversion run = toSBS({}, folder / "in.mp4", folder / "out.mp4");
    const auto written = test::decodeLuma(folder / "out.mp4").frames.size();
    EXPECT_GT(written, 10u);
    EXPECT_LT(written, 50u);
    ASSERT_EQ(run.warnings.size(), 1u);
    EXPECT_THAT(run.warnings[0], HasSubstr(std::to_string(written) + " frames written, 50 expected"));
}

TEST(SpatialVideoToSBS, failsWhenNotOneFrameCanBeRead) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=64x64:r=25:d=0.2", "-c:v", "libx264", "-movflags", "+faststart",
            (folder / "in.mp4").string()});
    auto bytes = test::readFile(folder / "in.mp4");
    const std::string_view text(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    bytes.resize(text.find("mdat") + 4);
    test::writeFile(folder / "in.mp4", bytes);
    EXPECT_THROW(toSBS({}, folder / "in.mp4", folder / "out.mp4"), media::MediaError);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mp4"));
}

/// The error of a conversion, after which there is no output.
std::string failure(const std::filesystem::path &input, const std::filesystem::path &output) {
    try {
        toSBS({}, input, output);
    } catch (const media::MediaError &error) {
        EXPECT_FALSE(std::filesystem::is_regular_file(output));
        return error.what();
    }
    return "no error";
}

TEST(SpatialVideoToSBS, failsWhereTheSourceCannotBeRead) {
    const TemporaryFolder folder;
    EXPECT_EQ(failure(folder / "absent.mov", folder / "out.mp4"), "Cannot open absent.mov: No such file or directory");
    test::writeFile(folder / "text.mov", std::string("no movie"));
    EXPECT_EQ(failure(folder / "text.mov", folder / "out.mp4"),
              "Cannot open text.mov: it is damaged (Invalid data found when processing input)");
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mp4.partial"));
}

TEST(SpatialVideoToSBS, keepsThePartialFileOfAnEarlierRunWhereTheSourceCannotBeRead) {
    const TemporaryFolder folder;
    test::writeFile(folder / "text.mov", std::string("no movie"));
    test::writeFile(folder / "out.mp4.partial", std::string("saved pictures"));
    EXPECT_NE(failure(folder / "text.mov", folder / "out.mp4"), "no error");
    EXPECT_EQ(std::filesystem::file_size(folder / "out.mp4.partial"), 14U);
}

TEST(SpatialVideoToSBS, failsWhereTheOutputCannotBeCreated) {
    const TemporaryFolder folder;
    const auto input = drawStereo(folder / "in.mov");
    EXPECT_EQ(failure(input, folder / "absent/out.mp4"), "Cannot create out.mp4: No such file or directory");
}

TEST(SpatialVideoToSBS, failsWhereTheOldOutputCannotBeReplaced) {
    const TemporaryFolder folder;
    const auto input = drawStereo(folder / "in.mov");
    std::filesystem::create_directories(folder / "out.mp4/something");
    EXPECT_EQ(failure(input, folder / "out.mp4"), "Cannot rename the partial file to out.mp4: Is a directory");
    EXPECT_TRUE(std::filesystem::exists(folder / "out.mp4/something")) << "nothing of the user's is removed";
}

TEST(SpatialVideoToSBS, keepsThePartialFileOfAWriterThatFails) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=320x240:r=30:d=3,noise=alls=20:allf=t", "-c:v", "libx264",
            (folder / "in.mp4").string()});
    const test::FileSizeLimit limit(65536);
    EXPECT_EQ(failure(folder / "in.mp4", folder / "out.mp4"), "Cannot write out.mp4: File too large");
    EXPECT_EQ(std::filesystem::file_size(folder / "out.mp4.partial"), 65536U);
}

TEST(SpatialVideoToSBS, leavesNothingOfAMovieThatWasNeverBegun) {
    const TemporaryFolder folder;
    const auto input = drawStereo(folder / "in.mov");
    // /dev/full takes nothing: what a full disk does at the first write.
    std::filesystem::create_symlink("/dev/full", folder / "out.mp4.partial");
    EXPECT_EQ(failure(input, folder / "out.mp4"), "Cannot write out.mp4: No space left on device");
    EXPECT_FALSE(std::filesystem::is_symlink(folder / "out.mp4.partial"));
}

TEST(SpatialVideoToSBS, refusesResizeTargetsThatCannotBeCoded) {
    const TemporaryFolder folder;
    const auto input = drawStereo(folder / "in.mov");
    ConversionSettings settings;
    settings.enableResize = true;
    for (const auto &[width, height] : std::vector<std::pair<std::int64_t, std::int64_t>>{{0, 100},
                                                                                          {-4, 100},
                                                                                          {100, 70000},
                                                                                          {9000, 100},
                                                                                          {std::int64_t{1} << 33, 2},
                                                                                          {INT64_MAX - 1, 2},
                                                                                          {2, INT64_MAX - 1}}) {
        settings.resizeWidth = width;
        settings.resizeHeight = height;
        EXPECT_THROW(toSBS(settings, input, folder / "out.mp4"), media::MediaError) << width << " x " << height;
        EXPECT_FALSE(std::filesystem::exists(folder / "out.mp4.partial"));
    }
}

TEST(SpatialVideoToSBS, stopsBetweenFramesWhenCancelled) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=320x240:r=30:d=20", "-f", "lavfi", "-i", "sine=d=20", "-c:v", "libx264",
            "-preset", "ultrafast", "-c:a", "aac", (folder / "in.mp4").string()});
    std::atomic<bool> cancel{false};
    std::int64_t last = 0;
    ConversionControl control;
    control.cancelRequested = &cancel;
    control.onFrameProgress = [&](std::int64_t frame, std::int64_t) {
        last = frame;
        cancel = frame >= 16;
    };
    convertSpatialVideoToSBS(ConversionSettings(), folder / "in.mp4", folder / "out.mp4", control);
    EXPECT_EQ(last, 16);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mp4"));
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mp4.partial"));
}

TEST(SpatialVideoToSBS, decodesOneViewOnSystemsBeforeStereoMovies) {
    const TemporaryFolder folder;
    convertSpatialVideoToSBS(ConversionSettings(), drawStereo(folder / "in.mov", {192, 108, 2}), folder / "out.mp4", {},
                             SystemVersion{13, 9, 0});
    expectHalves(folder / "out.mp4", 384, 108, leftLuma, leftLuma);
}

TEST(SpatialVideoToSBS, matchesAnIndependentDecodeOfThePlatformsSample) {
    const auto samples = test::sampleMedia();
    if (!samples)
        GTEST_SKIP() << "no sample media";
    const TemporaryFolder folder;
    const auto input = *samples / "spatial-video" / "water_180_mvhevc_5frames.mov";
    ConversionSettings settings;
    settings.compressionQuality = 1;
    toSBS(settings, input, folder / "out.mp4");
    const auto out = test::decodeLuma(folder / "out.mp4");
    const auto left = test::decodeLuma(input, "0:v:0:vpos:left");
    const auto right = test::decodeLuma(input, "0:v:0:vpos:right");
    ASSERT_EQ(out.frames.size(), 5u);
    ASSERT_EQ(out.width, 2 * 1934);
    for (std::size_t frame = 0; frame < 5; ++frame) {
        const auto halves = test::halves(out, frame);
        EXPECT_GT(test::psnr(halves[0], left.frames[frame]), 40);
        EXPECT_GT(test::psnr(halves[1], right.frames[frame]), 40);
        EXPECT_LT(test::psnr(halves[0], right.frames[frame]), test::psnr(halves[0], left.frames[frame]) - 3);
    }
}

} // namespace
} // namespace lumetwin
