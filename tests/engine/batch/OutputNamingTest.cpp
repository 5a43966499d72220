// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/OutputNaming.h"

#include <gtest/gtest.h>

namespace lumetwin {
namespace {

TEST(OutputNaming, VideoToSBSFollowsTheFormat) {
    ConversionSettings settings;
    EXPECT_EQ(outputName("/in/trip.MOV", settings), "trip_sbs.mp4");
    settings.sbsOutputFormat = SBSOutputFormat::mp4H265;
    EXPECT_EQ(outputName("/in/trip.MOV", settings), "trip_sbs.mp4");
    settings.sbsOutputFormat = SBSOutputFormat::movHEVC;
    EXPECT_EQ(outputName("/in/trip.MOV", settings), "trip_sbs.mov");
    settings.sbsOutputFormat = SBSOutputFormat::mkvH264;
    EXPECT_EQ(outputName("/in/trip.MOV", settings), "trip_sbs.mkv");
    settings.sbsOutputFormat = SBSOutputFormat::mkvH265;
    EXPECT_EQ(outputName("/in/trip.MOV", settings), "trip_sbs.mkv");
}

TEST(OutputNaming, PhotoToSBSFollowsTheFormat) {
    ConversionSettings settings;
    const char *const names[] = {"p_sbs.jpg", "p_sbs.png", "p_sbs.tiff", "p_sbs.heic"};
    for (const SBSPhotoOutputFormat format : allSBSPhotoOutputFormats) {
        settings.sbsPhotoOutputFormat = format;
        EXPECT_EQ(outputName("p.HEIC", settings), names[static_cast<int>(format)]);
    }
}

TEST(OutputNaming, SpatialIsMovOrHeic) {
    ConversionSettings settings;
    settings.direction = ConversionDirection::sbsToSpatial;
    EXPECT_EQ(outputName("pair.jpeg", settings), "pair_spatial.heic");
    EXPECT_EQ(outputName("clip.avi", settings), "clip_spatial.mov");
}

TEST(OutputNaming, OnlyTheLastExtensionGoes) {
    const ConversionSettings settings;
    EXPECT_EQ(outputName("a.b.mov", settings), "a.b_sbs.mp4");
    EXPECT_EQ(outputName(".hidden.mov", settings), ".hidden_sbs.mp4");
    EXPECT_EQ(outputName("x.mov/", settings), "x_sbs.mp4");
}

TEST(OutputNaming, InputsThatDifferInExtensionShareAName) {
    const ConversionSettings settings;
    EXPECT_EQ(outputName("x.mov", settings), outputName("x.mp4", settings));
}

} // namespace
} // namespace lumetwin
