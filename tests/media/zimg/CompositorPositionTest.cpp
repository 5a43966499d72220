// SPDX-License-Identifier: GPL-3.0-or-later
// A smooth pattern that is known at every point: wherever a picture of it is placed, each sample must show the
// pattern's value at the place that the sample stands for.
#include "media/Compositor.h"
#include "tests/support/Drawing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace lumetwin::media {
namespace {

using namespace test;

/// The pattern at a place in luma pixels of the source.
double pattern(int plane, double x, double y, double wave) {
    const double turn = 2 * std::numbers::pi / wave;
    return 126 + 50 * std::sin(turn * x + plane) + 50 * std::cos(turn * y * 0.9 - plane);
}

struct Place {
    double x;
    double y;
};

/// Where a sample lies, in pixels from the picture's upper left corner (ITU-T H.273, figure 1).
Place placeOf(const Picture &picture, int plane, int x, int y) {
    const int cellX = 1 << picture.format.shiftX(plane);
    const int cellY = 1 << picture.format.shiftY(plane);
    const ChromaLocation location = picture.colour.chromaLocation;
    const bool centred = location == ChromaLocation::centre;
    const bool top = location == ChromaLocation::topLeft;
    return {x * cellX + (centred ? cellX / 2.0 : 0.5), y * cellY + (top ? 0.5 : cellY / 2.0)};
}

Picture patterned(int width, int height, PictureFormat format, ColourTags colour, double wave) {
    Picture shape;
    shape.width = width;
    shape.height = height;
    shape.format = format;
    shape.colour = colour;
    const int unit = 1 << (format.depth - 8);
    return drawn(
        width, height, format,
        [&](int plane, int x, int y) {
            const Place place = placeOf(shape, plane, x, y);
            return static_cast<int>(std::lround(unit * pattern(plane, place.x, place.y, wave)));
        },
        colour);
}

/// How far the canvas is from the pattern, at most and as the root of the mean square, away from the picture's edges.
struct Deviation {
    double largest = 0;
    double squares = 0;
    int count = 0;
    double root() const { return std::sqrt(squares / count); }
};

Deviation deviation(const Picture &canvas, const Placement &placement, double wave) {
    const double scaleX = placement.source.width / placement.target.width;
    const double scaleY = placement.source.height / placement.target.height;
    const double margin = 5 + 3 * std::max({1.0, scaleX, scaleY});
    Deviation result;
    eachSample(canvas, [&](int plane, int x, int y) {
        const Place place = placeOf(canvas, plane, x, y);
        const double fromX = (place.x - placement.target.x) * scaleX;
        const double fromY = (place.y - placement.target.y) * scaleY;
        if (fromX < margin || fromY < margin || fromX > placement.source.width - margin ||
            fromY > placement.source.height - margin)
            return;
        const double expected = pattern(plane, placement.source.x + fromX, placement.source.y + fromY, wave);
        const double difference = sample(canvas, plane, x, y) - expected;
        result.largest = std::max(result.largest, std::abs(difference));
        result.squares += difference * difference;
        ++result.count;
    });
    return result;
}

struct Kind {
    PictureFormat format;
    ChromaLocation location;
};

const std::vector<Kind> kinds{
    {yuv420, ChromaLocation::unspecified}, {yuv420, ChromaLocation::left},    {yuv420, ChromaLocation::centre},
    {yuv420, ChromaLocation::topLeft},     {yuv422, ChromaLocation::left},    {yuv444, ChromaLocation::unspecified},
    {yuv411, ChromaLocation::left},        {yuv420ten, ChromaLocation::left}, {yuv420ten, ChromaLocation::topLeft}};

TEST(CompositorPosition, holdsAtRandomPlacesAndScales) {
    std::mt19937 random(11);
    const auto between = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    Compositor compositor;
    for (int trial = 0; trial < 120; ++trial) {
        const Kind &from = kinds[random() % kinds.size()];
        const Kind &to = kinds[random() % 4];
        const double wave = 60;
        const int width = 150 + static_cast<int>(random() % 60);
        const int height = 120 + static_cast<int>(random() % 60);
        const Picture eye =
            patterned(width, height, from.format, tagged(ColourRange::unspecified, from.location), wave);
        Picture canvas = black(200, 160, to.format, tagged(ColourRange::unspecified, to.location));
        const double cutX = random() % 2 == 0 ? 0 : static_cast<double>(random() % 40);
        const Placement placement{{cutX, 0, width - cutX, static_cast<double>(height)},
                                  {between(-30, 30), between(-30, 30), between(90, 400), between(80, 300)},
                                  all(canvas)};
        compositor.place(eye, placement, canvas);
        const Deviation found = deviation(canvas, placement, wave);
        ASSERT_GT(found.count, 500);
        EXPECT_LT(found.largest, 3) << trial;
        EXPECT_LT(found.root(), 0.9) << trial;
    }
}

TEST(CompositorPosition, holdsAtOddPlacesWithoutScaling) {
    for (const Kind &kind : kinds)
        for (const Place &at : std::vector<Place>{{0, 0}, {1, 0}, {0, 1}, {1, 1}, {3, 5}, {0.5, 0.25}}) {
            const Picture eye = patterned(121, 91, kind.format, tagged(ColourRange::unspecified, kind.location), 60);
            Picture canvas = black(130, 100, yuv420, tagged(ColourRange::unspecified, ChromaLocation::left));
            const Placement placement{all(eye), {at.x, at.y, 121, 91}, all(canvas)};
            Compositor().place(eye, placement, canvas);
            EXPECT_LT(deviation(canvas, placement, 60).root(), 0.7) << at.x << ", " << at.y;
        }
}

TEST(CompositorPosition, squeezesColourAsFarAsBrightness) {
    // Half width: were chroma taken as centred, colours would lie a quarter of a pixel beside their shapes.
    const Picture eye = patterned(240, 80, yuv420, tagged(ColourRange::unspecified, ChromaLocation::left), 40);
    Picture canvas = black(120, 80, yuv420, tagged(ColourRange::unspecified, ChromaLocation::left));
    const Placement placement{all(eye), all(canvas), all(canvas)};
    Compositor().place(eye, placement, canvas);
    EXPECT_LT(deviation(canvas, placement, 40).root(), 0.5);
    canvas.colour.chromaLocation = ChromaLocation::centre;
    EXPECT_GT(deviation(canvas, placement, 40).root(), 1); // this test can tell
}

} // namespace
} // namespace lumetwin::media
