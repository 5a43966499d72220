// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/StereoEncoderSettings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace lumetwin {
namespace {

using testing::ElementsAre;

constexpr SystemVersion newest = SystemVersion::current();
using List = std::vector<std::int64_t>;

std::vector<std::string> keys(const EncoderProperties &table) {
    std::vector<std::string> names;
    for (const EncoderProperty &property : table)
        names.push_back(property.key);
    return names;
}

EncoderProperties compression(const ConversionSettings &settings, SystemVersion system = newest) {
    return *find<EncoderProperties>(outputSettings(settings, {960, 1080}, 30, system),
                                    "AVVideoCompressionPropertiesKey");
}

TEST(EyeSize, HalvesTheSource) {
    ConversionSettings settings;
    EXPECT_EQ(eyeSize(settings, 3840, 1080).width, 1920);
    EXPECT_EQ(eyeSize(settings, 3840, 1080).height, 1080);
}

TEST(EyeSize, LosesTheLastColumnOfAnOddSource) {
    ConversionSettings settings;
    EXPECT_EQ(eyeSize(settings, 1921, 1080).width, 960);
    EXPECT_EQ(eyeSize(settings, 1919, 1080).width, 959);
}

TEST(EyeSize, IsTheResizeTargetAsItStands) {
    ConversionSettings settings;
    settings.enableResize = true;
    settings.resizeWidth = 1001;
    settings.resizeHeight = 333;
    EXPECT_EQ(eyeSize(settings, 3840, 1080).width, 1001);
    EXPECT_EQ(eyeSize(settings, 3840, 1080).height, 333);
}

TEST(EyeSize, IgnoresHalfWidth) {
    ConversionSettings settings;
    settings.halfWidth = true;
    EXPECT_EQ(eyeSize(settings, 3840, 1080).width, 1920);
}

TEST(SpatialBitRate, FollowsOneEyesPixels) {
    EXPECT_EQ(spatialBitRate({960, 1080}, 30, 0.8), 3'732'480);
    EXPECT_EQ(spatialBitRate({1920, 1080}, 30, 0.9), 8'398'080);
    EXPECT_EQ(spatialBitRate({1920, 1080}, static_cast<double>(29.97F), 1.0), 9'321'868);
}

TEST(SpatialBitRate, IsNeverBelowOneMegabit) {
    EXPECT_EQ(spatialBitRate({640, 360}, 30, 0.5), 1'000'000);
    EXPECT_EQ(spatialBitRate({1920, 1080}, 30, 0), 1'000'000);
    EXPECT_EQ(spatialBitRate({0, 1080}, 30, 1), 1'000'000);
}

TEST(SpatialBitRateDeathTest, StopsTheProgramOutOfRange) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_DEATH(spatialBitRate({std::int64_t{1} << 40, std::int64_t{1} << 40}, 30, 1), "size of an eye overflows");
    EXPECT_DEATH(spatialBitRate({1920, 1080}, infinity, 1), "bit rate is out of range");
    EXPECT_DEATH(spatialBitRate({1920, 1080}, std::nan(""), 1), "bit rate is out of range");
    EXPECT_DEATH(spatialBitRate({1920, 1080}, 1e15, 1), "bit rate is out of range");
    EXPECT_DEATH(spatialBitRate({1920, 1080}, 1e15, -1), "bit rate is out of range");
}

TEST(StereoUnits, TruncateTowardZero) {
    EXPECT_EQ(baselineInMicrometres(63.5), 63500U);
    EXPECT_EQ(baselineInMicrometres(64.0001), 64000U);
    EXPECT_EQ(fieldOfViewInThousandths(90.0004), 90000U);
    EXPECT_EQ(disparityInTenThousandths(2.5), 250);
    EXPECT_EQ(disparityInTenThousandths(-1.234), -123);
}

TEST(StereoUnits, TurnSmallNegativesIntoZero) {
    EXPECT_EQ(baselineInMicrometres(-0.0005), 0U);
    EXPECT_EQ(fieldOfViewInThousandths(-0.0009), 0U);
}

