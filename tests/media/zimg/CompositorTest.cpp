// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Compositor.h"
#include "tests/support/Drawing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <vector>

namespace lumetwin::media {
namespace {

using namespace test;

TEST(Compositor, movesSamplesUntouchedAtEvenPositions) {
    const Picture eye = noise(64, 32, yuv420);
    Picture canvas = black(128, 32);
    Compositor compositor;
    compositor.place(eye, {all(eye), {0, 0, 64, 32}, {0, 0, 64, 32}}, canvas);
    compositor.place(eye, {all(eye), {64, 0, 64, 32}, {64, 0, 64, 32}}, canvas);
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < eye.planeHeight(plane); ++y)
            for (int x = 0; x < eye.planeWidth(plane); ++x) {
                ASSERT_EQ(sample(canvas, plane, x, y), sample(eye, plane, x, y));
                ASSERT_EQ(sample(canvas, plane, x + eye.planeWidth(plane), y), sample(eye, plane, x, y));
            }
}

TEST(Compositor, movesLumaUntouchedAlsoToOddPositions) {
    const Picture left = noise(63, 31, yuv420);
    const Picture right = noise(63, 31, yuv420);
    Picture canvas = black(126, 31);
    Compositor compositor;
    compositor.place(left, {all(left), {0, 0, 63, 31}, {0, 0, 63, 31}}, canvas);
    compositor.place(right, {all(right), {63, 0, 63, 31}, {63, 0, 63, 31}}, canvas);
    for (int y = 0; y < 31; ++y)
        for (int x = 0; x < 63; ++x) {
            ASSERT_EQ(sample(canvas, 0, x, y), sample(left, 0, x, y));
            ASSERT_EQ(sample(canvas, 0, x + 63, y), sample(right, 0, x, y));
        }
}

TEST(Compositor, sharesAChromaSampleBetweenTheEyesThatMeetInIt) {
    const Picture left = flat(63, 32, yuv420, 100, 90);
    const Picture right = flat(63, 32, yuv420, 100, 170);
    Picture canvas = black(126, 32);
    Compositor compositor;
    compositor.place(left, {all(left), {0, 0, 63, 32}, {0, 0, 63, 32}}, canvas);
    compositor.place(right, {all(right), {63, 0, 63, 32}, {63, 0, 63, 32}}, canvas);
    EXPECT_EQ(sample(canvas, 1, 30, 5), 90);
    EXPECT_EQ(sample(canvas, 1, 32, 5), 170);
    EXPECT_NEAR(sample(canvas, 1, 31, 5), 140, 12); // black's neutral, then half of each
}

TEST(Compositor, readsNothingOutsideTheSourceRectangle) {
    // A side-by-side frame: what is scaled out of one half must not know the other.
    Picture frame = flat(128, 64, yuv420, 200, 60);
    Compositor().place(flat(64, 64, yuv420, 50, 190), {{0, 0, 64, 64}, {64, 0, 64, 64}, {64, 0, 64, 64}}, frame);
    Compositor compositor;
    for (const double width : {40.0, 64.5, 100.0, 173.0}) {
        Picture left = black(static_cast<int>(width), 80);
        Picture right = black(static_cast<int>(width), 80);
        compositor.place(frame, {{0, 0, 64, 64}, {0, 0, width, 80}, {0, 0, 1000, 80}}, left);
        compositor.place(frame, {{64, 0, 64, 64}, {0, 0, width, 80}, {0, 0, 1000, 80}}, right);
        for (int x = 0; x < left.width; ++x) {
            ASSERT_EQ(sample(left, 0, x, 40), 200) << width;
            ASSERT_EQ(sample(right, 0, x, 40), 50) << width;
            ASSERT_EQ(sample(left, 1, x / 2, 20), 60) << width;
            ASSERT_EQ(sample(right, 1, x / 2, 20), 190) << width;
        }
    }
}

TEST(Compositor, mixesPartlyCoveredPixelsByTheirArea) {
    const Picture eye = flat(100, 100, yuv420, 216);
    Picture canvas = black(100, 200);
    Compositor().place(eye, {all(eye), {0, 50.25, 100, 100}, {0, 0, 100, 200}}, canvas);
    EXPECT_EQ(sample(canvas, 0, 50, 49), 16);
    EXPECT_EQ(sample(canvas, 0, 50, 50), 166); // 75 % image
    EXPECT_EQ(sample(canvas, 0, 50, 51), 216);
    EXPECT_EQ(sample(canvas, 0, 50, 149), 216);
    EXPECT_EQ(sample(canvas, 0, 50, 150), 66); // 25 %
    EXPECT_EQ(sample(canvas, 0, 50, 151), 16);
}

TEST(Compositor, keepsAFlatColourFlatAtEveryScale) {
    for (const PictureFormat format : {yuv420, yuv422, yuv444})
        for (const auto &[width, height] :
             std::vector<std::pair<double, double>>{{33, 17}, {50.5, 99.25}, {300, 3}, {1, 1}}) {
            const Picture eye = flat(61, 47, format, 137, 77);
            const int across = static_cast<int>(std::ceil(width));
            const int down = static_cast<int>(std::ceil(height));
            Picture canvas = flat(across, down, yuv420, 137, 77);
            Compositor().place(eye, {all(eye), {0, 0, width, height}, {0, 0, 1000, 1000}}, canvas);
            for (int plane = 0; plane < 3; ++plane)
                for (int y = 0; y < canvas.planeHeight(plane); ++y)
                    for (int x = 0; x < canvas.planeWidth(plane); ++x)
                        ASSERT_EQ(sample(canvas, plane, x, y), plane == 0 ? 137 : 77);
        }
}

TEST(Compositor, keepsARampWhereItIs) {
    const Picture eye = drawn(200, 16, yuv420, [](int plane, int x, int) { return 20 + x * (plane == 0 ? 1 : 2); });
    // Left-sited chroma: its sample x lies on luma sample 2x, so that luma and chroma of this picture agree there.
    for (const double scale : {0.5, 0.75, 1.5, 2.0}) {
        const int width = static_cast<int>(200 * scale);
        Picture canvas = black(width, 16);
        Compositor().place(eye, {all(eye), {0, 0, 200 * scale, 16}, {0, 0, 1000, 16}}, canvas);
        for (int x = 20; x < width - 20; x += 2) {
            EXPECT_NEAR(sample(canvas, 0, x, 8), 20 + (x + 0.5) / scale - 0.5, 1.01);
            EXPECT_NEAR(sample(canvas, 1, x / 2, 4), sample(canvas, 0, x, 8), 2.01) << scale;
        }
    }
}

TEST(Compositor, shiftsByFractionsOfAPixel) {
    const Picture eye = drawn(200, 16, yuv420, [](int plane, int x, int) { return plane == 0 ? x : 128; });
    Picture canvas = black(220, 16);
    Compositor().place(eye, {all(eye), {10.25, 0, 200, 16}, {0, 0, 220, 16}}, canvas);
    EXPECT_NEAR(sample(canvas, 0, 110, 8), 99.75, 0.6);
}

TEST(Compositor, reducesDepthWithoutMovingTheMean) {
    const Picture eye = drawn(128, 128, yuv420ten, [](int plane, int, int) { return plane == 0 ? 402 : 512; });
    Picture canvas = black(128, 128);
    Compositor().place(eye, {all(eye), all(eye), all(eye)}, canvas);
    double sum = 0;
    for (int y = 0; y < 128; ++y)
        for (int x = 0; x < 128; ++x)
            sum += sample(canvas, 0, x, y);
    EXPECT_NEAR(sum / (128 * 128), 100.5, 0.05);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            ASSERT_EQ(sample(canvas, 1, x, y), 128); // neutral stays neutral
}

TEST(Compositor, makesGreyNeutral) {
    const Picture eye = flat(32, 32, {ColourModel::grey, 8, 0, 0}, 90);
    Picture canvas = flat(32, 32, yuv420, 1, 1);
    Compositor().place(eye, {all(eye), all(eye), all(eye)}, canvas);
    EXPECT_EQ(sample(canvas, 0, 7, 7), 90);
    EXPECT_EQ(sample(canvas, 1, 7, 7), 128);
}

TEST(Compositor, fillsBlackInEachRangeAndModel) {
    Picture limited = black(4, 4);
    EXPECT_EQ(sample(limited, 0, 1, 1), 16);
    EXPECT_EQ(sample(limited, 1, 1, 1), 128);
    Picture full = makePicture(4, 4, yuv420, {2, 2, 2, ColourRange::full, ChromaLocation::unspecified});
    Compositor::fillBlack(full);
    EXPECT_EQ(sample(full, 0, 1, 1), 0);
    Picture rgb = black(4, 4, {ColourModel::rgb, 8, 0, 0});
    EXPECT_EQ(sample(rgb, 2, 1, 1), 0);
    Picture ten = black(4, 4, yuv420ten);
    EXPECT_EQ(sample(ten, 0, 1, 1), 64);
    EXPECT_EQ(sample(ten, 2, 1, 1), 512);
}

TEST(Compositor, worksOnTinyPictures) {
    const Picture dot = flat(1, 1, yuv420, 99, 44);
    Picture canvas = black(2, 2);
    Compositor().place(dot, {all(dot), {0, 0, 2, 2}, {0, 0, 2, 2}}, canvas);
    EXPECT_EQ(sample(canvas, 0, 1, 1), 99);
    EXPECT_EQ(sample(canvas, 1, 0, 0), 44);
    Picture one = black(1, 1);
    const Picture large = flat(500, 3, yuv420, 99, 44);
    Compositor().place(large, {all(large), {0, 0, 1, 1}, {0, 0, 1, 1}}, one);
    EXPECT_EQ(sample(one, 0, 0, 0), 99);
}

TEST(Compositor, leavesPixelsOutsideTheClipAlone) {
    Picture canvas = flat(64, 64, yuv420, 33, 44);
    const Picture eye = noise(100, 100, yuv420);
    Compositor().place(eye, {all(eye), {-20, -20, 100, 100}, {10, 10, 20, 20}}, canvas);
    EXPECT_EQ(sample(canvas, 0, 9, 15), 33);
    EXPECT_EQ(sample(canvas, 0, 30, 15), 33);
    EXPECT_EQ(sample(canvas, 1, 4, 7), 44);
    EXPECT_EQ(sample(canvas, 0, 10, 10), sample(eye, 0, 30, 30));
}

TEST(Compositor, refusesToMixColourModels) {
    const Picture rgb = flat(8, 8, {ColourModel::rgb, 8, 0, 0}, 1);
    Picture canvas = black(8, 8);
    EXPECT_THROW(Compositor().place(rgb, {all(rgb), all(rgb), all(rgb)}, canvas), std::logic_error);
}

} // namespace
} // namespace lumetwin::media
