// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/EyeExtraction.h"

#include "tests/engine/geometry/Resizing.h"

#include <gtest/gtest.h>

namespace lumetwin {
namespace {

using media::Rect;
using test::resizeTo;

EyeExtraction extract(const ConversionSettings &settings, std::int64_t width, std::int64_t height) {
    const EyeSize eye =
        settings.enableResize ? EyeSize{settings.resizeWidth, settings.resizeHeight} : EyeSize{width / 2, height};
    return eyeExtraction(settings, eye, eyeCells({}, width, height));
}

TEST(EyeExtraction, cutsTheSourceIntoHalves) {
    const EyeExtraction extraction = extract(ConversionSettings(), 3840, 1080);
    EXPECT_TRUE(extraction.unscaled);
    EXPECT_EQ(extraction.left.source, (Rect{0, 0, 1920, 1080}));
    EXPECT_EQ(extraction.right.source, (Rect{1920, 0, 1920, 1080}));
    EXPECT_EQ(extraction.right.target, (Rect{0, 0, 1920, 1080}));
}

TEST(EyeExtraction, losesTheLastColumnOfAnOddSource) {
    const EyeExtraction extraction = extract(ConversionSettings(), 1921, 1080);
    EXPECT_EQ(extraction.left.source, (Rect{0, 0, 960, 1080}));
    EXPECT_EQ(extraction.right.source, (Rect{960, 0, 960, 1080}));
}

TEST(EyeExtraction, exchangesTheHalves) {
    ConversionSettings settings;
    settings.swapLeftRight = true;
    const EyeExtraction extraction = extract(settings, 3840, 1080);
    EXPECT_EQ(extraction.left.source.x, 1920);
    EXPECT_EQ(extraction.right.source.x, 0);
}

TEST(EyeExtraction, letterboxesAHalf) {
    ConversionSettings settings;
    resizeTo(settings, 1000, 1000, ResizeMode::letterbox);
    const EyeExtraction extraction = extract(settings, 3840, 1080);
    EXPECT_NEAR(extraction.left.target.y, 218.75, 1e-9);
    EXPECT_NEAR(extraction.left.target.height, 562.5, 1e-9);
    EXPECT_NEAR(extraction.left.target.width, 1000, 1e-9);
    EXPECT_FALSE(extraction.unscaled);
}

TEST(EyeExtraction, cropsTheCentre) {
    ConversionSettings settings;
    resizeTo(settings, 1080, 1080, ResizeMode::cropFill);
    const EyeExtraction extraction = extract(settings, 3840, 1080);
    EXPECT_NEAR(extraction.left.target.x, -420, 1e-9);
    EXPECT_NEAR(extraction.left.target.width, 1920, 1e-9);
}

TEST(EyeExtraction, takesNoNoticeOfHalfWidth) {
    ConversionSettings settings;
    settings.halfWidth = true;
    EXPECT_TRUE(extract(settings, 3840, 1080).unscaled);
}

} // namespace
} // namespace lumetwin
