// SPDX-License-Identifier: GPL-3.0-or-later
// The bit rate of films with passages that cannot use their share of the bits, and with shots that differ much. (An
// x265 without the patches of scripts/patches is steered from outside and keeps less closely to it.)
#include "media/x265/Encoder.h"
#include "media/x265/StereoEncoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

#ifdef X265_BITRATE_OF_ALL_VIEWS

namespace lumetwin::media::x265 {
namespace {

constexpr int width = 192;
constexpr int height = 112;
constexpr int frameRate = 25;

/// A passage of a film. Grain: the greatest difference from the pattern. A still one shows its first frame all the
/// time.
struct Shot {
    double seconds;
    int pattern; ///< 0: black
    int grain = 4;
    bool still = false;
};

Picture draw(const Shot &shot, int frame, bool right) {
    Picture picture = makePicture(width, height, yuv420);
    for (int plane = 1; plane < 3; ++plane)
        for (int y = 0; y < picture.planeHeight(plane); ++y)
            std::fill_n(picture.planes[plane].data + y * picture.planes[plane].stride, picture.planeWidth(plane), 128);
    const int shown = shot.still ? 0 : frame;
    std::minstd_rand random(static_cast<unsigned>(shown * 2 + right + 1000 * shot.pattern));
    const double size = 0.05 + 0.03 * shot.pattern;
    std::array<double, width> across{};
    for (int x = 0; x < width; ++x)
        across.at(static_cast<std::size_t>(x)) = std::sin((x + shown * shot.pattern + (right ? 6 : 0)) * size);
    for (int y = 0; y < height; ++y) {
        std::uint8_t *row = picture.planes[0].data + y * picture.planes[0].stride;
        const double down = std::cos((y + shown) * size);
        for (int x = 0; x < width; ++x) {
            const int grain = static_cast<int>(random() % static_cast<unsigned>(2 * shot.grain + 1)) - shot.grain;
            const double wave = across[static_cast<std::size_t>(x)] + down;
            row[x] = static_cast<std::uint8_t>(shot.pattern == 0 ? 16 : static_cast<int>(126 + 40 * wave) + grain);
        }
    }
    return picture;
}

/// The bit rate of a film relative to what was asked for.
double rateOf(const std::vector<Shot> &film, std::int64_t asked = 150'000) {
    StereoFormat format;
    format.width = width;
    format.height = height;
    format.timeScale = frameRate;
    format.frameDuration = 1;
    format.averageBitRate = asked;
    StereoEncoder encoder("test.mov", format);
    double bits = 0;
    const auto sink = [&](const AccessUnit &unit) { bits += 8.0 * static_cast<double>(unit.bytes.size()); };
    int time = 0;
    for (const Shot &shot : film)
        for (int frame = 0; frame < std::lround(shot.seconds * frameRate); ++frame)
            encoder.encode(draw(shot, frame, false), draw(shot, frame, true), time++, sink);
    encoder.finish(sink);
    return bits / time * frameRate / static_cast<double>(asked);
}

TEST(StereoBitRate, IsMetByShortFilms) {
    EXPECT_NEAR(rateOf({{4, 1}}), 1, 0.1);
    EXPECT_NEAR(rateOf({{8, 3}}), 1, 0.07);
}

TEST(StereoBitRate, IsMetWhereShotsDiffer) {
    EXPECT_NEAR(rateOf({{3, 1, 2}, {2, 3, 9}, {4, 2}, {1, 1, 12}, {3, 4, 3}, {4, 3}, {2, 1, 8}, {3, 2, 2}}), 1, 0.02);
}

TEST(StereoBitRate, IsMetBehindBlackPassages) {
    EXPECT_NEAR(rateOf({{2, 0}, {20, 1}}), 1, 0.02);
    EXPECT_NEAR(rateOf({{8, 0}, {18, 2}}), 1, 0.02);
    EXPECT_NEAR(rateOf({{8, 1}, {8, 0}, {12, 2}}), 1, 0.02);
}

TEST(StereoBitRate, IsMetByFilmsThatShowPhotos) {
    EXPECT_NEAR(rateOf({{4, 1}, {5, 2, 20, true}, {4, 3}, {5, 4, 20, true}, {6, 2}}), 1, 0.02);
    EXPECT_NEAR(rateOf({{8, 2, 20, true}, {14, 1}}), 1, 0.02);
}

TEST(StereoBitRate, IsNeverExceededByBlackEnds) {
    const double rate = rateOf({{20, 1}, {2, 0}});
    EXPECT_LT(rate, 1.02);
    EXPECT_GT(rate, 0.98 * 20 / 22) << "what black pictures at the end cannot use is not spent before";
}

} // namespace
} // namespace lumetwin::media::x265

#endif
