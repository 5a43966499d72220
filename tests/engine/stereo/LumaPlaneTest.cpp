// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/LumaPlane.h"
#include "tests/support/Drawing.h"

#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

TEST(LumaPlane, averagesAPart) {
    const Picture picture = drawn(8, 4, grey8, [](int, int x, int y) { return 10 * x + y; });
    const LumaPlane plane = reducedLuma(picture, {4, 0, 4, 4}, 2, 2);
    ASSERT_EQ(plane.samples.size(), 4U);
    EXPECT_FLOAT_EQ(plane.row(0)[0], 45.5F);
    EXPECT_FLOAT_EQ(plane.row(0)[1], 65.5F);
    EXPECT_FLOAT_EQ(plane.row(1)[0], 47.5F);
}

TEST(LumaPlane, sharesSamplesBetweenColumns) {
    const Picture picture = drawn(3, 1, grey8, [](int, int x, int) { return x * 30; });
    const LumaPlane plane = reducedLuma(picture, {0, 0, 3, 1}, 2, 1);
    EXPECT_FLOAT_EQ(plane.row(0)[0], 10); // 0 and half of 30, of one and a half
    EXPECT_FLOAT_EQ(plane.row(0)[1], 50);
}

TEST(LumaPlane, readsEveryDepthAndModel) {
    const auto mean = [](PictureFormat format, int value) {
        const Picture picture = drawn(16, 16, format, [&](int plane, int, int) { return plane == 0 ? value : 0; });
        return reducedLuma(picture, {0, 0, 16, 16}, 4, 4).samples.at(5);
    };
    EXPECT_FLOAT_EQ(mean(grey8, 200), 200);
    EXPECT_FLOAT_EQ(mean(media::yuv420, 200), 200);
    EXPECT_NEAR(mean(yuv420ten, 800), 800 * 255.0 / 1023, 0.01);
    EXPECT_FLOAT_EQ(mean(rgb8, 200), 50); // a quarter of the brightness is red
}

TEST(LumaPlane, leavesOutWhatLiesOutside) {
    const Picture picture = flat(8, 8, grey8, 90);
    const LumaPlane plane = reducedLuma(picture, {4, 4, 100, 100}, 2, 2);
    EXPECT_EQ(plane.samples, std::vector<float>(4, 90.0F));
    EXPECT_TRUE(reducedLuma(picture, {20, 0, 8, 8}, 2, 2).samples.empty());
    EXPECT_TRUE(reducedLuma(picture, {0, 0, 8, 8}, 0, 2).samples.empty());
}

TEST(LumaPlane, halves) {
    const LumaPlane half = halved({3, 3, {0, 4, 9, 8, 12, 9, 9, 9, 9}});
    EXPECT_EQ(half.width, 1);
    EXPECT_EQ(half.height, 1);
    EXPECT_EQ(half.samples, std::vector<float>{6});
}

} // namespace
} // namespace lumetwin::test
