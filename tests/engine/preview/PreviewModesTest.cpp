// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/preview/PreviewModes.h"

#include "engine/stereo/StereoLook.h"
#include "tests/engine/preview/PreviewFixture.h"
#include "tests/support/StereoScenes.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace lumetwin::test {
namespace {

using Colour = std::array<int, 3>;

PreviewPicture pixel(const Colour &colour) {
    return previewOf(plain(1, 1, colour));
}

Colour colourOf(const PreviewPicture &picture, int x = 0, int y = 0) {
    return rasterOf(picture).colour(x, y);
}

void expectNear(const Colour &one, const Colour &other, int tolerance) {
    for (std::size_t channel = 0; channel < 3; ++channel)
        EXPECT_NEAR(one[channel], other[channel], tolerance) << "channel " << channel;
}

TEST(PreviewModes, besideEachOtherTheLeftEyeIsLeft) {
    const PreviewPicture both =
        besideEachOther(previewOf(plain(3, 2, {255, 0, 0})), previewOf(plain(4, 2, {0, 0, 255})));
    ASSERT_EQ(both.width, 7);
    ASSERT_EQ(both.height, 2);
    EXPECT_EQ(colourOf(both, 2, 1), (Colour{255, 0, 0}));
    EXPECT_EQ(colourOf(both, 3, 1), (Colour{0, 0, 255}));
    EXPECT_EQ(besideEachOther(pixel({1, 2, 3}), {}).width, 1) << "without a right eye";
}

TEST(PreviewModes, greysStayInAnaglyphs) {
    for (const int grey : {0, 10, 60, 128, 200, 255})
        expectNear(colourOf(anaglyph(pixel({grey, grey, grey}), pixel({grey, grey, grey}))), {grey, grey, grey}, 1);
}

TEST(PreviewModes, theLeftEyeIsRedInAnaglyphs) {
    EXPECT_EQ(colourOf(anaglyph(pixel({255, 255, 255}), pixel({0, 0, 0}))), (Colour{255, 0, 0}));
    EXPECT_EQ(colourOf(anaglyph(pixel({0, 0, 0}), pixel({255, 255, 255}))), (Colour{0, 255, 255}));
    // Green: 0.449 and 0.761 of the light, less what the other rows take away, coded with the curve of sRGB.
    expectNear(colourOf(anaglyph(pixel({0, 255, 0}), pixel({0, 0, 0}))), {179, 0, 0}, 1);
    expectNear(colourOf(anaglyph(pixel({0, 0, 0}), pixel({0, 255, 0}))), {0, 226, 0}, 1);
    expectNear(colourOf(anaglyph(pixel({0, 255, 0}), pixel({0, 255, 0}))), {173, 217, 0}, 1);
}

TEST(PreviewModes, equalEyesHaveNoDifference) {
    const PreviewPicture picture = previewOf(drawn(31, 17));
    const Raster none = rasterOf(difference(picture, picture));
    EXPECT_EQ(none, plain(31, 17, {0, 0, 0}));
    EXPECT_EQ(colourOf(difference(pixel({200, 10, 0}), pixel({190, 30, 255}))), (Colour{10, 20, 255}));
    EXPECT_EQ(difference(picture, picture).row(3)[3], 255) << "opaque";
    EXPECT_EQ(rasterOf(difference(picture, {})), none) << "without a right eye";
}

TEST(PreviewModes, emptyPicturesStayEmpty) {
    EXPECT_TRUE(lumetwin::besideEachOther({}, {}).isEmpty());
    EXPECT_TRUE(anaglyph({}, {}).isEmpty());
    EXPECT_TRUE(difference({}, {}).isEmpty());
    EXPECT_TRUE(asWritten({}, {}, {}, {}, 100, 100).isEmpty());
    EXPECT_FALSE(findingsOf({}, {}).wasExamined);
}

PreviewPicture greyPreview(const media::Picture &picture) {
    Raster raster(picture.width, picture.height);
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            std::fill_n(raster.at(x, y), 3, picture.planes[0].data[y * picture.planes[0].stride + x]);
    return previewOf(raster);
}

TEST(PreviewModes, findingsAreThoseOfTheCheck) {
    const media::EyePair<media::Picture> eyes = drawnEyes({.width = 640, .height = 360, .far = 1.2});
    const PreviewPicture left = greyPreview(eyes.left);
    const PreviewPicture right = greyPreview(eyes.right);
    const StereoFindings found = findingsOf(left, right);
    EXPECT_EQ(found, findings(std::array{
                         lookAtEyes({eyePlane(eyes.left), eyePlane(eyes.right)}, EyeArrangement::sideBySide)}));
    EXPECT_TRUE(found.wasExamined);
    EXPECT_FALSE(found.probablySwapped);
    EXPECT_NEAR(found.disparity.value().farthest, 1.2, 0.1);
    EXPECT_TRUE(findingsOf(right, left).probablySwapped);
    EXPECT_TRUE(findingsOf(left, left).looksFlat);
}

} // namespace
} // namespace lumetwin::test
