// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Compositor.h"
#include "tests/support/Drawing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace lumetwin::media {
namespace {

using namespace test;

void expectAll(const Picture &picture, int plane, int value) {
    for (int y = 0; y < picture.planeHeight(plane); ++y)
        for (int x = 0; x < picture.planeWidth(plane); ++x)
            ASSERT_EQ(sample(picture, plane, x, y), value) << plane << ": " << x << ", " << y;
}

/// A side-by-side frame whose halves meet at a column; a chroma sample that both touch has a value of its own.
Picture frameWithSeam(int width, int height, int seam, PictureFormat format, int unit) {
    return drawn(width, height, format, [&](int plane, int x, int) {
        const int cell = 1 << format.shiftX(plane);
        if (x * cell < seam && seam < (x + 1) * cell)
            return 255 * unit;
        const bool isLeft = x * cell < seam;
        return unit * (plane == 0 ? (isLeft ? 200 : 50) : (isLeft ? 60 : 190));
    });
}

TEST(CompositorEdge, lendsNeitherEyeAChromaSampleThatBothTouch) {
    for (const PictureFormat format : {yuv420, yuv422, yuv411, yuv420ten}) {
        const Picture frame = frameWithSeam(126, 40, 63, format, 1 << (format.depth - 8));
        const Rect leftHalf{0, 0, 63, 40};
        const Rect rightHalf{63, 0, 63, 40};
        Compositor compositor;
        for (const auto &[width, height] :
             std::vector<std::pair<int, int>>{{63, 40}, {40, 25}, {100, 80}, {64, 40}, {31, 41}}) {
            Picture left = flat(width, height, yuv420, 0, 0);
            Picture right = flat(width, height, yuv420, 0, 0);
            compositor.place(frame, {leftHalf, all(left), all(left)}, left);
            compositor.place(frame, {rightHalf, all(right), all(right)}, right);
            expectAll(left, 0, 200);
            expectAll(left, 1, 60);
            expectAll(left, 2, 60);
            expectAll(right, 0, 50);
            expectAll(right, 1, 190);
            expectAll(right, 2, 190);
        }
    }
}

TEST(CompositorEdge, keepsTheOtherEyeOutAtEveryScaleOfNoise) {
    // Changing one half of a frame must not change what comes out of the other.
    Picture frame = noise(254, 60, yuv420, 1);
    Picture other = noise(254, 60, yuv420, 2);
    eachSample(frame, [&](int plane, int x, int y) {
        if (x < (plane == 0 ? 127 : 63))
            other.planes[plane].data[y * other.planes[plane].stride + x] =
                frame.planes[plane].data[y * frame.planes[plane].stride + x];
    });
    Compositor compositor;
    for (const double width : {127.0, 64.0, 90.5, 201.25, 300.0}) {
        const Rect target{-3.3, 2.2, width, 77};
        Picture first = black(310, 90);
        Picture second = black(310, 90);
        compositor.place(frame, {{0, 0, 127, 60}, target, all(first)}, first);
        compositor.place(other, {{0, 0, 127, 60}, target, all(second)}, second);
        eachSample(first, [&](int plane, int x, int y) {
            ASSERT_EQ(sample(first, plane, x, y), sample(second, plane, x, y)) << width;
        });
    }
}

TEST(CompositorEdge, sharesASampleBetweenTwoPicturesWhateverTheCanvasHeld) {
    for (const int before : {0, 128, 255}) {
        const Picture left = flat(63, 32, yuv420, 100, 90);
        const Picture right = flat(63, 32, yuv420, 110, 170);
        Picture canvas = flat(126, 32, yuv420, before, before);
        Compositor compositor;
        compositor.place(left, {all(left), {0, 0, 63, 32}, {0, 0, 63, 32}, true}, canvas);
        compositor.place(right, {all(right), {63, 0, 63, 32}, {63, 0, 63, 32}}, canvas);
        for (int y = 0; y < 16; ++y) {
            ASSERT_EQ(sample(canvas, 1, 30, y), 90);
            ASSERT_EQ(sample(canvas, 1, 31, y), 130);
            ASSERT_EQ(sample(canvas, 1, 32, y), 170);
        }
        ASSERT_EQ(sample(canvas, 0, 62, 3), 100);
        ASSERT_EQ(sample(canvas, 0, 63, 3), 110);
    }
}

TEST(CompositorEdge, takesNoSharedSampleThatThePictureDoesNotReach) {
    // Bars at the sides of an eye stay black also where the clip ends amid a chroma sample.
    const Picture eye = flat(40, 32, yuv420, 100, 90);
    Picture canvas = black(126, 32);
    Compositor().place(eye, {all(eye), {11.5, 0, 40, 32}, {0, 0, 63, 32}, true}, canvas);
    EXPECT_EQ(sample(canvas, 1, 31, 8), 128);
    EXPECT_EQ(sample(canvas, 1, 0, 8), 128);
    EXPECT_EQ(sample(canvas, 1, 5, 8), 128 - 38 / 4 + 0); // a quarter covered
    EXPECT_EQ(sample(canvas, 1, 12, 8), 90);
}

TEST(CompositorEdge, writesNothingBesideTheClip) {
    for (const int width : {1, 7, 31, 33, 63, 65, 100}) {
        const Picture eye = flat(width, 24, yuv420, 77, 88);
        for (const bool scaled : {false, true}) {
            Picture canvas = flat(2 * width + 64, 40, yuv420, 5, 6);
            const double x = 10;
            const Rect cell{x, 8, static_cast<double>(width), scaled ? 20.0 : 24.0};
            Compositor().place(eye, {all(eye), cell, cell}, canvas);
            const int bottom = scaled ? 28 : 32;
            for (int y = 0; y < canvas.height; ++y)
                for (int column = 0; column < canvas.width; ++column) {
                    const bool inside = y >= 8 && y < bottom && column >= 10 && column < 10 + width;
                    ASSERT_EQ(sample(canvas, 0, column, y), inside ? 77 : 5) << width << ": " << column << ", " << y;
                }
        }
    }
}

TEST(CompositorEdge, worksOnSlivers) {
    Compositor compositor;
    for (const auto &[sourceWidth, sourceHeight] :
         std::vector<std::pair<int, int>>{{1, 1}, {1, 50}, {50, 1}, {2, 2}, {3, 5}})
        for (const auto &[width, height] : std::vector<std::pair<int, int>>{{1, 1}, {1, 40}, {40, 1}, {2, 3}, {65, 33}})
            for (const PictureFormat format : {yuv420, yuv420ten, yuv411}) {
                const int unit = 1 << (format.depth - 8);
                const Picture eye = flat(sourceWidth, sourceHeight, format, 99 * unit, 44 * unit);
                Picture canvas = flat(width, height, yuv420, 0, 0);
                compositor.place(eye, {all(eye), all(canvas), all(canvas)}, canvas);
                expectAll(canvas, 0, 99);
                expectAll(canvas, 1, 44);
                expectAll(canvas, 2, 44);
            }
}

TEST(CompositorEdge, showsOneColumnOfALargePicture) {
    const Picture eye = drawn(64, 64, yuv420, [](int plane, int x, int) { return plane == 0 ? 2 * x : 128; });
    Picture canvas = flat(64, 64, yuv420, 255, 255);
    Compositor().place(eye, {all(eye), all(eye), {31, 0, 1, 64}}, canvas);
    EXPECT_EQ(sample(canvas, 0, 30, 9), 255);
    EXPECT_EQ(sample(canvas, 0, 31, 9), 62);
    EXPECT_EQ(sample(canvas, 0, 32, 9), 255);
}

TEST(CompositorEdge, averagesWhatBecomesOnePixel) {
    // Half of the columns are bright: reducing by thousands must not pick single ones.
    const Picture eye =
        drawn(40000, 3, {ColourModel::grey, 8, 0, 0}, [](int, int x, int) { return x % 2 == 0 ? 40 : 200; });
    for (const int width : {1, 3, 10, 700}) {
        Picture canvas = flat(width, 3, grey8, 0);
        Compositor().place(eye, {all(eye), all(canvas), all(canvas)}, canvas);
        for (int x = 0; x < width; ++x)
            EXPECT_NEAR(sample(canvas, 0, x, 1), 120, 2) << width;
    }
}

TEST(CompositorEdge, reducesTheLargestPictures) {
    const Picture eye = flat(65535, 2, yuv420, 137, 77);
    for (const int width : {1, 2, 300}) {
        Picture canvas = black(width, 2);
        Compositor().place(eye, {all(eye), all(canvas), all(canvas)}, canvas);
        expectAll(canvas, 0, 137);
        expectAll(canvas, 1, 77);
    }
}

TEST(CompositorEdge, showsALineThinnerThanAPixelFaintly) {
    const Picture eye = flat(4000, 1, yuv420, 216, 128);
    Picture canvas = black(8, 8);
    Compositor().place(eye, {all(eye), {0, 4.4, 8, 0.1}, all(canvas)}, canvas);
    EXPECT_EQ(sample(canvas, 0, 3, 4), 36);
    EXPECT_EQ(sample(canvas, 0, 3, 3), 16);
    EXPECT_EQ(sample(canvas, 0, 3, 5), 16);
    Compositor().place(eye, {all(eye), {0, 4, 8, 1e-9}, all(canvas)}, canvas);
    Compositor().place(eye, {all(eye), {0, 1.95, 8, 0.1}, all(canvas)}, canvas);
    EXPECT_EQ(sample(canvas, 0, 3, 1), 26);
    EXPECT_EQ(sample(canvas, 0, 3, 2), 26);
}

TEST(CompositorEdge, leavesTheCanvasWhereThereIsNothingToShow) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
    const Picture eye = flat(16, 16, yuv420, 200, 200);
    const Rect good{0, 0, 16, 16};
    Compositor compositor;
    Picture canvas = flat(16, 16, yuv420, 7, 8);
    for (const Rect &bad : {Rect{0, 0, 0, 16}, Rect{0, 0, 16, 0}, Rect{0, 0, -4, 16}, Rect{nothing, 0, 16, 16},
                            Rect{0, 0, nothing, 16}, Rect{0, -infinity, 16, infinity}, Rect{0, 0, infinity, 16},
                            Rect{40, 0, 16, 16}, Rect{0, -1e300, 16, 16}, Rect{1e300, 0, 16, 16}}) {
        compositor.place(eye, {bad, good, good}, canvas);
        compositor.place(eye, {good, bad, good}, canvas);
        compositor.place(eye, {good, good, bad}, canvas);
    }
    expectAll(canvas, 0, 7);
    expectAll(canvas, 1, 8);
}

