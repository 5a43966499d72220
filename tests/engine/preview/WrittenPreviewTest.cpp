// SPDX-License-Identifier: GPL-3.0-or-later
// What the preview says that is written, against what the converters write.
#include "engine/preview/PreviewModes.h"
#include "tests/engine/preview/PreviewFixture.h"
#include "tests/support/Paths.h"
#include "tests/support/SpatialPhotos.h"

#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

/// Settings that change the picture, put into any settings.
struct Look {
    bool halfWidth = false;
    bool swap = false;
    bool resize = false;
    ResizeMode mode = ResizeMode::letterbox;
    std::int64_t width = 200;
    std::int64_t height = 200;
};

std::vector<Look> looks() {
    std::vector<Look> all;
    for (const bool half : {false, true}) {
        all.push_back({half, false});
        all.push_back({half, true});
        for (const ResizeMode mode : allResizeModes)
            for (const auto &[width, height] : {std::pair(200, 200), {300, 90}})
                all.push_back({half, width == 300, true, mode, width, height});
    }
    return all;
}

void apply(const Look &look, ConversionSettings &settings) {
    settings.halfWidth = look.halfWidth;
    settings.swapLeftRight = look.swap;
    settings.enableResize = look.resize;
    settings.resizeMode = look.mode;
    settings.resizeWidth = look.width;
    settings.resizeHeight = look.height;
}

std::string told(const Look &look) {
    return std::string(look.halfWidth ? "half " : "") + (look.swap ? "swapped " : "") +
           (look.resize ? "mode " + std::to_string(rawValue(look.mode)) + " to " + std::to_string(look.width) + "x" +
                              std::to_string(look.height)
                        : "");
}

class WrittenPreview : public PreviewTest {
protected:
    Raster left = drawn(240, 160, 1);
    Raster right = drawn(240, 160, 2);
};

TEST_F(WrittenPreview, sideBySideIsWhatTheConverterWrites) {
    writeSpatialPhoto(file("a.heic"), left, right);
    const StereoPreview eyes = preview("a.heic");
    for (const Look &look : looks()) {
        SCOPED_TRACE(told(look));
        ConversionSettings settings;
        apply(look, settings);
        convertSpatialPhotoToSBS(settings, file("a.heic"), file("out.png"));
        const Raster written = readWithMagick(file("out.png"));
        const PreviewPicture shown = asWritten(settings, eyes, eyes.left, eyes.right, 4000, 4000);
        ASSERT_EQ(shown.width, written.width);
        ASSERT_EQ(shown.height, written.height);
        EXPECT_GT(psnr(rasterOf(shown), written), 33);
        // And reduced.
        const PreviewPicture small = asWritten(settings, eyes, eyes.left, eyes.right, 150, 60);
        EXPECT_LE(small.width, 150);
        EXPECT_LE(small.height, 60);
        const Raster reduced =
            readWithMagick(file("out.png"), {"-filter", "Catrom", "-resize",
                                             std::to_string(small.width) + "x" + std::to_string(small.height) + "!"});
        EXPECT_GT(psnr(rasterOf(small), reduced), 26);
    }
}

TEST_F(WrittenPreview, spatialEyesAreWhatTheConverterWrites) {
    writeWithMagick(sideBySide(left, right), file("a.png"));
    const StereoPreview eyes = preview("a.png");
    for (const Look &look : looks()) {
        SCOPED_TRACE(told(look));
        ConversionSettings settings;
        settings.direction = ConversionDirection::sbsToSpatial;
        apply(look, settings);
        convertSBSImageToSpatial(settings, file("a.png"), file("out.heic"));
        const std::vector<Raster> written = decodedByJudge(file("out.heic"));
        ASSERT_EQ(written.size(), 2U);
        const PreviewPicture shown = asWritten(settings, eyes, eyes.left, eyes.right, 4000, 4000);
        ASSERT_EQ(shown.width, 2 * written[0].width);
        ASSERT_EQ(shown.height, written[0].height);
        EXPECT_GT(psnr(rasterOf(shown), sideBySide(written[0], written[1])), 30);
    }
}

