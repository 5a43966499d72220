// SPDX-License-Identifier: GPL-3.0-or-later
// Films of more than 8 bits, and of high dynamic range, both ways.
#include "engine/batch/OutputNaming.h"
#include "engine/video/OutputDepth.h"
#include "media/CodingDepth.h"
#include "media/hevc/BitWriter.h"
#include "media/hevc/FramePackingUnit.h"
#include "tests/support/Clips.h"
#include "tests/support/Conversions.h"
#include "tests/support/SpatialMovie.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace lumetwin {
namespace {

using test::BoxFile;
using test::Clip;
using test::draw;
using test::TemporaryFolder;
using test::toSBS;
using test::toSpatial;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

#define SKIP_WITHOUT_TEN_BITS()                                                                                        \
    if (deepestSpatialVideo() < 10)                                                                                    \
    GTEST_SKIP() << "this x265 codes two views of 8 bits only"

/// The luma of the last frame of one stream or view, in 10 bits.
std::vector<int> tenBitLuma(const std::filesystem::path &file, const std::string &map, std::size_t samples) {
    const TemporaryFolder folder;
    test::ffmpeg({"-i", file.string(), "-map", map, "-f", "rawvideo", "-pix_fmt", "yuv420p10le",
                  (folder / "frames.raw").string()});
    const test::Bytes bytes = test::readFile(folder / "frames.raw");
    std::vector<int> luma;
    for (std::size_t at = bytes.size() - 3 * samples; luma.size() < samples; at += 2)
        luma.push_back(bytes.at(at) | bytes.at(at + 1) << 8);
    return luma;
}

constexpr int rampWidth = 1024;
constexpr int rampHeight = 96;

/// Both eyes show every level of ten bits, one column each, from the left to the right.
std::filesystem::path drawRamp(const std::filesystem::path &file) {
    test::ffmpeg({"-f", "lavfi", "-i",
                  "color=c=gray:s=2048x96:r=30,format=yuv420p10le,geq=lum='mod(X,1024)':cb=512:cr=512", "-frames:v",
                  "3", "-c:v", "ffv1", file.string()});
    return file;
}

/// Coding costs a little; but the middle of each column is about its level. 8 bits would leave 256 levels.
void expectTheRamp(const std::vector<int> &luma, std::size_t stride, std::size_t first) {
    ASSERT_EQ(luma.size(), stride * rampHeight);
    std::set<int> levels;
    int away = 0;
    for (std::size_t column = 0; column < rampWidth; ++column) {
        std::vector<int> samples;
        for (std::size_t row = 0; row < rampHeight; ++row)
            samples.push_back(luma[row * stride + first + column]);
        std::nth_element(samples.begin(), samples.begin() + rampHeight / 2, samples.end());
        const int middle = samples[rampHeight / 2];
        levels.insert(middle);
        away += std::abs(middle - static_cast<int>(column)) > 3 ? 1 : 0;
    }
    EXPECT_GT(levels.size(), 850U);
    EXPECT_LT(away, rampWidth / 100);
}

TEST(TenBitVideo, KeepsEveryStepOfARampBothWays) {
    SKIP_WITHOUT_TEN_BITS();
    const TemporaryFolder folder;
    ConversionSettings settings;
    settings.compressionQuality = 1;
    settings.checkStereo = false;
    settings.sbsOutputFormat = SBSOutputFormat::movHEVC;
    const test::Conversion there = toSpatial(settings, drawRamp(folder / "in.mkv"), folder / "out.mov");
    EXPECT_THAT(there.notes, IsEmpty());
    expectTheRamp(tenBitLuma(folder / "out.mov", "0:v:0:vpos:left", rampWidth * rampHeight), rampWidth, 0);
    expectTheRamp(tenBitLuma(folder / "out.mov", "0:v:0:vpos:right", rampWidth * rampHeight), rampWidth, 0);
    const test::Conversion back = toSBS(settings, folder / "out.mov", folder / "back.mov");
    EXPECT_THAT(back.notes, IsEmpty());
    const std::vector<int> both = tenBitLuma(folder / "back.mov", "0:v:0", 2 * rampWidth * rampHeight);
    expectTheRamp(both, 2 * rampWidth, 0);
    expectTheRamp(both, 2 * rampWidth, rampWidth);
}

Clip deep() {
    Clip clip;
    clip.format = "yuv420p10le";
    clip.video = {"-c:v", "ffv1"};
    return clip;
}

TEST(TenBitVideo, HasTheDepthThatIsWished) {
    SKIP_WITHOUT_TEN_BITS();
    const TemporaryFolder folder;
    const auto source = draw(folder / "deep.mkv", deep());
    const auto flat = draw(folder / "flat.mp4");
    const auto depthOf = [](const std::filesystem::path &movie) {
        return test::ffprobe(movie, "stream=profile,pix_fmt", {"-select_streams", "v"});
    };
    const auto tenBits = AllOf(HasSubstr("profile=Main 10"), HasSubstr("pix_fmt=yuv420p10le"));
    const auto eightBits = AllOf(HasSubstr("profile=Main\n"), HasSubstr("pix_fmt=yuv420p\n"));
    ConversionSettings settings;
    EXPECT_THAT(toSpatial(settings, source, folder / "out.mov").notes, IsEmpty());
    EXPECT_THAT(depthOf(folder / "out.mov"), tenBits);
    test::expectViews(folder / "out.mov", 192, 96);
    toSpatial(settings, flat, folder / "out.mov");
    EXPECT_THAT(depthOf(folder / "out.mov"), eightBits);
    settings.bitDepth = BitDepth::eight;
    EXPECT_THAT(toSpatial(settings, source, folder / "out.mov").notes, ElementsAre("10 bits a sample became 8."));
    EXPECT_THAT(depthOf(folder / "out.mov"), eightBits);
    settings.bitDepth = BitDepth::ten;
    toSpatial(settings, flat, folder / "out.mov");
    EXPECT_THAT(depthOf(folder / "out.mov"), tenBits);
    test::expectViews(folder / "out.mov", 192, 96);
}

TEST(TenBitVideo, KnowsTheDepthOfRgb) {
    SKIP_WITHOUT_TEN_BITS();
    const TemporaryFolder folder;
    Clip clip = deep();
    for (const auto &[format, wanted] : {std::pair{"gbrp10le", "pix_fmt=yuv420p10le"}, {"bgr0", "pix_fmt=yuv420p\n"}}) {
        clip.format = format;
        toSpatial({}, draw(folder / "rgb.mkv", clip), folder / "out.mov");
        EXPECT_THAT(test::ffprobe(folder / "out.mov", "stream=pix_fmt", {"-select_streams", "v"}), HasSubstr(wanted));
    }
}

TEST(TenBitVideo, IsEightBitsInH264) {
    SKIP_WITHOUT_TEN_BITS();
    const TemporaryFolder folder;
    ConversionSettings settings;
    toSpatial(settings, draw(folder / "deep.mkv", deep()), folder / "spatial.mov");
    EXPECT_THAT(toSBS(settings, folder / "spatial.mov", folder / "out.mp4").notes,
                ElementsAre("10 bits a sample became 8."));
    EXPECT_THAT(test::ffprobe(folder / "out.mp4", "stream=codec_name,pix_fmt"),
                AllOf(HasSubstr("codec_name=h264"), HasSubstr("pix_fmt=yuv420p\n")));
    settings.bitDepth = BitDepth::ten;
    EXPECT_THAT(toSBS(settings, folder / "spatial.mov", folder / "out.mp4").notes,
                ElementsAre("The encoder writes only 8 bits a sample.", "10 bits a sample became 8."));
    settings.sbsOutputFormat = SBSOutputFormat::mp4H265;
    EXPECT_THAT(toSBS(settings, folder / "spatial.mov", folder / "hevc.mp4").notes, IsEmpty());
    EXPECT_THAT(test::ffprobe(folder / "hevc.mp4", "stream=codec_name,profile,pix_fmt"),
                AllOf(HasSubstr("codec_name=hevc"), HasSubstr("profile=Main 10"), HasSubstr("pix_fmt=yuv420p10le")));
    test::expectHalves(folder / "hevc.mp4", 384, 96);
}

TEST(OutputDepth, SaysWhatTheEncoderCannotDo) {
    EXPECT_EQ(outputDepth(BitDepth::automatic, 8, 10).bits, 8);
    EXPECT_EQ(outputDepth(BitDepth::automatic, 10, 10).bits, 10);
    const OutputDepth withoutTen = outputDepth(BitDepth::automatic, 10, 8);
    EXPECT_EQ(withoutTen.bits, 8);
    EXPECT_THAT(withoutTen.notes, ElementsAre(Warning{WarningKind::encoderDepth, {std::int64_t{8}}},
                                              Warning{WarningKind::depthReduced, {std::int64_t{10}, std::int64_t{8}}}));
    const OutputDepth twelve = outputDepth(BitDepth::automatic, 12, 10);
    EXPECT_EQ(twelve.bits, 10);
    EXPECT_THAT(twelve.notes, ElementsAre(Warning{WarningKind::depthReduced, {std::int64_t{12}, std::int64_t{10}}}));
    EXPECT_EQ(outputDepth(BitDepth::ten, 8, 10).bits, 10);
    EXPECT_EQ(outputDepth(BitDepth::eight, 16, 10).bits, 8);
}

/// A film as cameras and discs have it: HDR10, whose stream says its light levels.
Clip hdr10() {
    Clip clip = deep();
    clip.everyEncoder = true;
    clip.video = {
        "-c:v",
        "libx265",
        "-preset",
        "ultrafast",
        "-x265-params",
        "log-level=none:colorprim=bt2020:transfer=smpte2084:colormatrix=bt2020nc:hdr10=1:"
        "master-display=G(13250,34500)B(7500,3000)R(34000,16000)WP(15635,16450)L(10000000,50):max-cll=1000,400"};
    return clip;
}

void expectHdr10(const std::filesystem::path &movie) {
    EXPECT_THAT(test::ffprobe(movie, "stream=color_primaries,color_transfer,color_space"),
                AllOf(HasSubstr("color_primaries=bt2020"), HasSubstr("color_transfer=smpte2084"),
                      HasSubstr("color_space=bt2020nc")));
    const auto levels =
        AllOf(HasSubstr("red_x=34000/50000"), HasSubstr("green_y=34500/50000"), HasSubstr("blue_x=7500/50000"),
              HasSubstr("white_point_y=16450/50000"), HasSubstr("max_luminance=10000000/10000"),
              HasSubstr("min_luminance=50/10000"), HasSubstr("max_content=1000"), HasSubstr("max_average=400"));
    // Matroska has them as floating-point numbers.
    const auto asNumbers =
        AllOf(HasSubstr("red_x=17/25"), HasSubstr("green_y=69/100"), HasSubstr("blue_x=3/20"),
              HasSubstr("white_point_y=329/1000"), HasSubstr("max_luminance=1000/1"), HasSubstr("min_luminance=1/200"),
              HasSubstr("max_content=1000"), HasSubstr("max_average=400"));
    const std::string ofContainer = test::ffprobe(movie, "stream_side_data");
    if (movie.extension() == ".mkv")
        EXPECT_THAT(ofContainer, asNumbers);
    else
        EXPECT_THAT(ofContainer, levels) << "of the container";
    // The decoder is told by the sample entry, and no access unit holds them.
    EXPECT_THAT(test::ffprobe(movie, "frame_side_data", {"-select_streams", "v"}), levels) << "of the stream";
    EXPECT_THAT(test::output({"mediainfo", movie.string()}),
                AllOf(HasSubstr("SMPTE ST 2086"), HasSubstr("10 bits"), HasSubstr("BT.2020"), HasSubstr("1000 cd/m2")));
}

TEST(TenBitVideo, KeepsWhatHdr10Says) {
    SKIP_WITHOUT_TEN_BITS();
    const TemporaryFolder folder;
    const auto source = draw(folder / "in.mp4", hdr10());
    toSpatial({}, source, folder / "out.mov");
    expectHdr10(folder / "out.mov");
    const BoxFile movie(folder / "out.mov");
    const std::string entry = "moov/trak/mdia/minf/stbl/stsd/hvc1";
    EXPECT_EQ(movie.payload(entry + "/clli"), (BoxFile::Bytes{0x03, 0xE8, 0x01, 0x90}));
    const BoxFile::Bytes mastering = movie.payload(entry + "/mdcv");
    ASSERT_EQ(mastering.size(), 24U);
    EXPECT_EQ(test::number32(mastering, 0), 13250U << 16 | 34500U) << "green comes first";
    EXPECT_EQ(test::number32(mastering, 16), 10'000'000U);
    EXPECT_EQ(test::number32(mastering, 20), 50U);
    test::checkAccessUnits(test::videoSamples(movie));
    EXPECT_TRUE(test::configuration(movie.payload(entry + "/hvcC"), 22).complete);
    test::expectViews(folder / "out.mov", 192, 96);

    ConversionSettings settings;
    for (const SBSOutputFormat format :
         {SBSOutputFormat::mp4H265, SBSOutputFormat::movHEVC, SBSOutputFormat::mkvH265}) {
        settings.sbsOutputFormat = format;
        const auto back = folder / outputName("film.mov", settings);
        toSBS(settings, folder / "out.mov", back);
        expectHdr10(back);
    }
}

TEST(TenBitVideo, TakesTheLightLevelsOfTheContainer) {
    SKIP_WITHOUT_TEN_BITS();
    const TemporaryFolder folder;
    Clip clip = hdr10();
    draw(folder / "in.mp4", clip);
    // The raw stream says them only in its first picture.
    test::ffmpeg({"-i", (folder / "in.mp4").string(), "-c", "copy", (folder / "in.hevc").string()});
    toSpatial({}, folder / "in.hevc", folder / "out.mov");
    expectHdr10(folder / "out.mov");
}

/// A message of HDR10+ (SMPTE ST 2094-40, in ITU-T T.35) as a unit of its own: one window, and no curve.
std::vector<std::uint8_t> dynamicRangeUnit() {
    media::hevc::BitWriter writer;
    constexpr std::uint32_t registered = 4; // ITU-T T.35
    constexpr std::uint32_t bytes = 22;
    constexpr std::uint32_t type = media::hevc::NalType::prefixInformation;
    for (const std::uint32_t byte : {type << 1, 1u, registered, bytes, 0xB5u, 0u, 0x3Cu, 0u, 1u, 4u, 1u})
        writer.bits(8, byte);
    writer.bits(2, 1);    // windows
    writer.bits(27, 400); // luminance of the target
    writer.bits(1, 0);
    for (int colour = 0; colour < 4; ++colour) // the brightest red, green and blue, and the mean of the brightest
        writer.bits(17, 50'000);
    writer.bits(4 + 10 + 3, 0);
    writer.bits(5, 0); // to whole bytes
    writer.bits(8, 0x80);
    return media::hevc::withEmulationPrevention(writer.take());
}

TEST(TenBitVideo, SaysThatDynamicRangeIsLeft) {
    SKIP_WITHOUT_TEN_BITS();
    const TemporaryFolder folder;
    draw(folder / "in.mp4", hdr10());
    test::ffmpeg({"-i", (folder / "in.mp4").string(), "-c", "copy", (folder / "plain.hevc").string()});
    EXPECT_THAT(toSpatial({}, folder / "plain.hevc", folder / "out.mov").notes, IsEmpty());
    std::vector<std::uint8_t> stream = test::readFile(folder / "plain.hevc");
    std::vector<std::uint8_t> unit;
    media::hevc::appendAnnexB(unit, dynamicRangeUnit());
    const std::size_t place = media::hevc::beforeFirstSlice(stream, media::hevc::Coding::hevc);
    stream.insert(stream.begin() + static_cast<std::ptrdiff_t>(place), unit.begin(), unit.end());
    test::writeFile(folder / "in.hevc", stream);
    EXPECT_THAT(test::ffprobe(folder / "in.hevc", "frame_side_data"), HasSubstr("HDR Dynamic Metadata SMPTE2094-40"));
    EXPECT_THAT(toSpatial({}, folder / "in.hevc", folder / "out.mov").notes,
                ElementsAre("Its dynamic HDR data (Dolby Vision, HDR10+) is left out."));
    ConversionSettings settings;
    settings.bitDepth = BitDepth::eight;
    EXPECT_THAT(toSpatial(settings, folder / "in.hevc", folder / "out.mov").notes,
                testing::Not(testing::Contains(HasSubstr("HDR10+"))))
        << "standard range needs none";
}

TEST(TenBitVideo, KeepsTheTagsOfHlg) {
    SKIP_WITHOUT_TEN_BITS();
    const TemporaryFolder folder;
    Clip clip = deep();
    clip.everyEncoder = true;
    clip.video = {"-c:v",         "libx265",
                  "-preset",      "ultrafast",
                  "-x265-params", "log-level=none:colorprim=bt2020:transfer=arib-std-b67:colormatrix=bt2020nc"};
    const auto hlg = AllOf(HasSubstr("color_primaries=bt2020"), HasSubstr("color_transfer=arib-std-b67"),
                           HasSubstr("color_space=bt2020nc"));
    ConversionSettings settings;
    settings.sbsOutputFormat = SBSOutputFormat::mp4H265;
    toSpatial(settings, draw(folder / "in.mp4", clip), folder / "out.mov");
    EXPECT_THAT(test::ffprobe(folder / "out.mov", "stream=color_primaries,color_transfer,color_space"), hlg);
    EXPECT_FALSE(BoxFile(folder / "out.mov").has("moov/trak/mdia/minf/stbl/stsd/hvc1/mdcv"));
    toSBS(settings, folder / "out.mov", folder / "back.mp4");
    EXPECT_THAT(test::ffprobe(folder / "back.mp4", "stream=color_primaries,color_transfer,color_space"), hlg);
    EXPECT_THAT(test::output({"mediainfo", (folder / "back.mp4").string()}), HasSubstr("HLG"));
}

TEST(TenBitVideo, BecomesStandardRangeWhereEightBitsAreWritten) {
    SKIP_WITHOUT_TEN_BITS();
    const TemporaryFolder folder;
    const auto source = draw(folder / "in.mp4", hdr10());
    const auto standard = AllOf(HasSubstr("pix_fmt=yuv420p\n"), HasSubstr("color_primaries=bt709"),
                                HasSubstr("color_transfer=bt709"), HasSubstr("color_space=bt709"));
    const auto factsOf = [](const std::filesystem::path &movie) {
        return test::ffprobe(movie, "stream=pix_fmt,color_primaries,color_transfer,color_space:stream_side_data");
    };
    const std::string note = "HDR became standard dynamic range, because the result has 8 bits a sample.";
    ConversionSettings settings;
    toSpatial(settings, source, folder / "spatial.mov");
    EXPECT_THAT(toSBS(settings, folder / "spatial.mov", folder / "out.mp4").notes,
                ElementsAre("10 bits a sample became 8.", note));
    EXPECT_THAT(factsOf(folder / "out.mp4"), AllOf(standard, testing::Not(HasSubstr("max_luminance"))));
    // Luma 60, 150 and 220 of 8 bits are PQ signals of 20, 61 and 93 %: 0.8, 265 and 5,300 cd/m², of a film of 1,000.
    const test::LumaFrames shown = test::decodeLuma(folder / "out.mp4");
    EXPECT_NEAR(shown.mean(0, 100, 60, 60, 30), 16 + 219 * std::pow(2.4 / 203, 1 / 2.4), 10);
    EXPECT_NEAR(shown.mean(0, 300, 60, 60, 30), 200, 12);
    EXPECT_GT(shown.mean(0, 8, 8, 24, 8), 230);
    settings.bitDepth = BitDepth::eight;
    EXPECT_THAT(toSpatial(settings, source, folder / "eight.mov").notes,
                ElementsAre("10 bits a sample became 8.", note));
    EXPECT_THAT(factsOf(folder / "eight.mov"), AllOf(standard, testing::Not(HasSubstr("max_luminance"))));
}

} // namespace
} // namespace lumetwin