TEST(CompositorEdge, showsAPartOfAnEnormousEnlargement) {
    const Picture eye = flat(16, 16, yuv420, 200, 100);
    Picture canvas = black(16, 16);
    Compositor().place(eye, {all(eye), {-1e9, -3e12, 2e9, 6e12}, all(canvas)}, canvas);
    expectAll(canvas, 0, 200);
    expectAll(canvas, 2, 100);
}

TEST(CompositorEdge, readsRowsFromTheBottomUp) {
    // Some decoders hand out pictures whose stride is negative.
    const Picture eye = noise(40, 30, yuv420);
    Picture flipped = eye;
    for (int plane = 0; plane < 3; ++plane) {
        flipped.planes[plane].data += (eye.planeHeight(plane) - 1) * eye.planes[plane].stride;
        flipped.planes[plane].stride = -eye.planes[plane].stride;
    }
    Picture moved = black(40, 30);
    Picture scaled = black(40, 30);
    Compositor().place(flipped, {all(eye), all(eye), all(eye)}, moved);
    EXPECT_EQ(sample(moved, 0, 11, 0), sample(eye, 0, 11, 29));
    EXPECT_EQ(sample(moved, 2, 11, 14), sample(eye, 2, 11, 0));
    Compositor().place(moved, {all(eye), {0, 0, 20, 15}, all(eye)}, scaled);
    Picture expected = black(40, 30);
    Compositor().place(flipped, {all(eye), {0, 0, 20, 15}, all(eye)}, expected);
    eachSample(scaled,
               [&](int plane, int x, int y) { ASSERT_EQ(sample(scaled, plane, x, y), sample(expected, plane, x, y)); });
}

} // namespace
} // namespace lumetwin::media