TEST(StereoUnits, HoldTheirTypesWholeRange) {
    EXPECT_EQ(baselineInMicrometres(4294967.295), 4294967295U);
    EXPECT_EQ(disparityInTenThousandths(21474836.475), 2147483647);
    EXPECT_EQ(disparityInTenThousandths(-21474836.485), std::numeric_limits<std::int32_t>::min());
}

TEST(StereoUnitsDeathTest, StopTheProgramOutOfRange) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {-0.001, 4294967.296, infinity, -infinity, std::nan("")}) {
        EXPECT_DEATH(baselineInMicrometres(value), "stereo baseline is out of range") << value;
        EXPECT_DEATH(fieldOfViewInThousandths(value), "field of view is out of range") << value;
    }
    for (const double value : {-21474836.49, 21474836.48, infinity, std::nan("")})
        EXPECT_DEATH(disparityInTenThousandths(value), "disparity adjustment is out of range") << value;
}

TEST(StereoUnits, TakeEveryValueOfTheForm) {
    for (const double degrees : {10.0, 63.4, 180.0})
        EXPECT_EQ(fieldOfViewInThousandths(degrees), static_cast<std::uint32_t>(degrees * 1000));
    for (const double percent : {-100.0, 0.0, 100.0})
        EXPECT_EQ(disparityInTenThousandths(percent), static_cast<std::int32_t>(percent * 100));
    for (const double millimetres : {1.0, 19.24, 200.0})
        EXPECT_EQ(baselineInMicrometres(millimetres), static_cast<std::uint32_t>(millimetres * 1000));
}

TEST(OutputSettings, HaveFourEntries) {
    const EncoderProperties table = outputSettings(ConversionSettings(), {960, 1080}, 30, newest);
    EXPECT_THAT(keys(table), ElementsAre("AVVideoCodecKey", "AVVideoWidthKey", "AVVideoHeightKey",
                                         "AVVideoCompressionPropertiesKey"));
    EXPECT_EQ(*find<std::string>(table, "AVVideoCodecKey"), "AVVideoCodecTypeHEVC");
    EXPECT_EQ(*find<std::int64_t>(table, "AVVideoWidthKey"), 960);
    EXPECT_EQ(*find<std::int64_t>(table, "AVVideoHeightKey"), 1080);
}

TEST(OutputSettings, ListTheCompressionPropertiesInOrder) {
    ConversionSettings settings;
    settings.compressionQuality = 0.8;
    const EncoderProperties expected{
        {"kVTCompressionPropertyKey_MVHEVCVideoLayerIDs", List{0, 1}},
        {"kVTCompressionPropertyKey_MVHEVCViewIDs", List{0, 1}},
        {"kVTCompressionPropertyKey_MVHEVCLeftAndRightViewIDs", List{0, 1}},
        {"kVTCompressionPropertyKey_HasLeftStereoEyeView", true},
        {"kVTCompressionPropertyKey_HasRightStereoEyeView", true},
        {"kVTCompressionPropertyKey_AverageBitRate", std::int64_t{3'732'480}},
        {"kVTCompressionPropertyKey_ProfileLevel", std::string("kVTProfileLevel_HEVC_Main_AutoLevel")},
        {"kVTCompressionPropertyKey_ProjectionKind", std::string("kCMFormatDescriptionProjectionKind_Rectilinear")},
        {"kVTCompressionPropertyKey_StereoCameraBaseline", std::uint32_t{19240}},
        {"kVTCompressionPropertyKey_HorizontalFieldOfView", std::uint32_t{63400}},
        {"kVTCompressionPropertyKey_HorizontalDisparityAdjustment", std::int32_t{200}},
    };
    EXPECT_EQ(compression(settings), expected);
}

TEST(OutputSettings, LeaveTheProjectionOutBeforeVersion15) {
    ConversionSettings settings;
    EncoderProperties expected = compression(settings);
    std::erase_if(expected, [](const EncoderProperty &property) {
        return property.key == "kVTCompressionPropertyKey_ProjectionKind";
    });
    EXPECT_EQ(expected.size(), 10U);
    EXPECT_EQ(compression(settings, {14, 7, 9}), expected);
    EXPECT_EQ(compression(settings, {14, 4, 0}), expected);
    EXPECT_EQ(compression(settings, {15, 0, 0}), compression(settings));
}

