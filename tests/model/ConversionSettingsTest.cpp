// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/ConversionSettings.h"
#include "model/SystemVersion.h"

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>
#include <unordered_set>

namespace lumetwin {
namespace {

TEST(ConversionSettings, FreshRecordHasTheDefaults) {
    const ConversionSettings settings;
    EXPECT_EQ(settings.direction, ConversionDirection::spatialToSBS);
    EXPECT_FALSE(settings.inputFolderURL.has_value());
    EXPECT_FALSE(settings.inputFiles.has_value()) << "absent, not an empty list";
    EXPECT_FALSE(settings.outputFolderURL.has_value());
    EXPECT_EQ(settings.horizontalFOV, 63.4);
    EXPECT_EQ(settings.disparityAdjustment, 2.0);
    EXPECT_EQ(settings.stereoBaseline, 19.24);
    EXPECT_EQ(settings.sbsOutputFormat, SBSOutputFormat::mp4H264);
    EXPECT_EQ(settings.sbsPhotoOutputFormat, SBSPhotoOutputFormat::jpg);
    EXPECT_EQ(settings.compressionQuality, 0.75);
    EXPECT_FALSE(settings.halfWidth);
    EXPECT_FALSE(settings.swapLeftRight);
    EXPECT_FALSE(settings.enableResize);
    EXPECT_EQ(settings.resizeWidth, 1920);
    EXPECT_EQ(settings.resizeHeight, 1080);
    EXPECT_EQ(settings.resizeMode, ResizeMode::letterbox);
    EXPECT_TRUE(settings.copyAudio);
}

TEST(ConversionSettings, RecordIsNotCopied) {
    EXPECT_FALSE(std::is_copy_constructible_v<ConversionSettings>);
    EXPECT_FALSE(std::is_copy_assignable_v<ConversionSettings>);
}

TEST(ConversionSettings, TakesEverySize) {
    ConversionSettings settings;
    for (const std::int64_t size :
         {std::int64_t{0}, std::int64_t{-3}, std::int64_t{1921}, std::numeric_limits<std::int64_t>::max(),
          std::numeric_limits<std::int64_t>::min()}) {
        settings.resizeWidth = size;
        settings.resizeHeight = size;
        EXPECT_EQ(settings.resizeWidth, size);
        EXPECT_EQ(settings.resizeHeight, size);
    }
}

template <typename Cases> void expectPositions(const Cases &cases, std::size_t count) {
    EXPECT_EQ(cases.size(), count);
    std::unordered_set<typename Cases::value_type> distinct;
    for (std::size_t position = 0; position < cases.size(); ++position) {
        EXPECT_EQ(static_cast<std::size_t>(cases[position]), position);
        distinct.insert(cases[position]);
    }
    EXPECT_EQ(distinct.size(), count);
}

TEST(Enumerations, CasesAreInTheirOrder) {
    expectPositions(allConversionDirections, 2);
    expectPositions(allSBSOutputFormats, 5);
    expectPositions(allSBSPhotoOutputFormats, 4);
    expectPositions(allResizeModes, 3);
    EXPECT_EQ(allConversionDirections[1], ConversionDirection::sbsToSpatial);
    EXPECT_EQ(allSBSOutputFormats[2], SBSOutputFormat::movHEVC);
    EXPECT_EQ(allSBSPhotoOutputFormats[3], SBSPhotoOutputFormat::heic);
    EXPECT_EQ(allResizeModes[1], ResizeMode::cropFill);
}

TEST(Enumerations, VideoFormatsHaveTheirTexts) {
    EXPECT_EQ(rawValue(SBSOutputFormat::mp4H264), "MP4 (H.264)");
    EXPECT_EQ(rawValue(SBSOutputFormat::mp4H265), "MP4 (H.265/HEVC)");
    EXPECT_EQ(rawValue(SBSOutputFormat::movHEVC), "MOV (HEVC)");
    EXPECT_EQ(rawValue(SBSOutputFormat::mkvH264), "MKV (H.264)");
    EXPECT_EQ(rawValue(SBSOutputFormat::mkvH265), "MKV (H.265/HEVC)");
    for (const SBSOutputFormat format : allSBSOutputFormats)
        EXPECT_EQ(sbsOutputFormat(rawValue(format)), format);
    for (const char *other : {"mp4 (h.264)", "H.264", "MP4", "", " MP4 (H.264)", "MP4 (H.264) ", "mp4H264"})
        EXPECT_EQ(sbsOutputFormat(other), std::nullopt) << other;
}

TEST(Enumerations, PhotoFormatsHaveTheirTexts) {
    EXPECT_EQ(rawValue(SBSPhotoOutputFormat::jpg), "JPEG");
    EXPECT_EQ(rawValue(SBSPhotoOutputFormat::png), "PNG");
    EXPECT_EQ(rawValue(SBSPhotoOutputFormat::tiff), "TIFF");
    EXPECT_EQ(rawValue(SBSPhotoOutputFormat::heic), "HEIC");
    for (const SBSPhotoOutputFormat format : allSBSPhotoOutputFormats)
        EXPECT_EQ(sbsPhotoOutputFormat(rawValue(format)), format);
    for (const char *other : {"jpeg", "JPG", "Png", "", "HEIC\n"})
        EXPECT_EQ(sbsPhotoOutputFormat(other), std::nullopt) << other;
}

TEST(Enumerations, ResizeModesAreTheirPositions) {
    for (const ResizeMode mode : allResizeModes)
        EXPECT_EQ(resizeMode(rawValue(mode)), mode);
    EXPECT_EQ(rawValue(ResizeMode::letterbox), 2);
    for (const int other : {3, -1, 4, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        EXPECT_EQ(resizeMode(other), std::nullopt) << other;
}

TEST(SystemVersion, IsComparedByItsParts) {
    EXPECT_LT((SystemVersion{14, 3, 9}), (SystemVersion{14, 4, 0}));
    EXPECT_LT((SystemVersion{9, 9, 9}), (SystemVersion{14, 0, 0}));
    EXPECT_GE(SystemVersion::current(), (SystemVersion{15, 0, 0})) << "everything is available here";
}

} // namespace
} // namespace lumetwin
