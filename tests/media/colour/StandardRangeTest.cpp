// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/StandardRange.h"

#include "media/colour/ToneCurve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <set>

namespace lumetwin::media {
namespace {

constexpr ColourTags hdr10{9, 16, 9, ColourRange::limited, ChromaLocation::left};
constexpr ColourTags hlg{9, 18, 9, ColourRange::limited, ChromaLocation::left};

/// One plane of a drawn picture: a sample of a plane, a column and a row.
Picture drawn(int width, int height, const ColourTags &colour, const std::function<int(int, int, int)> &sample,
              int shift = 1) {
    Picture picture = makePicture(width, height, {ColourModel::yuv, 10, shift, shift}, colour);
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < picture.planeHeight(plane); ++y)
            for (int x = 0; x < picture.planeWidth(plane); ++x)
                reinterpret_cast<std::uint16_t *>(picture.planes[plane].data + y * picture.planes[plane].stride)[x] =
                    static_cast<std::uint16_t>(sample(plane, x, y));
    return picture;
}

Picture converted(const Picture &picture, const LightLevels &levels = {}) {
    const ColourTags target = StandardRange::video(picture.colour);
    Picture result =
        makePicture(picture.width, picture.height,
                    {ColourModel::yuv, 8, picture.format.chromaShiftX, picture.format.chromaShiftY}, target);
    StandardRange(picture.colour, levels, target).convert(picture, result);
    return result;
}

double mean(const Picture &picture, int plane) {
    double sum = 0;
    for (int y = 0; y < picture.planeHeight(plane); ++y)
        for (int x = 0; x < picture.planeWidth(plane); ++x)
            sum += picture.planes[plane].data[y * picture.planes[plane].stride + x];
    return sum / picture.planeWidth(plane) / picture.planeHeight(plane);
}

std::array<double, 3> meanOf(const std::array<int, 3> &samples, const ColourTags &colour,
                             const LightLevels &levels = {}) {
    const Picture result = converted(
        drawn(32, 16, colour, [&](int plane, int, int) { return samples.at(static_cast<std::size_t>(plane)); }),
        levels);
    return {mean(result, 0), mean(result, 1), mean(result, 2)};
}

int pqCode(double luminance) {
    return static_cast<int>(std::lround(64 + 876 * colour::pqOfLuminance(luminance)));
}

TEST(ToneCurve, HasTheValuesOfTheStandard) {
    // ITU-R BT.2408, table 1: 203 cd/m² is at 58 % of PQ and at 75 % of HLG; ITU-R BT.2100: 10,000 is at 100 %.
    EXPECT_NEAR(colour::pqOfLuminance(203), 0.58, 0.005);
    EXPECT_NEAR(colour::pqOfLuminance(10000), 1, 1e-9);
    for (const double signal : {0.0, 0.1, 0.5, 0.75, 1.0})
        EXPECT_NEAR(colour::pqOfLuminance(colour::luminanceOfPq(signal)), signal, 1e-6);
    const colour::Triple weights{0.2627, 0.6780, 0.0593};
    EXPECT_NEAR(colour::lightOfHlg({0.75, 0.75, 0.75}, weights)[1], 203, 1);
    EXPECT_NEAR(colour::lightOfHlg({1, 1, 1}, weights)[0], 1000, 1);
}

TEST(ToneCurve, KeepsDarkAndCompressesBright) {
    EXPECT_DOUBLE_EQ(colour::standardLuminance(0, 1000), 0);
    EXPECT_NEAR(colour::standardLuminance(20, 1000), 20 / 203.0, 1e-6) << "below the knee";
    EXPECT_NEAR(colour::standardLuminance(1000, 1000), 1, 1e-6);
    EXPECT_NEAR(colour::standardLuminance(4000, 1000), 1, 1e-6) << "brighter than the film says";
    EXPECT_NEAR(colour::standardLuminance(150, 203), 150 / 203.0, 1e-9) << "nothing to compress";
    for (const double peak : {300.0, 1000.0, 4000.0, 10000.0}) {
        double before = -1;
        for (double luminance = 0; luminance <= peak; luminance += peak / 500) {
            const double shown = colour::standardLuminance(luminance, peak);
            EXPECT_GT(shown, before) << luminance << " of " << peak;
            EXPECT_LE(shown, std::min(1.0, luminance / 203 + 1e-9));
            before = shown;
        }
    }
}

TEST(ToneCurve, MovesColoursTowardGrey) {
    const colour::Triple weights{0.2126, 0.7152, 0.0722};
    const colour::Triple inside{0.3, 0.4, 0.35};
    const double luminance = 0.2126 * 0.3 + 0.7152 * 0.4 + 0.0722 * 0.35;
    EXPECT_EQ(colour::withinGamut(inside, luminance), inside);
    double before = 0;
    for (double red = 0.2; red < 3; red += 0.05) {
        const colour::Triple colour{red, (0.3 - 0.2126 * red) / 0.7874, (0.3 - 0.2126 * red) / 0.7874};
        const colour::Triple moved = colour::withinGamut(colour, 0.3);
        EXPECT_NEAR(moved[0] * weights[0] + moved[1] * weights[1] + moved[2] * weights[2], 0.3, 1e-9);
        EXPECT_GE(std::min(moved[1], moved[0]), 0);
        EXPECT_LE(moved[0], 1);
        EXPECT_GE(moved[0], before) << "more red stays more red";
        before = moved[0];
    }
}

TEST(StandardRange, IsForPqAndHlgAlone) {
    EXPECT_TRUE(isHighDynamicRange(hdr10));
    EXPECT_TRUE(isHighDynamicRange(hlg));
    EXPECT_FALSE(isHighDynamicRange({9, 14, 9, ColourRange::limited, ChromaLocation::left})) << "BT.2020 with 10 bits";
    EXPECT_FALSE(isHighDynamicRange({}));
}

TEST(StandardRange, KeepsBlackAndGreyAndMakesThePeakWhite) {
    const auto black = meanOf({64, 512, 512}, hdr10);
    EXPECT_NEAR(black[0], 16, 0.6);
    const auto peak = meanOf({pqCode(1000), 512, 512}, hdr10);
    EXPECT_NEAR(peak[0], 235, 1);
    // 20 cd/m² of a white of 203, on a screen with the exponent 2.4.
    const auto grey = meanOf({pqCode(20), 512, 512}, hdr10);
    EXPECT_NEAR(grey[0], 16 + 219 * std::pow(20 / 203.0, 1 / 2.4), 1);
    for (const auto &colour : {black, peak, grey}) {
        EXPECT_NEAR(colour[1], 128, 0.6);
        EXPECT_NEAR(colour[2], 128, 0.6);
    }
    EXPECT_NEAR(meanOf({64 + 876, 512, 512}, hlg)[0], 235, 1);
    EXPECT_NEAR(meanOf({64, 512, 512}, hlg)[0], 16, 0.6);
}

TEST(StandardRange, UsesTheBrightnessThatTheFilmSays) {
    LightLevels levels;
    levels.mastering = MasteringDisplay{{}, {}, {}, {}, 40'000'000, 1};
    const double bright = meanOf({pqCode(1000), 512, 512}, hdr10, levels)[0];
    EXPECT_LT(bright, 228) << "a film of 4000 cd/m² has brighter things";
    levels.content = ContentLight{600, 100};
    EXPECT_NEAR(meanOf({pqCode(600), 512, 512}, hdr10, levels)[0], 235, 1);
}

TEST(StandardRange, KeepsTheHueOfColoursThatBothHave) {
    // A dull red, 50 : 15 : 15 cd/m² of BT.709, as BT.2020 in PQ (ITU-R BT.2087).
    const std::array<double, 3> light{50 * 0.6274 + 15 * (0.3293 + 0.0433), 50 * 0.0691 + 15 * (0.9195 + 0.0114),
                                      50 * 0.0164 + 15 * (0.0880 + 0.8956)};
    std::array<double, 3> signal{};
    for (std::size_t index = 0; index < 3; ++index)
        signal.at(index) = colour::pqOfLuminance(light.at(index));
    const double luma = 0.2627 * signal[0] + 0.6780 * signal[1] + 0.0593 * signal[2];
    const auto code = [](double value) { return static_cast<int>(std::lround(512 + 896 * value)); };
    const auto shown = meanOf({static_cast<int>(std::lround(64 + 876 * luma)), code((signal[2] - luma) / 1.8814),
                               code((signal[0] - luma) / 1.4746)},
                              hdr10);
    const double red = std::pow(50 / 203.0, 1 / 2.4);
    const double others = std::pow(15 / 203.0, 1 / 2.4);
    const double brightness = 0.2126 * red + 0.7874 * others;
    EXPECT_NEAR(shown[0], 16 + 219 * brightness, 1.5);
    EXPECT_NEAR(shown[1], 128 + 224 * (others - brightness) / 1.8556, 1.5);
    EXPECT_NEAR(shown[2], 128 + 224 * (red - brightness) / 1.5748, 1.5);
}

TEST(StandardRange, KeepsColoursBeyondApart) {
    double before = 0;
    for (const double share : {0.5, 0.7, 0.9, 1.0}) {
        const double grey = colour::pqOfLuminance(40 * (1 - share));
        const double red = colour::pqOfLuminance(40);
        const double luma = 0.2627 * red + 0.7373 * grey;
        const auto shown = meanOf({static_cast<int>(std::lround(64 + 876 * luma)),
                                   static_cast<int>(std::lround(512 + 896 * (grey - luma) / 1.8814)),
                                   static_cast<int>(std::lround(512 + 896 * (red - luma) / 1.4746))},
                                  hdr10);
        const double saturation = (shown[2] - 128) / (shown[0] - 16);
        EXPECT_GT(saturation, before) << share;
        before = saturation;
    }
}

TEST(StandardRange, ShowsNoBandsInARamp) {
    const Picture ramp = drawn(1024, 16, hdr10, [](int plane, int x, int) { return plane ? 512 : x; });
    const Picture result = converted(ramp);
    double before = 0;
    for (int x = 64; x < 900; x += 4) { // the width of the pattern of the dither
        double sum = 0;
        for (int y = 0; y < 16; ++y)
            for (int column = x; column < x + 4; ++column)
                sum += result.planes[0].data[y * result.planes[0].stride + column];
        EXPECT_GE(sum / 64, before - 0.05) << x;
        before = sum / 64;
    }
}

TEST(StandardRange, TakesEverySampleValueSizeAndSubsampling) {
    for (const int shift : {0, 1})
        for (const ColourRange range : {ColourRange::limited, ColourRange::full}) {
            ColourTags tags = hdr10;
            tags.range = range;
            const Picture result = converted(drawn(
                33, 17, tags, [](int plane, int x, int y) { return (x * 331 + y * 77 + plane * 500) % 1024; }, shift));
            std::set<int> seen;
            for (int y = 0; y < 17; ++y)
                for (int x = 0; x < 33; ++x)
                    seen.insert(result.planes[0].data[y * result.planes[0].stride + x]);
            EXPECT_GT(seen.size(), 50U);
        }
}

TEST(StandardRange, RefusesPicturesOfEightBits) {
    Picture flat = makePicture(4, 4, yuv420, hdr10);
    Picture result = makePicture(4, 4, yuv420);
    EXPECT_THROW(StandardRange(hdr10, {}, StandardRange::video(hdr10)).convert(flat, result), std::logic_error);
}

} // namespace
} // namespace lumetwin::media
