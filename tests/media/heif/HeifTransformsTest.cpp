// SPDX-License-Identifier: GPL-3.0-or-later
// Cropping, rotation and mirroring of HEIF images.
#include "tests/media/heif/HeifFiles.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace lumetwin::media {
namespace {

using test::Bytes;
using test::fullBox;
using test::HeifBuilder;
using test::joined;
using test::read;
using test::u32;
using test::u8;

Bytes aperture(std::initializer_list<int> numbers) {
    Bytes bytes;
    for (const int value : numbers)
        bytes = joined({bytes, u32(static_cast<std::uint32_t>(value))});
    return test::box("clap", bytes);
}

TEST(HeifTransforms, appliesTransformationsToSizesInTheirOrder) {
    HeifBuilder heif;
    const int size = heif.property(HeifBuilder::size(1000, 500));
    const int crop = heif.property(aperture({999, 1, 400, 1, -1, 2, 20, 2}));
    const int turn = heif.property(test::box("irot", u8(3)));
    const int mirror = heif.property(test::box("imir", u8(1)));
    const int camera = heif.property(fullBox("cmin", joined({u32(1), u32(2), u32(2)})));
    heif.item(1).associate(1, {size, camera, crop, turn, mirror});
    const HeifImage image = read(heif).images.at(0);
    EXPECT_EQ(image.codedWidth, 1000u);
    EXPECT_EQ(image.width, 999u);
    EXPECT_EQ(image.height, 400u);
    EXPECT_EQ(image.shownWidth, 400u);
    EXPECT_EQ(image.shownHeight, 999u);
    ASSERT_EQ(image.transforms.size(), 3u);
    EXPECT_EQ(image.transforms[1].quarterTurns, 3);
    EXPECT_FALSE(image.transforms[2].mirrorsVertically);
    const PixelIntrinsics pixels = image.pixelIntrinsics().value();
    EXPECT_EQ(pixels.focalLengthX, 1000);
    EXPECT_EQ(pixels.principalPointX, 2000); // nothing is cut off at the left
    EXPECT_EQ(pixels.principalPointY, 1000 - 60);

    HeifBuilder turned;
    const int other = turned.property(HeifBuilder::size(1000, 500));
    const int quarter = turned.property(test::box("irot", u8(1)));
    const int cut = turned.property(aperture({300, 1, 900, 1, 0, 1, 0, 1}));
    turned.item(1).associate(1, {other, quarter, cut});
    EXPECT_EQ(read(turned).images[0].shownWidth, 300u);
    EXPECT_EQ(read(turned).images[0].width, 900u);
    EXPECT_EQ(read(turned).images[0].height, 300u);
}

TEST(HeifTransforms, survivesAnInvalidAperture) {
    for (const auto &numbers : {std::initializer_list<int>{5, 0, 5, 0, 1, 0, 1, 0}, {-1, 1, -1, 1, 0, 1, 0, 1}}) {
        HeifBuilder heif;
        const int size = heif.property(HeifBuilder::size(10, 10));
        const int crop = heif.property(aperture(numbers));
        const int camera = heif.property(fullBox("cmin", joined({u32(1), u32(2), u32(2)})));
        heif.item(1).associate(1, {size, crop, camera});
        const HeifImage image = read(heif).images.at(0);
        EXPECT_LE(image.width, 10u);
        EXPECT_TRUE(image.pixelIntrinsics());
    }
}

} // namespace
} // namespace lumetwin::media
