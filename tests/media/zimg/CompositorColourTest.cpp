// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Compositor.h"
#include "tests/support/Drawing.h"

#include <gtest/gtest.h>

#include <set>
#include <utility>

namespace lumetwin::media {
namespace {

using namespace test;

/// A picture placed as it is on a canvas of its size.
Picture placed(const Picture &picture, PictureFormat format, ColourTags colour = {}) {
    Picture canvas = makePicture(picture.width, picture.height, format, colour);
    Compositor().place(picture, {all(picture), all(picture), all(picture)}, canvas);
    return canvas;
}

double mean(const Picture &picture, int plane) {
    double sum = 0;
    for (int y = 0; y < picture.planeHeight(plane); ++y)
        for (int x = 0; x < picture.planeWidth(plane); ++x)
            sum += sample(picture, plane, x, y);
    return sum / (static_cast<double>(picture.planeWidth(plane)) * picture.planeHeight(plane));
}

std::set<int> values(const Picture &picture, int plane) {
    std::set<int> found;
    for (int y = 0; y < picture.planeHeight(plane); ++y)
        for (int x = 0; x < picture.planeWidth(plane); ++x)
            found.insert(sample(picture, plane, x, y));
    return found;
}

using Only = std::set<int>;

TEST(CompositorColour, reducesEveryDepthWithoutMovingTheMean) {
    for (const int depth : {9, 10, 12, 14, 16})
        for (const double level : {16.0, 100.25, 100.5, 181.75, 235.0}) {
            const int unit = 1 << (depth - 8);
            const Picture deep =
                flat(128, 128, {ColourModel::yuv, depth, 1, 1}, static_cast<int>(level * unit), 128 * unit);
            const Picture shallow = placed(deep, yuv420);
            const double expected = static_cast<int>(level * unit) / static_cast<double>(unit);
            EXPECT_NEAR(mean(shallow, 0), expected, 0.06) << depth << " bits";
            EXPECT_EQ(values(shallow, 1), Only{128}) << depth << " bits";
            EXPECT_EQ(values(shallow, 2), Only{128}) << depth << " bits";
        }
}

TEST(CompositorColour, ditheringShowsLevelsThatEightBitsLack) {
    const Picture deep =
        drawn(256, 64, yuv420ten, [](int plane, int x, int) { return plane == 0 ? 400 + x / 64 : 512; });
    const Picture shallow = placed(deep, yuv420);
    for (int quarter = 0; quarter < 4; ++quarter) {
        double sum = 0;
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 64; ++x)
                sum += sample(shallow, 0, quarter * 64 + x, y);
        EXPECT_NEAR(sum / 4096, 100 + quarter * 0.25, 0.06);
    }
}

TEST(CompositorColour, keepsBlackAndWhiteOfEitherRangeWhenDepthIsReduced) {
    const auto ends = [](PictureFormat format, ColourTags colour, int low, int high) {
        const Picture deep = drawn(
            64, 64, format, [&](int plane, int x, int) { return plane > 0 ? 512
                                                                : x < 32  ? low
                                                                          : high; }, colour);
        return values(placed(deep, yuv420, colour), 0);
    };
    EXPECT_EQ(ends(yuv420ten, tagged(ColourRange::limited), 64, 940), (Only{16, 235}));
    EXPECT_EQ(ends(yuv420ten, tagged(ColourRange::full), 0, 1023), (Only{0, 255}));
    EXPECT_EQ(ends(yuv420ten, {}, 64, 940), (Only{16, 235}));
}

TEST(CompositorColour, reducesRgbAsFullRange) {
    const Picture deep = drawn(64, 64, rgb16, [](int, int x, int) { return x < 32 ? 0 : 65535; });
    EXPECT_EQ(values(placed(deep, rgb8), 2), (Only{0, 255}));
}

TEST(CompositorColour, keepsSixteenBitsAsTheyAre) {
    const Picture deep = noise(33, 21, rgb16);
    const Picture same = placed(deep, rgb16);
    eachSample(deep, [&](int plane, int x, int y) { ASSERT_EQ(sample(same, plane, x, y), sample(deep, plane, x, y)); });
}

TEST(CompositorColour, raisesDepth) {
    const Picture ten = placed(flat(16, 16, yuv420, 100, 128), yuv420ten);
    EXPECT_EQ(values(ten, 0), Only{400});
    EXPECT_EQ(values(ten, 1), Only{512});
}

TEST(CompositorColour, convertsFullRangeToLimited) {
    const auto limited = [](int luma, int chroma) {
        return placed(flat(64, 64, yuv420, luma, chroma, tagged(ColourRange::full)), yuv420,
                      tagged(ColourRange::limited));
    };
    EXPECT_EQ(values(limited(0, 128), 0), Only{16});
    EXPECT_EQ(values(limited(255, 128), 0), Only{235});
    EXPECT_EQ(values(limited(255, 128), 1), Only{128});
    EXPECT_NEAR(mean(limited(100, 128), 0), 16 + 100 * 219.0 / 255, 0.06);
    EXPECT_NEAR(mean(limited(100, 200), 2), 128 + 72 * 224.0 / 255, 0.06);
}

TEST(CompositorColour, convertsLimitedRangeToFull) {
    const auto full = [](int luma, int chroma) {
        return placed(flat(64, 64, yuv420, luma, chroma, tagged(ColourRange::limited)), yuv420,
                      tagged(ColourRange::full));
    };
    EXPECT_EQ(values(full(16, 128), 0), Only{0});
    EXPECT_EQ(values(full(235, 128), 0), Only{255});
    EXPECT_EQ(values(full(235, 128), 1), Only{128});
    EXPECT_EQ(values(full(5, 128), 0), Only{0});     // blacker than black
    EXPECT_EQ(values(full(250, 128), 0), Only{255}); // whiter than white
    EXPECT_NEAR(mean(full(100, 60), 0), 84 * 255.0 / 219, 0.06);
    EXPECT_NEAR(mean(full(100, 60), 1), 128 - 68 * 255.0 / 224, 0.06);
}

TEST(CompositorColour, convertsRangeAndDepthAtOnceWhileScaling) {
    const Picture deep = flat(100, 100, yuv420ten, 1023, 512, tagged(ColourRange::full));
    Picture canvas = makePicture(37, 53, yuv420, tagged(ColourRange::limited));
    Compositor().place(deep, {all(deep), all(canvas), all(canvas)}, canvas);
    EXPECT_EQ(values(canvas, 0), Only{235});
    EXPECT_EQ(values(canvas, 1), Only{128});
}

TEST(CompositorColour, leavesValuesAloneWhereOneRangeIsNotStated) {
    const Picture picture = noise(32, 32, yuv420);
    for (const ColourRange range : {ColourRange::limited, ColourRange::full}) {
        const Picture same = placed(picture, yuv420, tagged(range));
        eachSample(picture, [&](int plane, int x, int y) {
            ASSERT_EQ(sample(same, plane, x, y), sample(picture, plane, x, y));
        });
    }
}

TEST(CompositorColour, survivesSamplesBeyondTheirDepth) {
    Picture deep = makePicture(32, 32, yuv420ten, tagged(ColourRange::full));
    eachSample(deep, [&](int plane, int x, int y) {
        reinterpret_cast<std::uint16_t *>(deep.planes[plane].data + y * deep.planes[plane].stride)[x] = 0xffff;
    });
    EXPECT_EQ(values(placed(deep, yuv420, tagged(ColourRange::limited)), 0), Only{235});
}

TEST(CompositorColour, showsGreyInEveryColour) {
    const Picture grey = noise(31, 17, grey8);
    const Picture rgb = placed(grey, rgb8);
    eachSample(rgb, [&](int plane, int x, int y) { ASSERT_EQ(sample(rgb, plane, x, y), sample(grey, 0, x, y)); });
    const Picture yuv = placed(grey, yuv420);
    EXPECT_EQ(values(yuv, 1), Only{128});
    EXPECT_EQ(values(yuv, 2), Only{128});
    EXPECT_EQ(sample(yuv, 0, 30, 16), sample(grey, 0, 30, 16));
}

TEST(CompositorColour, takesGreyWithoutRegardToItsSubsampling) {
    // A grey format has no chroma whose subsampling could mean anything.
    const Picture grey = noise(31, 17, {ColourModel::grey, 8, 1, 1});
    const Picture rgb = placed(grey, rgb8);
    eachSample(rgb, [&](int plane, int x, int y) { ASSERT_EQ(sample(rgb, plane, x, y), sample(grey, 0, x, y)); });
}

TEST(CompositorColour, mixesChromaOfGreyAtItsEdge) {
    Picture canvas = flat(32, 32, yuv420, 50, 28);
    const Picture grey = flat(16, 32, grey8, 90);
    Compositor().place(grey, {all(grey), {5, 0, 16, 32}, all(canvas)}, canvas);
    EXPECT_EQ(sample(canvas, 1, 1, 8), 28);
    EXPECT_EQ(sample(canvas, 1, 2, 8), 78); // half covered
    EXPECT_EQ(sample(canvas, 1, 3, 8), 128);
    EXPECT_EQ(sample(canvas, 1, 10, 8), 78);
    EXPECT_EQ(sample(canvas, 1, 11, 8), 28);
}

} // namespace
} // namespace lumetwin::media
