// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/photo/SpatialPhotoMetadata.h"
#include "engine/video/StereoEncoderSettings.h"

#include <gtest/gtest.h>

#include <limits>

namespace lumetwin {
namespace {

TEST(SpatialPhotoMetadata, baselinesAreThoseOfFilms) {
    ConversionSettings settings;
    for (int hundredths = 0; hundredths <= 20000; ++hundredths) {
        settings.stereoBaseline = hundredths / 100.0;
        EXPECT_EQ(static_cast<std::uint32_t>(spatialPhotoFacts(settings, 100, 100).rightPosition[0]),
                  baselineInMicrometres(settings.stereoBaseline));
    }
}

TEST(SpatialPhotoMetadata, aDisparityBeyondTheRangeStopsTheProgram) {
    ConversionSettings settings;
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (const double value : {1e17, -1e17, std::numeric_limits<double>::quiet_NaN()}) {
        settings.disparityAdjustment = value;
        EXPECT_DEATH(spatialPhotoFacts(settings, 100, 100), "Fatal error");
    }
}

} // namespace
} // namespace lumetwin
