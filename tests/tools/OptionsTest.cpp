// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/BatchOptions.h"
#include "tools/CaseNames.h"
#include "tools/OptionTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin::batch {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

BatchOptions parse(const std::vector<const char *> &arguments) {
    return parseOptions(arguments);
}

/// Parses a convert command with the given options.
BatchOptions withOptions(std::vector<const char *> options) {
    options.insert(options.end(), {"--output", "out", "in"});
    return parse(options);
}

std::string errorMessage(const std::vector<const char *> &options) {
    try {
        withOptions(options);
    } catch (const UsageError &error) {
        return error.what();
    }
    return {};
}

TEST(Options, DefaultsAreThoseOfTheSettings) {
    const BatchOptions options = parse({"--output", "out", "in"});
    const ConversionSettings fresh;
    const ConversionSettings &settings = *options.settings;
    EXPECT_EQ(options.command, Command::convert);
    EXPECT_EQ(settings.direction, fresh.direction);
    EXPECT_EQ(settings.outputFolderURL, std::filesystem::path("out"));
    EXPECT_EQ(settings.horizontalFOV, fresh.horizontalFOV);
    EXPECT_EQ(settings.disparityAdjustment, fresh.disparityAdjustment);
    EXPECT_EQ(settings.stereoBaseline, fresh.stereoBaseline);
    EXPECT_EQ(settings.sbsOutputFormat, fresh.sbsOutputFormat);
    EXPECT_EQ(settings.sbsPhotoOutputFormat, fresh.sbsPhotoOutputFormat);
    EXPECT_EQ(settings.compressionQuality, fresh.compressionQuality);
    EXPECT_EQ(settings.halfWidth, fresh.halfWidth);
    EXPECT_EQ(settings.swapLeftRight, fresh.swapLeftRight);
    EXPECT_EQ(settings.enableResize, fresh.enableResize);
    EXPECT_EQ(settings.resizeWidth, fresh.resizeWidth);
    EXPECT_EQ(settings.resizeHeight, fresh.resizeHeight);
    EXPECT_EQ(settings.resizeMode, fresh.resizeMode);
    EXPECT_EQ(settings.copyAudio, fresh.copyAudio);
    EXPECT_EQ(settings.keepTiming, fresh.keepTiming);
    EXPECT_EQ(settings.bitDepth, BitDepth::automatic);
    EXPECT_EQ(settings.automaticDisparity, fresh.automaticDisparity);
    EXPECT_EQ(settings.stereoValuesSource, fresh.stereoValuesSource);
    EXPECT_EQ(settings.inputLayout, fresh.inputLayout);
    EXPECT_EQ(settings.checkStereo, fresh.checkStereo);
    EXPECT_EQ(settings.recursive, fresh.recursive);
    EXPECT_EQ(settings.skipExisting, fresh.skipExisting);
    EXPECT_EQ(settings.onExisting, fresh.onExisting);
    EXPECT_EQ(options.report, std::nullopt);
    EXPECT_FALSE(options.strict);
    EXPECT_THAT(options.notices, IsEmpty());
}

TEST(Options, EveryFieldHasItsOption) {
    const BatchOptions options = parse({"--direction",
                                        "sbsToSpatial",
                                        "--sbs-output-format",
                                        "movHEVC",
                                        "--sbs-photo-output-format",
                                        "heic",
                                        "--compression-quality",
                                        "0.5",
                                        "--horizontal-fov",
                                        "71.25",
                                        "--disparity-adjustment",
                                        "-1.5",
                                        "--stereo-baseline",
                                        "64",
                                        "--stereo-values",
                                        "from-file",
                                        "--input-layout",
                                        "half-over-under",
                                        "--no-check-stereo",
                                        "--half-width",
                                        "--swap-left-right",
                                        "--enable-resize",
                                        "--resize-width",
                                        "1280",
                                        "--resize-height",
                                        "720",
                                        "--resize-mode",
                                        "stretch",
                                        "--no-copy-audio",
                                        "--keep-timing",
                                        "--bit-depth",
                                        "10",
                                        "--recursive",
                                        "--skip-existing",
                                        "--on-existing",
                                        "skip",
                                        "--report",
                                        "report.json",
                                        "--strict",
                                        "--output",
                                        "o",
                                        "i"});
    const ConversionSettings &settings = *options.settings;
    EXPECT_EQ(settings.direction, ConversionDirection::sbsToSpatial);
    EXPECT_EQ(settings.sbsOutputFormat, SBSOutputFormat::movHEVC);
    EXPECT_EQ(settings.sbsPhotoOutputFormat, SBSPhotoOutputFormat::heic);
    EXPECT_EQ(settings.compressionQuality, 0.5);
    EXPECT_EQ(settings.horizontalFOV, 71.25);
    EXPECT_EQ(settings.disparityAdjustment, -1.5);
    EXPECT_EQ(settings.stereoBaseline, 64);
    EXPECT_EQ(settings.stereoValuesSource, StereoValuesSource::file);
    EXPECT_EQ(settings.inputLayout, InputLayout::halfOverUnder);
    EXPECT_FALSE(settings.checkStereo);
    EXPECT_TRUE(settings.halfWidth);
    EXPECT_TRUE(settings.swapLeftRight);
    EXPECT_TRUE(settings.enableResize);
    EXPECT_EQ(settings.resizeWidth, 1280);
    EXPECT_EQ(settings.resizeHeight, 720);
    EXPECT_EQ(settings.resizeMode, ResizeMode::stretch);
    EXPECT_FALSE(settings.copyAudio);
    EXPECT_TRUE(settings.keepTiming);
    EXPECT_EQ(settings.bitDepth, BitDepth::ten);
    EXPECT_TRUE(settings.recursive);
    EXPECT_TRUE(settings.skipExisting);
    EXPECT_EQ(settings.onExisting, OnExisting::skip);
    EXPECT_EQ(options.report, std::filesystem::path("report.json"));
    EXPECT_TRUE(options.strict);
}

