// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/StereoMetadata.h"

#include <gtest/gtest.h>

namespace lumetwin {
namespace {

MediaFacts camera() {
    MediaFacts facts;
    facts.values = {.horizontalFOV = 71.5, .stereoBaseline = 10, .disparity = 0};
    return facts;
}

TEST(StereoMetadata, isThatOfTheSettings) {
    ConversionSettings settings;
    const StereoMetadata values = stereoMetadata(settings, camera());
    EXPECT_EQ(values.horizontalFOV, settings.horizontalFOV);
    EXPECT_EQ(values.stereoBaseline, settings.stereoBaseline);
    EXPECT_EQ(values.disparityAdjustment, settings.disparityAdjustment);
    EXPECT_FALSE(stereoValuesNote(settings, camera()));
}

TEST(StereoMetadata, comesFromTheFileWhereTheUserAsksForIt) {
    ConversionSettings settings;
    settings.stereoValuesSource = StereoValuesSource::file;
    const StereoMetadata values = stereoMetadata(settings, camera());
    EXPECT_EQ(values.horizontalFOV, 71.5);
    EXPECT_EQ(values.stereoBaseline, 10);
    EXPECT_EQ(values.disparityAdjustment, 0);
    EXPECT_EQ(std::get<std::string>(stereoValuesNote(settings, camera())->values.at(0)),
              "field of view 71.5°, disparity adjustment 0.00%, camera baseline 10.00 mm");
}

TEST(StereoMetadata, leavesWhatTheUserChanged) {
    ConversionSettings settings;
    settings.stereoValuesSource = StereoValuesSource::file;
    settings.stereoBaseline = 64;
    EXPECT_EQ(stereoMetadata(settings, camera()).stereoBaseline, 64);
    EXPECT_EQ(stereoMetadata(settings, camera()).horizontalFOV, 71.5);
}

TEST(StereoMetadata, ignoresWhatTheFileLacksAndWhatTheFormWouldRefuse) {
    ConversionSettings settings;
    settings.stereoValuesSource = StereoValuesSource::file;
    MediaFacts facts;
    facts.values.horizontalFOV = 5;
    facts.values.stereoBaseline = 3000;
    EXPECT_EQ(stereoMetadata(settings, facts).horizontalFOV, fovRange.start);
    EXPECT_EQ(stereoMetadata(settings, facts).stereoBaseline, baselineRange.start);
    EXPECT_FALSE(stereoValuesNote(settings, facts));
}

} // namespace
} // namespace lumetwin