TEST_F(WrittenPreview, swappedEyesAreTheOtherWayRound) {
    ConversionSettings settings;
    PreviewFacts facts;
    facts.eyeWidth = 240;
    facts.eyeHeight = 160;
    for (const ConversionDirection direction : allConversionDirections) {
        settings.direction = direction;
        settings.swapLeftRight = false;
        EXPECT_EQ(rasterOf(asWritten(settings, facts, previewOf(left), previewOf(right), 4000, 4000)),
                  sideBySide(left, right));
        settings.swapLeftRight = true;
        EXPECT_EQ(rasterOf(asWritten(settings, facts, previewOf(left), previewOf(right), 4000, 4000)),
                  sideBySide(right, left));
    }
}

TEST_F(WrittenPreview, aReducedPreviewIsPlacedAsTheWholePicture) {
    // The preview has an eighth of the size; bars and edges are where they are for the whole.
    PreviewFacts facts;
    facts.eyeWidth = 1920;
    facts.eyeHeight = 1280;
    ConversionSettings settings;
    settings.enableResize = true;
    settings.resizeWidth = 1600;
    settings.resizeHeight = 1600;
    const PreviewPicture white = previewOf(plain(240, 160, {255, 255, 255}));
    const Raster shown = rasterOf(asWritten(settings, facts, white, white, 320, 200));
    ASSERT_EQ(shown.width, 320);
    ASSERT_EQ(shown.height, 160);
    // 1600 × 1067 of 1600 × 1600: bars of a sixth above and below.
    EXPECT_EQ(shown.colour(80, 25), (std::array{0, 0, 0}));
    EXPECT_EQ(shown.colour(80, 28), (std::array{255, 255, 255}));
    EXPECT_EQ(shown.colour(240, 131), (std::array{255, 255, 255}));
    EXPECT_EQ(shown.colour(240, 134), (std::array{0, 0, 0}));
    for (int x = 0; x < 320; ++x)
        EXPECT_EQ(shown.colour(x, 80), (std::array{255, 255, 255})) << "no seam at " << x;
}

TEST_F(WrittenPreview, wideAndNarrowPixelsAreShownSquare) {
    PreviewFacts facts;
    facts.eyeWidth = 240;
    facts.eyeHeight = 160;
    facts.pixelAspect = 2;
    ConversionSettings settings;
    const PreviewPicture shown = asWritten(settings, facts, previewOf(left), previewOf(right), 4000, 4000);
    EXPECT_EQ(shown.width, 480);
    EXPECT_EQ(shown.height, 80);
    settings.enableResize = true; // the output has square pixels then
    settings.resizeWidth = 100;
    settings.resizeHeight = 100;
    EXPECT_EQ(asWritten(settings, facts, previewOf(left), previewOf(right), 4000, 4000).height, 100);
}

TEST_F(WrittenPreview, oneEyeIsUsedTwice) {
    PreviewFacts facts;
    facts.eyeWidth = 240;
    facts.eyeHeight = 160;
    EXPECT_EQ(rasterOf(asWritten({}, facts, previewOf(left), {}, 4000, 4000)), sideBySide(left, left));
}

TEST_F(WrittenPreview, impossibleSizesShowNothing) {
    PreviewFacts facts;
    facts.eyeWidth = 240;
    facts.eyeHeight = 160;
    ConversionSettings settings;
    settings.enableResize = true;
    for (const std::int64_t side : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{1} << 62}) {
        settings.resizeWidth = side;
        for (const ConversionDirection direction : allConversionDirections) {
            settings.direction = direction;
            EXPECT_TRUE(asWritten(settings, facts, previewOf(left), previewOf(right), 100, 100).isEmpty());
        }
    }
    settings.resizeWidth = 65535;
    settings.resizeHeight = 1;
    for (const ResizeMode mode : allResizeModes) {
        settings.resizeMode = mode;
        EXPECT_FALSE(asWritten(settings, facts, previewOf(left), previewOf(right), 100, 100).isEmpty());
    }
}

} // namespace
} // namespace lumetwin::test
