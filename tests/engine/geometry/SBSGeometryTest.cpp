// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/geometry/SBSGeometry.h"

#include "tests/engine/geometry/Resizing.h"

#include <gtest/gtest.h>

#include <limits>

namespace lumetwin {
namespace {

using media::Rect;
using test::resizeTo;

void expectNear(const Rect &actual, const Rect &expected) {
    EXPECT_NEAR(actual.x, expected.x, 1e-9);
    EXPECT_NEAR(actual.y, expected.y, 1e-9);
    EXPECT_NEAR(actual.width, expected.width, 1e-9);
    EXPECT_NEAR(actual.height, expected.height, 1e-9);
}

media::Picture pictureOf(int width, int height) {
    media::Picture picture;
    picture.width = width;
    picture.height = height;
    return picture;
}

TEST(SBSGeometry, isTheIdentityWithoutResizing) {
    for (const ResizeMode mode : allResizeModes) {
        ConversionSettings settings;
        settings.resizeMode = mode;
        const SBSGeometry geometry = sbsGeometry(settings, 1920, 1080);
        EXPECT_EQ(geometry.outW, 3840);
        EXPECT_EQ(geometry.outH, 1080);
        EXPECT_EQ(geometry.eyeW, 1920);
        EXPECT_EQ(geometry.eye, (Rect{0, 0, 1920, 1080}));
        EXPECT_EQ(geometry.rightHalf(pictureOf(1920, 1080)).target.x, 1920);
        EXPECT_TRUE(geometry.coversFrame());
    }
}

TEST(SBSGeometry, squeezesEyesIntoHalfTheWidth) {
    ConversionSettings settings;
    settings.halfWidth = true;
    const SBSGeometry geometry = sbsGeometry(settings, 1920, 1080);
    EXPECT_EQ(geometry.outW, 1920);
    EXPECT_EQ(geometry.eyeW, 960);
    EXPECT_EQ(geometry.eye, (Rect{0, 0, 960, 1080}));
}

TEST(SBSGeometry, letterboxesAndCrops) {
    ConversionSettings settings;
    resizeTo(settings, 1440, 1440, ResizeMode::letterbox);
    SBSGeometry geometry = sbsGeometry(settings, 1920, 1080);
    EXPECT_EQ(geometry.outW, 2880);
    EXPECT_EQ(geometry.outH, 1440);
    expectNear(geometry.eye, {0, 315, 1440, 810});
    EXPECT_FALSE(geometry.coversFrame());

    settings.resizeMode = ResizeMode::cropFill;
    geometry = sbsGeometry(settings, 1920, 1080);
    expectNear(geometry.eye, {-560, 0, 2560, 1440});
    EXPECT_TRUE(geometry.coversFrame());

    settings.resizeMode = ResizeMode::stretch;
    geometry = sbsGeometry(settings, 1920, 1080);
    expectNear(geometry.eye, {0, 0, 1440, 1440});
}

TEST(SBSGeometry, fitsFirstAndSqueezesThen) {
    ConversionSettings settings;
    settings.halfWidth = true;
    resizeTo(settings, 1440, 1440, ResizeMode::letterbox);
    SBSGeometry geometry = sbsGeometry(settings, 1920, 1080);
    EXPECT_EQ(geometry.outW, 1440);
    EXPECT_EQ(geometry.eyeW, 720);
    expectNear(geometry.eye, {0, 315, 720, 810});

    settings.resizeMode = ResizeMode::cropFill;
    geometry = sbsGeometry(settings, 1920, 1080);
    expectNear(geometry.eye, {-280, 0, 1280, 1440});
}

TEST(SBSGeometry, leavesTheLastColumnOfAnOddFrameBlack) {
    ConversionSettings settings;
    settings.halfWidth = true;
    const SBSGeometry geometry = sbsGeometry(settings, 1921, 1080);
    EXPECT_EQ(geometry.outW, 1921);
    EXPECT_EQ(geometry.eyeW, 960);
    EXPECT_EQ(geometry.rightHalf(pictureOf(1921, 1080)).clip, (Rect{960, 0, 960, 1080}));
    EXPECT_FALSE(geometry.coversFrame());
}

TEST(SBSGeometry, hasNoBarsAndNoCropAtTheSourcesOwnAspectRatio) {
    for (const ResizeMode mode : {ResizeMode::letterbox, ResizeMode::cropFill}) {
        ConversionSettings settings;
        resizeTo(settings, 960, 540, mode);
        const SBSGeometry geometry = sbsGeometry(settings, 1920, 1080);
        expectNear(geometry.eye, {0, 0, 960, 540});
        EXPECT_TRUE(geometry.coversFrame());
    }
}

TEST(SBSGeometry, keepsFractionsOfAPixel) {
    ConversionSettings settings;
    resizeTo(settings, 1000, 1000, ResizeMode::letterbox);
    expectNear(sbsGeometry(settings, 1920, 1080).eye, {0, 218.75, 1000, 562.5});
}

TEST(SBSGeometryDeathTest, stopsWhenTheWidthOverflows) {
    ConversionSettings settings;
    resizeTo(settings, std::numeric_limits<std::int64_t>::max(), 1080, ResizeMode::stretch);
    EXPECT_DEATH(sbsGeometry(settings, 1920, 1080), "Fatal error");
}

} // namespace
} // namespace lumetwin