TEST(Options, EveryEnumeratorHasItsName) {
    EXPECT_EQ(withOptions({"--direction", "spatialToSBS"}).settings->direction, ConversionDirection::spatialToSBS);
    EXPECT_EQ(withOptions({"--sbs-output-format", "mp4H264"}).settings->sbsOutputFormat, SBSOutputFormat::mp4H264);
    EXPECT_EQ(withOptions({"--sbs-output-format", "mp4H265"}).settings->sbsOutputFormat, SBSOutputFormat::mp4H265);
    const char *const photos[] = {"jpg", "png", "tiff", "heic"};
    for (const SBSPhotoOutputFormat format : allSBSPhotoOutputFormats)
        EXPECT_EQ(
            withOptions({"--sbs-photo-output-format", photos[static_cast<int>(format)]}).settings->sbsPhotoOutputFormat,
            format);
    for (const auto &[name, wish] : onExistingNames)
        EXPECT_EQ(withOptions({"--on-existing", std::string(name).c_str()}).settings->onExisting, wish);
    EXPECT_EQ(onExistingNames.size(), allOnExisting.size());
    const char *const modes[] = {"stretch", "cropFill", "letterbox"};
    for (const ResizeMode mode : allResizeModes)
        EXPECT_EQ(withOptions({"--enable-resize", "--resize-mode", modes[rawValue(mode)]}).settings->resizeMode, mode);
}

TEST(Options, ValuesMayFollowAnEqualsSign) {
    EXPECT_EQ(withOptions({"--horizontal-fov=90"}).settings->horizontalFOV, 90);
    EXPECT_EQ(parse({"--output=a=b", "in"}).settings->outputFolderURL, std::filesystem::path("a=b"));
    EXPECT_EQ(errorMessage({"--half-width=yes"}), "--half-width takes no value");
    EXPECT_EQ(errorMessage({"--output="}), "--output: the folder has no name");
}

TEST(Options, TheLastOneCounts) {
    EXPECT_EQ(withOptions({"--horizontal-fov", "90", "--horizontal-fov", "80"}).settings->horizontalFOV, 80);
}

TEST(Options, InputsMayStandAnywhere) {
    const BatchOptions options = parse({"a.mov", "--output", "out", "b.mov", "-", "--", "--half-width", "inspect"});
    EXPECT_THAT(options.inputs, ElementsAre("a.mov", "b.mov", "-", "--half-width", "inspect"));
    EXPECT_FALSE(options.settings->halfWidth);
}

TEST(Options, RangesIncludeTheirEnds) {
    for (const char *value : {"10", "180", "+63.4", "1e2", "10.0"})
        EXPECT_EQ(errorMessage({"--horizontal-fov", value}), "") << value;
    for (const char *value : {"-100", "100", "0", "-0.5"})
        EXPECT_EQ(errorMessage({"--disparity-adjustment", value}), "") << value;
    for (const char *value : {"1", "200"})
        EXPECT_EQ(errorMessage({"--stereo-baseline", value}), "") << value;
    for (const char *value : {"0", "1", "0.75", ".5"})
        EXPECT_EQ(errorMessage({"--compression-quality", value}), "") << value;
}

TEST(Options, ValuesOutsideAreRefused) {
    EXPECT_EQ(errorMessage({"--horizontal-fov", "9.99"}), "--horizontal-fov: 9.99 is not between 10 and 180");
    EXPECT_EQ(errorMessage({"--horizontal-fov", "200"}), "--horizontal-fov: 200 is not between 10 and 180");
    EXPECT_EQ(errorMessage({"--disparity-adjustment", "-100.5"}),
              "--disparity-adjustment: -100.5 is not between -100 and 100");
    EXPECT_EQ(errorMessage({"--stereo-baseline", "0.5"}), "--stereo-baseline: 0.5 is not between 1 and 200");
    EXPECT_EQ(errorMessage({"--compression-quality", "1.01"}), "--compression-quality: 1.01 is not between 0 and 1");
}

