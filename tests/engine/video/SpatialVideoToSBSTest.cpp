// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/SpatialVideoToSBS.h"

#include "engine/ProcessorError.h"
#include "engine/VideoConversion.h"
#include "media/MediaError.h"
#include "media/MovieWriter.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>

namespace lumetwin {
namespace {

using media::Picture;
using test::ffmpeg;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;

/// An eye whose luma says which one it is, with a bright mark in its upper left quarter.
Picture eyePicture(int width, int height, int luma) {
    Picture picture = media::makePicture(width, height, media::yuv420);
    for (int plane = 0; plane < 3; ++plane)
        for (int row = 0; row < picture.planeHeight(plane); ++row)
            std::memset(picture.planes[plane].data + row * picture.planes[plane].stride, plane == 0 ? luma : 128,
                        static_cast<std::size_t>(picture.planeWidth(plane)));
    for (int row = 0; row < height / 4; ++row)
        std::memset(picture.planes[0].data + row * picture.planes[0].stride, 220, static_cast<std::size_t>(width / 4));
    return picture;
}

constexpr int leftLuma = 60;
constexpr int rightLuma = 150;

std::filesystem::path drawSpatial(const std::filesystem::path &file, int width, int height, int frames,
                                  double rate = 30) {
    media::MovieWriter writer(file, media::Container::quickTime, {});
    media::StereoVideoEncoding encoding;
    encoding.width = width;
    encoding.height = height;
    encoding.averageBitRate = 2'000'000;
    encoding.frameRate = rate;
    encoding.colour = {1, 1, 1, media::ColourRange::limited, media::ChromaLocation::left};
    encoding.baseline = 64000;
    writer.addVideo(encoding);
    writer.start(600);
    const auto duration = static_cast<std::int64_t>(600 / rate);
    for (int frame = 0; frame < frames; ++frame)
        writer.append(eyePicture(width, height, leftLuma), eyePicture(width, height, rightLuma), frame * duration,
                      duration);
    writer.finishVideo();
    writer.finish();
    return file;
}

struct Conversion {
    std::vector<std::pair<std::int64_t, std::int64_t>> progress;
    std::vector<std::string> warnings;
};

Conversion convert(const ConversionSettings &settings, const std::filesystem::path &input,
                   const std::filesystem::path &output) {
    Conversion run;
    ConversionControl control;
    control.onFrameProgress = [&](std::int64_t frame, std::int64_t total) { run.progress.emplace_back(frame, total); };
    control.onWarning = [&](const std::string &line) { run.warnings.push_back(line); };
    convertSpatialVideoToSBS(settings, input, output, control);
    return run;
}

void expectEyes(const std::filesystem::path &file, int width, int height, int left, int right) {
    const auto decoded = test::decodeLuma(file);
    ASSERT_FALSE(decoded.frames.empty());
    ASSERT_EQ(decoded.width, width);
    ASSERT_EQ(decoded.height, height);
    const int eye = width / 2;
    EXPECT_NEAR(decoded.mean(0, eye / 2, height / 2, eye / 4, height / 4), left, 4);
    EXPECT_NEAR(decoded.mean(0, eye + eye / 2, height / 2, eye / 4, height / 4), right, 4);
    EXPECT_NEAR(decoded.mean(0, 2, 2, eye / 8, height / 8), 220, 6);
}

TEST(SpatialVideoToSBS, putsTheLeftEyeOnTheLeftInEveryFormat) {
    const TemporaryFolder folder;
    const auto input = drawSpatial(folder / "in.mov", 192, 108, 20);
    ConversionSettings settings;
    for (const auto &[format, name, codec, container] :
         std::vector<std::tuple<SBSOutputFormat, std::string, std::string, std::string>>{
             {SBSOutputFormat::mp4H264, "a.mp4", "h264", "isom"},
             {SBSOutputFormat::mp4H265, "b.mp4", "hevc", "isom"},
             {SBSOutputFormat::movHEVC, "c.mov", "hevc", "qt  "}}) {
        settings.sbsOutputFormat = format;
        convert(settings, input, folder / name);
        expectEyes(folder / name, 384, 108, leftLuma, rightLuma);
        EXPECT_EQ(test::decodeLuma(folder / name).frames.size(), 20u);
        EXPECT_THAT(test::ffprobe(folder / name, "stream=codec_name"), HasSubstr("codec_name=" + codec));
        EXPECT_THAT(test::ffprobe(folder / name, "format_tags=major_brand"), HasSubstr("=" + container));
    }
}

TEST(SpatialVideoToSBS, exchangesTheEyes) {
    const TemporaryFolder folder;
    ConversionSettings settings;
    settings.swapLeftRight = true;
    convert(settings, drawSpatial(folder / "in.mov", 192, 108, 3), folder / "out.mp4");
    expectEyes(folder / "out.mp4", 384, 108, rightLuma, leftLuma);
}

TEST(SpatialVideoToSBS, resizesInEveryMode) {
    const TemporaryFolder folder;
    const auto input = drawSpatial(folder / "in.mov", 192, 108, 2);
    for (const bool halfWidth : {false, true})
        for (const ResizeMode mode : allResizeModes) {
            ConversionSettings settings;
            settings.halfWidth = halfWidth;
            settings.enableResize = true;
            settings.resizeWidth = 160;
            settings.resizeHeight = 160;
            settings.resizeMode = mode;
            convert(settings, input, folder / "out.mp4");
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
    const auto input = drawSpatial(folder / "in.mov", 192, 108, 2);
    std::vector<std::vector<std::uint8_t>> frames;
    for (const ResizeMode mode : allResizeModes) {
        ConversionSettings settings;
        settings.resizeMode = mode;
        convert(settings, input, folder / "out.mp4");
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
    convert(settings, drawSpatial(folder / "in.mov", 193, 108, 2), folder / "out.mp4");
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
    convert(settings, drawSpatial(folder / "in.mov", 193, 107, 2), folder / "out.mp4");
    const auto decoded = test::decodeLuma(folder / "out.mp4");
    EXPECT_EQ(decoded.width, 386);
    EXPECT_EQ(decoded.height, 107);
    EXPECT_NEAR(decoded.mean(0, 192, 50, 1, 40), leftLuma, 12);
    EXPECT_NEAR(decoded.mean(0, 193, 50, 1, 40), rightLuma, 12);
}

TEST(SpatialVideoToSBS, showsOneViewToBothEyes) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=192x108:r=30:d=0.2", "-c:v", "libx264", (folder / "flat.mp4").string()});
    convert(ConversionSettings(), folder / "flat.mp4", folder / "out.mp4");
    const auto decoded = test::decodeLuma(folder / "out.mp4");
    ASSERT_EQ(decoded.frames.size(), 6u);
    std::vector<std::uint8_t> left;
    std::vector<std::uint8_t> right;
    for (int row = 0; row < 108; ++row) {
        const auto begin = decoded.frames[3].begin() + row * 384;
        left.insert(left.end(), begin, begin + 192);
        right.insert(right.end(), begin + 192, begin + 384);
    }
    EXPECT_GT(test::psnr(left, right), 35);
}

TEST(SpatialVideoToSBS, reportsEveryEighthFrame) {
    const TemporaryFolder folder;
    const Conversion run =
        convert(ConversionSettings(), drawSpatial(folder / "in.mov", 128, 96, 25), folder / "out.mp4");
    EXPECT_THAT(run.progress, ElementsAre(std::pair(0, 25), std::pair(8, 25), std::pair(16, 25), std::pair(24, 25)));
    EXPECT_TRUE(run.warnings.empty());
}

TEST(SpatialVideoToSBS, rebuildsAConstantRate) {
    const TemporaryFolder folder;
    for (const auto &[rate, step] :
         std::vector<std::pair<std::string, int>>{{"24", 25}, {"30000/1001", 20}, {"60", 10}, {"25", 24}}) {
        ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=64x64:r=" + rate + ":d=0.5", "-c:v", "libx264",
                (folder / "in.mp4").string()});
        convert(ConversionSettings(), folder / "in.mp4", folder / "out.mp4");
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
    convert(ConversionSettings(), folder / "in.mp4", folder / "out.mp4");
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
        convert(settings, folder / "in.mp4", folder / "out.mp4");
        EXPECT_TRUE(wasAskedFor(folder / "out.mp4", 1036)); // 30 × 1280 × 360 × 0.15 × 0.5 = 1,036,800
        settings.compressionQuality = 0.01;
        convert(settings, folder / "in.mp4", folder / "out.mp4");
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
    convert(ConversionSettings(), drawSpatial(folder / "in.mov", 128, 96, 2), folder / "out.mp4");
    expectEyes(folder / "out.mp4", 256, 96, leftLuma, rightLuma);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mp4.partial"));
}

TEST(SpatialVideoToSBS, copiesTheSoundInStep) {
    const TemporaryFolder folder;
    for (const auto &[layout, channels] :
         std::vector<std::pair<std::string, int>>{{"mono", 1}, {"stereo", 2}, {"5.1", 2}}) {
        ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=64x64:r=30:d=2", "-f", "lavfi", "-i", "sine=d=2:r=48000", "-af",
                "aformat=channel_layouts=" + layout, "-c:v", "libx264", "-c:a", "aac", (folder / "in.mp4").string()});
        convert(ConversionSettings(), folder / "in.mp4", folder / "out.mp4");
        const std::string facts = test::ffprobe(
            folder / "out.mp4", "stream=codec_name,channels,sample_rate,duration,start_pts", {"-select_streams", "a"});
        EXPECT_THAT(facts, HasSubstr("codec_name=aac"));
        EXPECT_THAT(facts, HasSubstr("channels=" + std::to_string(channels)));
        EXPECT_THAT(facts, HasSubstr("sample_rate=48000"));
        EXPECT_THAT(facts, HasSubstr("start_pts=0"));
    }
}

