// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ConversionInput.h"
#include "engine/batch/OutputNaming.h"
#include "engine/texts/ProcessorError.h"
#include "engine/video/SBSVideoToSpatial.h"
#include "tests/support/Clips.h"
#include "tests/support/Conversions.h"
#include "tests/support/Paths.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin {
namespace {

using test::Clip;
using test::draw;
using test::expectViews;
using test::TemporaryFolder;
using test::toSpatial;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Filters that bring the drawn side-by-side frame into other layouts.
const std::string cut = "split[a][b];[a]crop=iw/2:ih:0:0[l];[b]crop=iw/2:ih:iw/2:0[r];";
const std::string overUnder = cut + "[l][r]vstack";
const std::string underOver = cut + "[r][l]vstack";
const std::string rightFirst = cut + "[r][l]hstack";

std::filesystem::path drawn(const std::filesystem::path &file, const std::string &filter,
                            const std::vector<std::string> &options = {}) {
    Clip clip;
    clip.filter = filter;
    clip.frames = 6;
    clip.video = {"-c:v", "libx264", "-qp", "4"};
    clip.video.insert(clip.video.end(), options.begin(), options.end());
    return draw(file, clip);
}

/// One eye of the drawn clip.
std::filesystem::path drawnEye(const std::filesystem::path &file, bool right, const std::string &more = "") {
    return drawn(file, std::string("crop=iw/2:ih:") + (right ? "iw/2" : "0") + ":0" + more);
}

ConversionSettings &with(ConversionSettings &settings, InputLayout layout) {
    settings.inputLayout = layout;
    return settings;
}

TEST(Layouts, ofTheUserAreCut) {
    const TemporaryFolder folder;
    const std::pair<InputLayout, std::string> layouts[] = {
        {InputLayout::sideBySide, "null"},
        {InputLayout::halfSideBySide, "scale=iw/2:ih:flags=area"},
        {InputLayout::overUnder, overUnder},
        {InputLayout::halfOverUnder, overUnder + ",scale=iw:ih/2:flags=area"},
    };
    for (const auto &[layout, filter] : layouts) {
        ConversionSettings settings;
        const auto input = drawn(folder / "in.mp4", filter);
        EXPECT_THAT(toSpatial(with(settings, layout), input, folder / "out.mov").warnings, IsEmpty());
        expectViews(folder / "out.mov", 192, 96);
        settings.swapLeftRight = true;
        toSpatial(settings, input, folder / "out.mov");
        expectViews(folder / "out.mov", 192, 96, test::rightLuma, test::leftLuma);
    }
}

TEST(Layouts, ofMatroskaAreFollowed) {
    const TemporaryFolder folder;
    const std::tuple<const char *, std::string, const char *> modes[] = {
        {"left_right", "null", "null"},
        {"right_left", rightFirst, "null"},
        {"top_bottom", overUnder, "null"},
        {"bottom_top", underOver, "null"},
    };
    for (const auto &[mode, filter, more] : modes) {
        const auto input = drawn(folder / "in.mkv", filter, {"-metadata:s:v:0", std::string("stereo_mode=") + mode});
        EXPECT_THAT(toSpatial({}, input, folder / "out.mov").warnings, IsEmpty()) << mode;
        expectViews(folder / "out.mov", 192, 96);
    }
}

TEST(Layouts, ofTheVideoStreamAreFollowed) {
    const TemporaryFolder folder;
    const auto input = drawn(folder / "in.mp4", overUnder, {"-x264-params", "frame-packing=4"});
    const test::Conversion conversion = toSpatial({}, input, folder / "out.mov");
    EXPECT_THAT(conversion.warnings, IsEmpty());
    EXPECT_THAT(conversion.notes, ElementsAre(HasSubstr("over-under (says the video stream)")));
    expectViews(folder / "out.mov", 192, 96);
}

TEST(Layouts, ofOurOwnFilmsAreFollowed) {
    const TemporaryFolder folder;
    const auto spatial = test::drawStereo(folder / "spatial.mov", {192, 96, 6});
    for (const SBSOutputFormat format : allSBSOutputFormats)
        for (const bool swapped : {false, true}) {
            ConversionSettings settings;
            settings.sbsOutputFormat = format;
            settings.swapLeftRight = swapped;
            const auto sbs = folder / outputName("film.mov", settings);
            test::toSBS(settings, spatial, sbs);
            test::expectHalves(sbs, 384, 96, swapped ? test::rightLuma : test::leftLuma,
                               swapped ? test::leftLuma : test::rightLuma);
            EXPECT_FALSE(lookAt(media::InputFile(sbs)).isSpatial);
            EXPECT_THAT(toSpatial({}, sbs, folder / "back.mov").warnings, IsEmpty());
            expectViews(folder / "back.mov", 192, 96);
        }
}

TEST(Layouts, ofOurOwnHalfFilmsAreFollowedWhereTheFormatCanSayIt) {
    const TemporaryFolder folder;
    const auto spatial = test::drawStereo(folder / "spatial.mov", {192, 96, 6});
    ConversionSettings settings;
    settings.halfWidth = true;
    settings.compressionQuality = 1;
    for (const bool swapped : {false, true}) {
        settings.swapLeftRight = swapped;
        settings.sbsOutputFormat = SBSOutputFormat::mp4H265;
        test::toSBS(settings, spatial, folder / "sbs.mp4");
        toSpatial({}, folder / "sbs.mp4", folder / "back.mov");
        expectViews(folder / "back.mov", 192, 96);
        settings.sbsOutputFormat = SBSOutputFormat::mp4H264;
        test::toSBS(settings, spatial, folder / "sbs.mp4");
        toSpatial({}, folder / "sbs.mp4", folder / "back.mov");
        expectViews(folder / "back.mov", 96, 96);
        for (const SBSOutputFormat format : {SBSOutputFormat::mkvH264, SBSOutputFormat::mkvH265}) {
            settings.sbsOutputFormat = format;
            test::toSBS(settings, spatial, folder / "sbs.mkv");
            test::expectHalves(folder / "sbs.mkv", 192, 96, swapped ? test::rightLuma : test::leftLuma,
                               swapped ? test::leftLuma : test::rightLuma);
            toSpatial({}, folder / "sbs.mkv", folder / "back.mov");
            expectViews(folder / "back.mov", 192, 96);
        }
    }
}

TEST(Layouts, ofANameOnlyWarn) {
    const TemporaryFolder folder;
    const auto input = drawn(folder / "film.half-ou.mp4", "null");
    EXPECT_THAT(toSpatial({}, input, folder / "out.mov").warnings, ElementsAre(HasSubstr("over-under, half height")));
    expectViews(folder / "out.mov", 192, 96);
}

TEST(Layouts, twoStreamsGiveAnEyeEach) {
    const TemporaryFolder folder;
    const auto left = drawnEye(folder / "left.mp4", false);
    const auto right = drawnEye(folder / "right.mp4", true);
    test::ffmpeg({"-i", left.string(), "-i", right.string(), "-map", "0:v", "-map", "1:v", "-c", "copy",
                  (folder / "both.mkv").string()});
    const test::Conversion conversion = toSpatial({}, folder / "both.mkv", folder / "out.mov");
    EXPECT_EQ(conversion.outcome.framesWritten, 6);
    EXPECT_THAT(conversion.notes, ElementsAre(HasSubstr("two video streams")));
    expectViews(folder / "out.mov", 192, 96);
    ConversionSettings settings;
    settings.swapLeftRight = true;
    toSpatial(settings, folder / "both.mkv", folder / "out.mov");
    expectViews(folder / "out.mov", 192, 96, test::rightLuma, test::leftLuma);
}

Outcome convertFiles(const std::filesystem::path &left, const std::filesystem::path &right,
                     const std::filesystem::path &output, const ConversionSettings &settings = {}) {
    const ConversionInput input{media::InputFile(left), media::InputFile(right)};
    return convertFile(MediaOperations::inProcess(), ConversionKind::sbsVideoToSpatial, settings, input, output, {},
                       SystemVersion::current());
}

TEST(Layouts, twoFilesGiveAnEyeEach) {
    const TemporaryFolder folder;
    const auto left = drawnEye(folder / "a_L.mp4", false);
    const auto right = drawnEye(folder / "a_R.mkv", true);
    EXPECT_EQ(convertFiles(left, right, folder / "out.mov").framesWritten, 6);
    expectViews(folder / "out.mov", 192, 96);
}

TEST(Layouts, twoFilesOfDifferentSizeAreRefused) {
    const TemporaryFolder folder;
    const auto left = drawnEye(folder / "a_L.mp4", false);
    const auto right = drawnEye(folder / "a_R.mp4", true, ",scale=100:50");
    try {
        convertFiles(left, right, folder / "out.mov");
        FAIL() << "no error";
    } catch (const ProcessorError &error) {
        EXPECT_THAT(error.what(), HasSubstr("192 × 96 and 100 × 50"));
    }
}

TEST(Layouts, aFrameWithoutItsPartnerIsLeftOut) {
    const TemporaryFolder folder;
    const auto left = drawnEye(folder / "a_L.mp4", false);
    // The fourth picture is missing, the others keep their times.
    const auto right = drawnEye(folder / "a_R.mkv", true, ",select='not(eq(n,3))'");
    EXPECT_EQ(convertFiles(left, right, folder / "out.mov").framesWritten, 5);
    expectViews(folder / "out.mov", 192, 96);
}

TEST(Layouts, withoutASecondEyeAreRefused) {
    const TemporaryFolder folder;
    const auto input = drawn(folder / "in.mp4", "null");
    for (const InputLayout layout : {InputLayout::twoStreams, InputLayout::twoFiles, InputLayout::twoPictures}) {
        ConversionSettings settings;
        EXPECT_THROW(toSpatial(with(settings, layout), input, folder / "out.mov"), ProcessorError);
    }
}

} // namespace
} // namespace lumetwin