TEST(Options, SizesThatNoFormatHoldsAreRefused) {
    EXPECT_EQ(errorMessage({"--enable-resize", "--resize-width", "65534"}), "");
    EXPECT_EQ(errorMessage({"--enable-resize", "--resize-width", "65536"}),
              "--resize-width: 65536 is more than 65535, the most that any format holds");
    EXPECT_EQ(errorMessage({"--enable-resize", "--resize-height", "9223372036854775806"}),
              "--resize-height: 9223372036854775806 is more than 65535, the most that any format holds");
}

TEST(Options, NumbersMustMatchCompletely) {
    for (const char *value :
         {"", "abc", "60°", "60 ", " 60", "6,5", "0x40", "nan", "inf", "1e999", "++60", "+-60", "--"})
        EXPECT_EQ(errorMessage({"--horizontal-fov", value}),
                  "--horizontal-fov: \"" + std::string(value) + "\" is not a number");
    for (const char *value : {"", "0", "-2", "1e3", "12.0", "99999999999999999999", "1920px"})
        EXPECT_EQ(errorMessage({"--enable-resize", "--resize-width", value}),
                  "--resize-width: \"" + std::string(value) + "\" is not a number of pixels");
}

TEST(Options, NamesMustMatchExactly) {
    for (const char *value : {"spatialtosbs", "SBSToSpatial", "", "sbsToSpatial "})
        EXPECT_EQ(errorMessage({"--direction", value}),
                  "--direction: \"" + std::string(value) + "\" is none of spatialToSBS, sbsToSpatial");
    EXPECT_EQ(errorMessage({"--sbs-output-format", "MP4 (H.264)"}),
              "--sbs-output-format: \"MP4 (H.264)\" is none of mp4H264, mp4H265, movHEVC, mkvH264, mkvH265");
    EXPECT_EQ(errorMessage({"--sbs-photo-output-format", "jpeg"}),
              "--sbs-photo-output-format: \"jpeg\" is none of jpg, png, tiff, heic");
    EXPECT_EQ(errorMessage({"--on-existing", "keepBoth"}),
              "--on-existing: \"keepBoth\" is none of replace, keep-both, skip");
    EXPECT_EQ(errorMessage({"--resize-mode", "fit"}), "--resize-mode: \"fit\" is none of stretch, cropFill, letterbox");
}

TEST(Options, OddSizesAreRefusedWithTheNextMultiplesOf16) {
    EXPECT_EQ(errorMessage({"--enable-resize", "--resize-width", "1921"}),
              "--resize-width and --resize-height must be even; the next multiples of 16 are 1936 and 1088");
    EXPECT_EQ(errorMessage({"--enable-resize", "--resize-height", "1"}),
              "--resize-width and --resize-height must be even; the next multiples of 16 are 1920 and 16");
    EXPECT_EQ(errorMessage({"--enable-resize", "--resize-width", "1922"}), "") << "even is enough";
    EXPECT_EQ(errorMessage({"--resize-width", "1921"}), "") << "not used";
}

TEST(Options, SizesWithoutResizingGiveANotice) {
    EXPECT_THAT(withOptions({"--resize-mode=stretch"}).notices,
                ElementsAre("--resize-mode changes nothing without --enable-resize"));
    EXPECT_THAT(withOptions({"--resize-width", "640", "--enable-resize"}).notices, IsEmpty());
}

TEST(Options, MissingValuesAndUnknownOptionsAreRefused) {
    EXPECT_THROW(parse({"in", "--output"}), UsageError);
    EXPECT_EQ(errorMessage({"--no-such"}), "unknown option --no-such");
    EXPECT_EQ(errorMessage({"--no-such=1"}), "unknown option --no-such");
    EXPECT_EQ(errorMessage({"-x"}), "unknown option -x");
    EXPECT_EQ(errorMessage({"--half"}), "unknown option --half") << "no abbreviations";
}

TEST(Options, InspectTakesFiles) {
    const BatchOptions options = parse({"inspect", "a.mov", "--json", "--", "--b.heic"});
    EXPECT_EQ(options.command, Command::inspect);
    EXPECT_TRUE(options.json);
    EXPECT_THAT(options.inputs, ElementsAre("a.mov", "--b.heic"));
}

TEST(Options, InspectIsACommandOnlyInFront) {
    EXPECT_EQ(parse({"--output", "out", "inspect"}).command, Command::convert);
}

TEST(Options, HelpComesFirstUnlessItIsAnInput) {
    EXPECT_EQ(parse({"--nonsense", "-h"}).command, Command::help);
    EXPECT_EQ(parse({"inspect", "--help"}).command, Command::help);
    EXPECT_EQ(parse({"--version"}).command, Command::version);
    EXPECT_EQ(parse({"--output", "out", "--", "--help"}).command, Command::convert);
}

TEST(Options, HelpNamesEveryOptionAndFitsATerminal) {
    const std::string help = helpText();
    for (const Option &option : optionTable())
        EXPECT_THAT(help, HasSubstr("\n  " + std::string(option.name) + " "));
    for (std::size_t begin = 0, end; (end = help.find('\n', begin)) != std::string::npos; begin = end + 1)
        EXPECT_LE(end - begin, 110u) << help.substr(begin, end - begin);
}

} // namespace
} // namespace lumetwin::batch