TEST(SpatialVideoToSBS, writesNoSoundWhereThereIsNoneOrNoneIsWanted) {
    const TemporaryFolder folder;
    const auto silent = drawSpatial(folder / "in.mov", 128, 96, 3);
    convert(ConversionSettings(), silent, folder / "out.mp4");
    EXPECT_EQ(test::ffprobe(folder / "out.mp4", "stream=codec_name", {"-select_streams", "a"}), "");

    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=64x64:r=30:d=0.5", "-f", "lavfi", "-i", "sine=d=0.5", "-c:v", "libx264",
            "-c:a", "aac", (folder / "loud.mp4").string()});
    ConversionSettings settings;
    settings.copyAudio = false;
    convert(settings, folder / "loud.mp4", folder / "out.mp4");
    EXPECT_EQ(test::ffprobe(folder / "out.mp4", "stream=codec_name", {"-select_streams", "a"}), "");
}

TEST(SpatialVideoToSBS, failsWithoutAVideoTrack) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "sine=d=0.5", "-c:a", "aac", (folder / "sound.mp4").string()});
    EXPECT_THROW(convert(ConversionSettings(), folder / "sound.mp4", folder / "out.mp4"), ProcessorError);
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
    const Conversion run = convert(ConversionSettings(), folder / "in.mp4", folder / "out.mp4");
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
    EXPECT_THROW(convert(ConversionSettings(), folder / "in.mp4", folder / "out.mp4"), media::MediaError);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mp4"));
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
    convertSpatialVideoToSBS(ConversionSettings(), drawSpatial(folder / "in.mov", 192, 108, 2), folder / "out.mp4", {},
                             SystemVersion{13, 9, 0});
    expectEyes(folder / "out.mp4", 384, 108, leftLuma, leftLuma);
}

