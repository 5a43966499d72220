// SPDX-License-Identifier: GPL-3.0-or-later
// Ordinary movies of every container and codec that is taken, in both directions. The distribution's ffmpeg draws
// them.
#include "tests/support/BoxEdits.h"
#include "tests/support/Clips.h"
#include "tests/support/Conversions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

namespace lumetwin {
namespace {

using test::Clip;
using test::TemporaryFolder;
using testing::HasSubstr;
using Options = std::vector<std::string>;

struct Source {
    std::string name; ///< file name; its extension says the container
    Options video;
    std::string format = "yuv420p"; ///< of the samples
    std::string filter = {};
};

void PrintTo(const Source &source, std::ostream *stream) {
    *stream << source.name;
}

constexpr int frameCount = 8;

class Sources : public testing::TestWithParam<Source> {
protected:
    std::filesystem::path draw() const {
        Clip clip;
        clip.width = 512; // the smallest that each of the encoders takes
        clip.height = 144;
        clip.frames = frameCount;
        clip.format = GetParam().format;
        clip.filter = GetParam().filter;
        clip.video = GetParam().video;
        clip.everyEncoder = true;
        return test::draw(folder / GetParam().name, clip);
    }

    TemporaryFolder folder;
};

TEST_P(Sources, becomeSpatial) {
    const auto source = draw();
    const test::Conversion run = test::toSpatial({}, source, folder / "out.mov");
    const auto judged = test::decodeLuma(source);
    const auto left = test::decodeLuma(folder / "out.mov", "0:v:0:vpos:left");
    const auto right = test::decodeLuma(folder / "out.mov", "0:v:0:vpos:right");
    ASSERT_EQ(left.width, 256);
    ASSERT_EQ(left.height, 144);
    ASSERT_EQ(left.frames.size(), std::size_t{frameCount});
    ASSERT_EQ(right.frames.size(), std::size_t{frameCount});
    for (std::size_t frame = 0; frame < frameCount; ++frame) {
        const auto halves = test::halves(judged, frame);
        EXPECT_GT(test::psnr(left.frames[frame], halves[0]), 36) << frame;
        EXPECT_GT(test::psnr(right.frames[frame], halves[1]), 36) << frame;
    }
    EXPECT_TRUE(run.warnings.empty()) << run.warnings.front();
}

TEST_P(Sources, areShownToBothEyes) {
    const auto source = draw();
    ConversionSettings settings;
    settings.compressionQuality = 1;
    if (std::string_view(GetParam().name).find("pq") != std::string_view::npos)
        settings.sbsOutputFormat = SBSOutputFormat::mp4H265; // H.264 makes standard range of it
    const test::Conversion run = test::toSBS(settings, source, folder / "out.mp4");
    const auto written = test::decodeLuma(folder / "out.mp4");
    const auto judged = test::decodeLuma(source);
    ASSERT_EQ(written.width, 1024);
    ASSERT_EQ(written.frames.size(), std::size_t{frameCount});
    ASSERT_EQ(judged.frames.size(), std::size_t{frameCount});
    for (std::size_t frame = 0; frame < frameCount; ++frame)
        for (const auto &half : test::halves(written, frame))
            EXPECT_GT(test::psnr(half, judged.frames[frame]), 38) << frame;
    EXPECT_TRUE(run.warnings.empty()) << run.warnings.front();
}

Options vpx(const std::string &encoder, const std::string &profile = "0") {
    return {"-c:v", encoder, "-b:v", "4M", "-deadline", "realtime", "-cpu-used", "8", "-profile:v", profile};
}

Options x265(const std::string &parameters = "") {
    return {"-c:v", "libx265", "-preset", "ultrafast", "-x265-params", "log-level=none:crf=8" + parameters};
}

Options x264(const Options &more = {}) {
    Options words{"-c:v", "libx264", "-preset", "ultrafast", "-qp", "6"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

const Source sources[] = {
    {"vp8.mkv", vpx("libvpx")},
    {"vp9.mkv", vpx("libvpx-vp9")},
    {"vp8.webm", vpx("libvpx")},
    {"vp9.webm", vpx("libvpx-vp9")},
    {"vp9_10.mkv", vpx("libvpx-vp9", "2"), "yuv420p10le"},
    {"vp9_444.mkv", vpx("libvpx-vp9", "1"), "yuv444p"},
    {"av1.mkv", {"-c:v", "libaom-av1", "-b:v", "4M", "-usage", "realtime", "-cpu-used", "8"}},
    {"av1.webm", {"-c:v", "libaom-av1", "-b:v", "4M", "-usage", "realtime", "-cpu-used", "8"}},
    {"av1_10.mkv", {"-c:v", "libsvtav1", "-preset", "12", "-crf", "10"}, "yuv420p10le"},
    {"av1.mp4", {"-c:v", "libsvtav1", "-preset", "12", "-crf", "10"}},
    {"mpeg4.avi", {"-c:v", "mpeg4", "-q:v", "2"}},
    {"mpeg4_b.avi", {"-c:v", "mpeg4", "-q:v", "2", "-bf", "2"}},
    {"mpeg4.mp4", {"-c:v", "mpeg4", "-q:v", "2"}},
    {"mpeg4.3gp", {"-c:v", "mpeg4", "-q:v", "2"}},
    {"xvid.avi", {"-c:v", "mpeg4", "-q:v", "2", "-vtag", "XVID"}},
    {"mpeg2.mkv", {"-c:v", "mpeg2video", "-q:v", "2"}},
    {"mjpeg.avi", {"-c:v", "mjpeg", "-q:v", "2"}, "yuvj420p"},
    {"mjpeg.mov", {"-c:v", "mjpeg", "-q:v", "2"}, "yuvj422p"},
    {"prores.mov", {"-c:v", "prores_ks", "-profile:v", "3"}, "yuv422p10le"},
    {"prores_4444.mov", {"-c:v", "prores_ks", "-profile:v", "4444"}, "yuva444p10le"},
    {"dnxhr.mov", {"-c:v", "dnxhd", "-profile:v", "dnxhr_hq"}, "yuv422p"},
    {"dnxhr_10.mov", {"-c:v", "dnxhd", "-profile:v", "dnxhr_hqx"}, "yuv422p10le"},
    {"h264.m4v", x264({"-f", "mp4"})},
    {"h264.3gp", x264()},
    {"h264.ts", x264()},
    {"h264_b.m2ts", {"-c:v", "libx264", "-bf", "3", "-qp", "6", "-mpegts_m2ts_mode", "1"}},
    {"hevc_10.ts", x265(), "yuv420p10le"},
    {"mpeg2.mts", {"-c:v", "mpeg2video", "-q:v", "2", "-f", "mpegts"}},
    {"wmv1.wmv", {"-c:v", "wmv1", "-q:v", "2"}},
    {"wmv2.wmv", {"-c:v", "wmv2", "-q:v", "2"}},
    {"h264_422_10.mp4", x264(), "yuv422p10le"},
    {"h264_444.mkv", x264(), "yuv444p"},
    {"h264_b.mp4", {"-c:v", "libx264", "-bf", "3", "-qp", "6"}},
    {"h264_full.mp4", x264(), "yuvj420p"},
    {"h264_fragments.mp4", x264({"-movflags", "+frag_keyframe+empty_moov", "-g", "3"})},
    {"h264_anamorphic.mp4", x264(), "yuv420p", "setsar=4/3"},
    {"hevc.mov", x265(), "yuv420p"},
    {"hevc_10.mp4", x265(), "yuv420p10le"},
    {"hevc_12_444.mkv", x265(), "yuv444p12le"},
    {"raw.hevc", x265()},
    {"raw_10.hevc", x265(":bframes=3"), "yuv420p10le"},
    {"hevc_pq.mp4", x265(":colorprim=bt2020:transfer=smpte2084:colormatrix=bt2020nc"), "yuv420p10le"},
    {"ffv1.mkv", {"-c:v", "ffv1"}, "yuv444p10le"},
    {"huffyuv.avi", {"-c:v", "huffyuv"}, "yuv422p"},
    {"raw_bgr.avi", {"-c:v", "rawvideo"}, "bgr24"},
    {"raw_uyvy.mov", {"-c:v", "rawvideo"}, "uyvy422"},
};

INSTANTIATE_TEST_SUITE_P(Kinds, Sources, testing::ValuesIn(sources), [](const testing::TestParamInfo<Source> &entry) {
    std::string name = entry.param.name;
    std::replace(name.begin(), name.end(), '.', '_');
    return name;
});

TEST(SpecialSources, rotatedMoviesAreTakenAsTheyAreStored) {
    const TemporaryFolder folder;
    test::draw(folder / "flat.mp4");
    test::ffmpeg({"-display_rotation", "90", "-i", (folder / "flat.mp4").string(), "-c", "copy",
                  (folder / "turned.mp4").string()});
    test::toSpatial({}, folder / "turned.mp4", folder / "out.mov");
    test::expectViews(folder / "out.mov", 192, 96);
    EXPECT_THAT(test::ffprobe(folder / "out.mov", "stream_side_data=rotation"), testing::Not(HasSubstr("rotation")));
    test::toSBS({}, folder / "turned.mp4", folder / "out.mp4");
    EXPECT_EQ(test::decodeLuma(folder / "out.mp4").width, 768);
}

/// How wide a movie of one track says that this is shown, in pixels. (What was its header in the meantime lies in front
/// of the last one.)
unsigned shownWidth(const std::filesystem::path &movie) {
    const test::Bytes bytes = test::readFile(movie);
    const std::string type = "tkhd";
    const auto found = std::find_end(bytes.begin(), bytes.end(), type.begin(), type.end());
    const auto width = static_cast<std::size_t>(found - bytes.begin()) + 4 + 76; // version 0, 16.16
    return static_cast<unsigned>(bytes.at(width) << 8 | bytes.at(width + 1));
}

Clip clipOfPixels(const std::string &shape) {
    Clip clip;
    clip.everyEncoder = true;
    clip.filter = "setsar=" + shape;
    return clip;
}

TEST(SpecialSources, theShapeOfPixelsIsCarried) {
    const TemporaryFolder folder;
    Clip clip = clipOfPixels("4/3");
    test::draw(folder / "wide.mp4", clip);
    clip.video = {"-c:v", "ffv1"};
    test::draw(folder / "wide.mkv", clip);
    const std::string wide = "sample_aspect_ratio=4:3\n";
    for (const char *name : {"wide.mp4", "wide.mkv"}) {
        test::toSpatial({}, folder / name, folder / "out.mov");
        EXPECT_EQ(test::ffprobe(folder / "out.mov", "stream=sample_aspect_ratio"), wide) << name;
        EXPECT_EQ(shownWidth(folder / "out.mov"), 256U) << name;
        ConversionSettings settings;
        for (const SBSOutputFormat format : allSBSOutputFormats) {
            settings.sbsOutputFormat = format;
            test::toSBS(settings, folder / name, folder / "out.mp4");
            EXPECT_EQ(test::ffprobe(folder / "out.mp4", "stream=sample_aspect_ratio"), wide) << name;
            if (rawValue(format).starts_with("MKV")) // the shape of one eye
                EXPECT_THAT(test::output({"mediainfo", "--Output=Video;%DisplayAspectRatio%", (folder / "out.mp4")}),
                            HasSubstr("5.333"));
            else
                EXPECT_EQ(shownWidth(folder / "out.mp4"), 1024U) << name;
        }
    }
}

TEST(SpecialSources, pixelsOfAnAskedSizeAreSquare) {
    const TemporaryFolder folder;
    test::draw(folder / "wide.mp4", clipOfPixels("4/3"));
    ConversionSettings settings;
    settings.enableResize = true;
    settings.resizeWidth = 256;
    settings.resizeHeight = 96;
    test::toSpatial(settings, folder / "wide.mp4", folder / "out.mov");
    EXPECT_EQ(shownWidth(folder / "out.mov"), 256U);
    test::toSBS(settings, folder / "wide.mp4", folder / "out.mp4");
    EXPECT_EQ(shownWidth(folder / "out.mp4"), 512U);
}

TEST(SpecialSources, absurdShapesOfPixelsAreNotBelieved) {
    const TemporaryFolder folder;
    test::draw(folder / "thin.mp4", clipOfPixels("1/9"));
    test::toSpatial({}, folder / "thin.mp4", folder / "out.mov");
    EXPECT_EQ(shownWidth(folder / "out.mov"), 192U);
}

TEST(SpecialSources, rowsOfInterlacedFramesStayWhereTheyAre) {
    const TemporaryFolder folder;
    // Two fields that could not differ more.
    const std::string fields =
        "color=gray:s=384x96:r=25,format=yuv420p,geq=lum='if(mod(Y\\,2)\\,40\\,200)':cb=128:cr=128,setfield=tff";
    test::systemFfmpeg({"-f", "lavfi", "-i", fields, "-frames:v", "4", "-c:v", "libx264", "-qp", "4", "-flags",
                        "+ilme+ildct", "-x264-params", "tff=1", (folder / "in.mp4").string()});
    EXPECT_THAT(test::ffprobe(folder / "in.mp4", "stream=field_order"), HasSubstr("=tt"));
    test::toSpatial({}, folder / "in.mp4", folder / "out.mov");
    for (const char *view : {"0:v:0:vpos:left", "0:v:0:vpos:right"}) {
        const auto frames = test::decodeLuma(folder / "out.mov", view);
        ASSERT_EQ(frames.frames.size(), 4U);
        for (int row = 0; row < 96; ++row)
            EXPECT_NEAR(frames.mean(3, 0, row, 192, 1), row % 2 ? 40 : 200, 6) << view << ", row " << row;
    }
}

TEST(SpecialSources, colourTagsOfWideFilmsAreCarriedIntoSBS) {
    const TemporaryFolder folder;
    Clip clip;
    clip.format = "yuv420p10le";
    clip.video = x265(":colorprim=bt2020:transfer=smpte2084:colormatrix=bt2020nc:range=limited");
    clip.everyEncoder = true;
    test::draw(folder / "in.mp4", clip);
    ConversionSettings settings;
    for (const SBSOutputFormat format : allSBSOutputFormats) {
        settings.sbsOutputFormat = format;
        test::toSBS(settings, folder / "in.mp4", folder / "out.mp4");
        const std::string facts =
            test::ffprobe(folder / "out.mp4", "stream=color_range,color_space,color_transfer,color_primaries");
        if (format == SBSOutputFormat::mp4H264 || format == SBSOutputFormat::mkvH264)
            EXPECT_EQ(facts, "color_range=tv\ncolor_space=bt709\ncolor_transfer=bt709\ncolor_primaries=bt709\n");
        else
            EXPECT_EQ(facts,
                      "color_range=tv\ncolor_space=bt2020nc\ncolor_transfer=smpte2084\ncolor_primaries=bt2020\n");
    }
}

TEST(SpecialSources, coloursOfRgbAreWhatTheirTagsSay) {
    struct Rgb {
        const char *name;
        const char *encoder;
        const char *format;
        const char *colour;
        double luma; ///< of limited range
        const char *matrix = "bt709";
    };
    constexpr double red = 16 + 219 * 0.2126;
    constexpr double redOfBT601 = 16 + 219 * 0.299;
    constexpr double grey = 16 + 219 * 200 / 255.0;
    const TemporaryFolder folder;
    for (const Rgb &rgb : {Rgb{"raw.avi", "rawvideo", "bgr24", "red", red},
                           {"raw32.avi", "rawvideo", "bgra", "red", red},
                           {"rgb.mov", "png", "rgb24", "red", red},
                           {"palette.mov", "png", "pal8", "red", redOfBT601, "smpte170m"},
                           {"palette.avi", "rawvideo", "pal8", "red", redOfBT601, "smpte170m"},
                           {"planes.mkv", "ffv1", "gbrp", "red", red},
                           {"grey_alpha.mov", "png", "ya8", "0xC8C8C8", grey},
                           {"deep_grey.mov", "png", "gray16be", "0xC8C8C8", grey}}) {
        test::systemFfmpeg({"-f", "lavfi", "-i", std::string("color=") + rgb.colour + ":s=384x96:r=30", "-frames:v",
                            "2", "-c:v", rgb.encoder, "-pix_fmt", rgb.format, (folder / rgb.name).string()});
        test::toSpatial({}, folder / rgb.name, folder / "out.mov");
        EXPECT_NEAR(test::decodeLuma(folder / "out.mov").mean(1, 20, 20, 100, 50), rgb.luma, 2) << rgb.name;
        const std::string tags = test::ffprobe(folder / "out.mov", "stream=color_range,color_space");
        EXPECT_THAT(tags, HasSubstr("color_range=tv\n")) << rgb.name;
        EXPECT_THAT(tags, HasSubstr(std::string("color_space=") + rgb.matrix + "\n")) << rgb.name;
    }
}

TEST(SpecialSources, anUnknownRateIsTakenAsThirtyFrames) {
    const TemporaryFolder folder;
    Clip clip;
    clip.frames = 1; // from several a rate would be guessed
    clip.video = {"-c:v", "ffv1"};
    const auto source = test::draw(folder / "in.mkv", clip);
    // The element of the frames' duration becomes a void one of the same size.
    const test::Bytes bytes = test::readFile(source);
    const test::Bytes duration{0x23, 0xE3, 0x83, 0x84};
    const auto found = std::search(bytes.begin(), bytes.end(), duration.begin(), duration.end());
    ASSERT_NE(found, bytes.end());
    test::overwrite(source, static_cast<std::size_t>(found - bytes.begin()), {0xEC, 0x86, 0, 0, 0, 0, 0, 0});
    ASSERT_EQ(test::ffprobe(source, "stream=avg_frame_rate"), "avg_frame_rate=0/0\n");
    const auto unknownTotal = std::vector<std::pair<std::int64_t, std::int64_t>>{{0, 0}};
    EXPECT_EQ(test::toSpatial({}, source, folder / "out.mov").progress, unknownTotal);
    EXPECT_EQ(test::ffprobe(folder / "out.mov", "packet=pts:stream=duration"), "pts=0\nduration=0.033333\n");
    EXPECT_EQ(test::toSBS({}, source, folder / "out.mp4").progress, unknownTotal);
    EXPECT_EQ(test::ffprobe(folder / "out.mp4", "packet=pts:stream=duration"), "pts=0\nduration=0.033333\n");
}

TEST(SpecialSources, variableRatesOfMatroskaBecomeConstant) {
    const TemporaryFolder folder;
    Clip clip;
    clip.frames = 12;
    clip.filter = "setpts='(N+20*gte(N,5)+floor(N/3))/30/TB'";
    clip.video = {"-c:v", "libx264", "-qp", "6", "-fps_mode", "vfr"};
    test::draw(folder / "in.mkv", clip);
    test::toSBS({}, folder / "in.mkv", folder / "out.mp4");
    EXPECT_EQ(test::decodeLuma(folder / "out.mp4").frames.size(), 12U);
    // Twelve frames that are shown for 35/30 s: 600 × 35 / 360, truncated.
    std::string twelve;
    for (int frame = 0; frame < 12; ++frame)
        twelve += "dts=" + std::to_string((frame - 2) * 58) + "\n";
    EXPECT_EQ(test::ffprobe(folder / "out.mp4", "packet=dts"), twelve);
}

} // namespace
} // namespace lumetwin