TEST(OutputSettings, NameTheFieldOfViewDifferentlyBeforeVersion14Point4) {
    const EncoderProperties table = compression(ConversionSettings(), {14, 3, 9});
    ASSERT_EQ(table.size(), 10U);
    EXPECT_EQ(table[8].key, "kCMFormatDescriptionExtension_HorizontalFieldOfView");
    EXPECT_EQ(table[8].value, EncoderProperty::Value(std::uint32_t{63400}));
    EXPECT_EQ(find<std::uint32_t>(table, "kVTCompressionPropertyKey_HorizontalFieldOfView"), nullptr);
}

TEST(OutputSettings, FollowTheResizedSize) {
    ConversionSettings settings;
    settings.enableResize = true;
    settings.resizeWidth = 1920;
    settings.resizeHeight = 1080;
    settings.compressionQuality = 0.9;
    const EyeSize eye = eyeSize(settings, 640, 360);
    const EncoderProperties table = outputSettings(settings, eye, 30, newest);
    EXPECT_EQ(*find<std::int64_t>(*find<EncoderProperties>(table, "AVVideoCompressionPropertiesKey"),
                                  "kVTCompressionPropertyKey_AverageBitRate"),
              8'398'080);
}

TEST(PixelBufferAttributes, HaveFourEntries) {
    const EncoderProperties expected{
        {"kCVPixelBufferPixelFormatTypeKey", std::uint32_t{0x42475241}},
        {"kCVPixelBufferWidthKey", std::int64_t{960}},
        {"kCVPixelBufferHeightKey", std::int64_t{1080}},
        {"kCVPixelBufferIOSurfacePropertiesKey", EncoderProperties{}},
    };
    EXPECT_EQ(pixelBufferAttributes({960, 1080}), expected);
}

TEST(StereoVideoEncoding, HoldsTheUnitsOfTheFile) {
    ConversionSettings settings;
    settings.disparityAdjustment = -1.234;
    settings.stereoBaseline = 63.5;
    settings.horizontalFOV = 0;
    settings.compressionQuality = 0.8;
    const auto encoding = stereoVideoEncoding(settings, {960, 1080}, 30, newest);
    EXPECT_EQ(encoding.width, 960);
    EXPECT_EQ(encoding.height, 1080);
    EXPECT_EQ(encoding.averageBitRate, 3'732'480);
    EXPECT_EQ(encoding.frameRate, 30);
    EXPECT_EQ(encoding.baseline, 63500U);
    EXPECT_EQ(encoding.horizontalFieldOfView, 0U);
    EXPECT_EQ(encoding.disparityAdjustment, -123);
    EXPECT_TRUE(encoding.hasLeftEye);
    EXPECT_TRUE(encoding.hasRightEye);
    EXPECT_TRUE(encoding.rectilinear);
}

TEST(StereoVideoEncoding, HasNoProjectionWhereTheSystemKnowsNone) {
    const auto encoding = stereoVideoEncoding(ConversionSettings(), {960, 1080}, 30, {14, 0, 0});
    EXPECT_EQ(encoding.horizontalFieldOfView, 63400U);
    EXPECT_FALSE(encoding.rectilinear);
}

TEST(StereoVideoEncoding, KeepsSizesBeyondEveryLimitBeyondIt) {
    const auto encoding = stereoVideoEncoding(ConversionSettings(), {std::int64_t{1} << 33, -5}, 30, newest);
    EXPECT_EQ(encoding.width, std::numeric_limits<int>::max());
    EXPECT_EQ(encoding.height, 0);
}

TEST(Identifiers, AreAlwaysLeftThenRight) {
    EXPECT_THAT(MVHEVCVideoLayerIDs, ElementsAre(0, 1));
    EXPECT_THAT(MVHEVCViewIDs, ElementsAre(0, 1));
    EXPECT_THAT(MVHEVCLeftAndRightViewIDs, ElementsAre(0, 1));
}

} // namespace
} // namespace lumetwin