TEST(SpatialVideoToSBS, matchesAnIndependentDecodeOfThePlatformsSample) {
    const auto samples = test::sampleMedia();
    if (!samples)
        GTEST_SKIP() << "no sample media";
    const TemporaryFolder folder;
    const auto input = *samples / "spatial-video" / "water_180_mvhevc_5frames.mov";
    ConversionSettings settings;
    settings.compressionQuality = 1;
    convert(settings, input, folder / "out.mp4");
    const auto out = test::decodeLuma(folder / "out.mp4");
    const auto left = test::decodeLuma(input, "0:v:0:vpos:left");
    const auto right = test::decodeLuma(input, "0:v:0:vpos:right");
    ASSERT_EQ(out.frames.size(), 5u);
    ASSERT_EQ(out.width, 2 * 1934);
    for (std::size_t frame = 0; frame < 5; ++frame) {
        std::vector<std::uint8_t> halves[2];
        for (int row = 0; row < out.height; ++row) {
            const auto begin = out.frames[frame].begin() + static_cast<std::ptrdiff_t>(row) * out.width;
            halves[0].insert(halves[0].end(), begin, begin + 1934);
            halves[1].insert(halves[1].end(), begin + 1934, begin + 3868);
        }
        EXPECT_GT(test::psnr(halves[0], left.frames[frame]), 40);
        EXPECT_GT(test::psnr(halves[1], right.frames[frame]), 40);
        EXPECT_LT(test::psnr(halves[0], right.frames[frame]), test::psnr(halves[0], left.frames[frame]) - 3);
    }
}

} // namespace
} // namespace lumetwin
