// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ColourConversion.h"
#include "tests/support/Drawing.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace lumetwin::media {
namespace {

using namespace test;

TEST(ColourConversion, findsTheColourOfRgbAgain) {
    const Picture picture = drawn(33, 17, rgb8, [](int plane, int, int) {
        return plane == 0 ? 200 : plane == 1 ? 100 : 50;
    });
    const Picture yuv = convertColour(picture, yuv420, {1, 13, 6, ColourRange::full, ChromaLocation::centre});
    EXPECT_EQ(yuv.width, 33);
    EXPECT_NEAR(sample(yuv, 0, 10, 10), 0.299 * 200 + 0.587 * 100 + 0.114 * 50, 1);
    const Picture back = convertColour(yuv, rgb8, {1, 13, 0, ColourRange::full, ChromaLocation::centre});
    EXPECT_NEAR(sample(back, 0, 32, 16), 200, 2);
    EXPECT_NEAR(sample(back, 1, 32, 16), 100, 2);
    EXPECT_NEAR(sample(back, 2, 32, 16), 50, 2);
}

TEST(ColourConversion, keepsTheWholePictureOfAnOddSize) {
    const Picture picture = noise(35, 21, {ColourModel::rgb, 8, 0, 0});
    const Picture same =
        convertColour(picture, {ColourModel::yuv, 8, 0, 0}, {1, 13, 6, ColourRange::full, ChromaLocation::centre});
    const Picture back = convertColour(same, picture.format, {});
    for (int y = 0; y < 21; ++y)
        for (int x = 0; x < 35; ++x)
            ASSERT_NEAR(sample(back, 1, x, y), sample(picture, 1, x, y), 2);
}

TEST(ColourConversion, makesColourOfGrey) {
    const Picture grey = noise(35, 21, grey8);
    const Picture rgb = convertColour(grey, rgb8, {});
    const Picture yuv = convertColour(grey, yuv420, {1, 13, 6, ColourRange::full, ChromaLocation::centre});
    eachSample(rgb, [&](int plane, int x, int y) { ASSERT_EQ(sample(rgb, plane, x, y), sample(grey, 0, x, y)); });
    eachSample(yuv, [&](int plane, int x, int y) {
        ASSERT_EQ(sample(yuv, plane, x, y), plane == 0 ? sample(grey, 0, x, y) : 128);
    });
}

TEST(ColourConversion, keepsGreyGreyInAnotherDepth) {
    const Picture grey =
        drawn(35, 21, {ColourModel::grey, 16, 0, 0}, [](int, int x, int) { return x < 20 ? 0 : 65535; });
    const Picture shallow = convertColour(grey, grey8, {});
    EXPECT_EQ(sample(shallow, 0, 19, 20), 0);
    EXPECT_EQ(sample(shallow, 0, 20, 20), 255);
}

TEST(ColourConversion, doesNotReduceColourToGrey) {
    EXPECT_THROW(convertColour(noise(8, 8, rgb8), grey8, {}), std::logic_error);
}

TEST(ColourConversion, convertsMatrixAndRange) {
    // White and black stay what they are, whatever the numbers that stand for them.
    const Picture full = drawn(16, 16, yuv444, [](int plane, int x, int) { return plane > 0 ? 128
                                                                                  : x < 8   ? 0
                                                                                            : 255; },
                               {1, 13, 6, ColourRange::full, ChromaLocation::unspecified});
    const Picture limited = convertColour(full, yuv420, {1, 13, 1, ColourRange::limited, ChromaLocation::left});
    EXPECT_EQ(sample(limited, 0, 2, 2), 16);
    EXPECT_EQ(sample(limited, 0, 13, 2), 235);
    EXPECT_EQ(sample(limited, 1, 2, 2), 128);
    EXPECT_EQ(limited.colour.matrix, 1);
}

TEST(ColourConversion, namesWhatTheLibraryRefuses) {
    Picture picture = noise(16, 16, yuv420);
    picture.colour.matrix = 77; // no such matrix
    EXPECT_THROW(convertColour(picture, rgb8, {}), std::runtime_error);
}

} // namespace
} // namespace lumetwin::media
