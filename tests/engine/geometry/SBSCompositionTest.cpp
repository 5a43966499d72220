// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/geometry/SBSComposition.h"

#include "engine/stereo/EyeExtraction.h"
#include "tests/engine/geometry/Resizing.h"
#include "tests/support/Drawing.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace lumetwin {
namespace {

using namespace test;
using media::Compositor;
using media::yuv420;

/// What the frame's memory held before, which nobody may see.
Picture usedCanvas(std::int64_t width, std::int64_t height) {
    return flat(static_cast<int>(width), static_cast<int>(height), yuv420, 255, 255);
}

Picture composed(const ConversionSettings &settings, const Picture &left, const Picture &right) {
    const SBSGeometry geometry = sbsGeometry(settings, left.width, left.height);
    Picture canvas = usedCanvas(geometry.outW, geometry.outH);
    SBSComposition(geometry).compose(left, right, canvas);
    return canvas;
}

/// Waves of a few dozen pixels: what every good filter agrees about.
Picture waves(int width, int height, double phase) {
    const double turn = 2 * std::numbers::pi / 48;
    return drawn(width, height, yuv420, [&](int plane, int x, int y) {
        const int cell = plane == 0 ? 1 : 2;
        const double wave = std::sin(turn * cell * x + phase + plane) + std::cos(turn * cell * y - phase);
        return static_cast<int>(std::lround(126 + 50 * wave));
    });
}

std::vector<std::uint8_t> bytesOf(const Picture &picture) {
    std::vector<std::uint8_t> bytes;
    eachSample(picture, [&](int plane, int x, int y) {
        bytes.push_back(static_cast<std::uint8_t>(sample(picture, plane, x, y)));
    });
    return bytes;
}

/// The frame as ffmpeg's filters make it of the same eyes.
std::vector<std::uint8_t> judged(const Picture &left, const Picture &right, const std::string &filters) {
    const TemporaryFolder folder;
    writeFile(folder / "left.yuv", bytesOf(left));
    writeFile(folder / "right.yuv", bytesOf(right));
    const std::string size = std::to_string(left.width) + "x" + std::to_string(left.height);
    std::vector<std::string> arguments;
    for (const char *name : {"left.yuv", "right.yuv"})
        for (const std::string &word :
             {std::string("-f"), std::string("rawvideo"), std::string("-pix_fmt"), std::string("yuv420p"),
              std::string("-s"), size, std::string("-i"), (folder / name).string()})
            arguments.push_back(word);
    const std::string graph = "[0]" + filters + "[l];[1]" + filters + "[r];[l][r]hstack";
    for (const std::string &word : {std::string("-filter_complex"), graph, std::string("-f"), std::string("rawvideo"),
                                    (folder / "out.yuv").string()})
        arguments.push_back(word);
    ffmpeg(arguments);
    return readFile(folder / "out.yuv");
}

std::string scaledTo(int width, int height) {
    return "scale=" + std::to_string(width) + ":" + std::to_string(height) +
           ":flags=bicubic+accurate_rnd:in_h_chr_pos=0:out_h_chr_pos=0:in_v_chr_pos=128:out_v_chr_pos=128";
}

struct Judgement {
    bool halfWidth;
    ResizeMode mode;
    int width;
    int height;
    std::string filters;
};

TEST(SBSComposition, agreesWithAnotherScalerInEveryMode) {
    const Picture left = waves(240, 136, 0);
    const Picture right = waves(240, 136, 1);
    for (const Judgement &judgement : std::vector<Judgement>{
             {false, ResizeMode::stretch, 180, 204, scaledTo(180, 204)},
             {false, ResizeMode::letterbox, 180, 182, scaledTo(180, 102) + ",pad=180:182:0:40:black"},
             {false, ResizeMode::letterbox, 400, 136, scaledTo(240, 136) + ",pad=400:136:80:0:black"},
             {false, ResizeMode::cropFill, 180, 204, scaledTo(360, 204) + ",crop=180:204:90:0"},
             {false, ResizeMode::cropFill, 360, 136, scaledTo(360, 204) + ",crop=360:136:0:34"},
             {true, ResizeMode::stretch, 180, 204, scaledTo(90, 204)},
             {true, ResizeMode::letterbox, 180, 182, scaledTo(90, 102) + ",pad=90:182:0:40:black"},
             {true, ResizeMode::cropFill, 176, 204, scaledTo(180, 204) + ",crop=88:204:46:0"}}) {
        ConversionSettings settings;
        settings.halfWidth = judgement.halfWidth;
        resizeTo(settings, judgement.width, judgement.height, judgement.mode);
        const std::vector<std::uint8_t> ours = bytesOf(composed(settings, left, right));
        const std::vector<std::uint8_t> theirs = judged(left, right, judgement.filters);
        ASSERT_EQ(ours.size(), theirs.size());
        const auto luma = static_cast<std::ptrdiff_t>(ours.size() / 3 * 2);
        EXPECT_GT(psnr({ours.begin(), ours.begin() + luma}, {theirs.begin(), theirs.begin() + luma}), 45)
            << judgement.filters;
        EXPECT_GT(psnr(ours, theirs), 40) << judgement.filters;
    }
}

TEST(SBSComposition, squeezesAsAnotherScalerDoes) {
    ConversionSettings settings;
    settings.halfWidth = true;
    const Picture left = waves(240, 136, 0);
    const Picture right = waves(240, 136, 1);
    EXPECT_GT(psnr(bytesOf(composed(settings, left, right)), judged(left, right, scaledTo(120, 136))), 45);
}

TEST(SBSComposition, movesEyesUntouchedWhateverTheMode) {
    const Picture left = noise(96, 54, yuv420, 1);
    const Picture right = noise(96, 54, yuv420, 2);
    for (const ResizeMode mode : allResizeModes) {
        ConversionSettings settings;
        settings.resizeMode = mode;
        const Picture frame = composed(settings, left, right);
        eachSample(left, [&](int plane, int x, int y) {
            ASSERT_EQ(sample(frame, plane, x, y), sample(left, plane, x, y));
            ASSERT_EQ(sample(frame, plane, left.planeWidth(plane) + x, y), sample(right, plane, x, y));
        });
    }
}

TEST(SBSComposition, showsNothingOfTheFramesFormerContent) {
    // Every size of eye, odd and even, with every option: no sample of the used frame may be seen.
    for (const auto &[width, height] :
         std::vector<std::pair<int, int>>{{64, 36}, {63, 36}, {64, 35}, {61, 37}, {1, 1}, {2, 1}, {1, 2}})
        for (const bool halfWidth : {false, true})
            for (const bool resize : {false, true})
                for (const ResizeMode mode : allResizeModes) {
                    ConversionSettings settings;
                    settings.halfWidth = halfWidth;
                    settings.resizeMode = mode;
                    if (resize)
                        resizeTo(settings, 51, 49, mode);
                    const Picture eye = flat(width, height, yuv420, 60, 90);
                    const Picture frame = composed(settings, eye, eye);
                    eachSample(frame, [&](int plane, int x, int y) {
                        const int value = sample(frame, plane, x, y);
                        ASSERT_GE(value, plane == 0 ? 16 : 90);
                        ASSERT_LE(value, plane == 0 ? 60 : 128);
                    });
                }
}

TEST(SBSComposition, givesEachEyeHalfOfAChromaSampleAtAnOddSeam) {
    const Picture frame = composed(ConversionSettings(), flat(63, 36, yuv420, 60, 90), flat(63, 36, yuv420, 61, 150));
    EXPECT_EQ(sample(frame, 0, 62, 9), 60);
    EXPECT_EQ(sample(frame, 0, 63, 9), 61);
    EXPECT_EQ(sample(frame, 1, 30, 9), 90);
    EXPECT_EQ(sample(frame, 1, 31, 9), 120);
    EXPECT_EQ(sample(frame, 1, 32, 9), 150);
}

TEST(SBSComposition, leavesTheLastColumnOfAnOddFrameBlack) {
    ConversionSettings settings;
    settings.halfWidth = true;
    const Picture frame = composed(settings, flat(65, 36, yuv420, 60, 90), flat(65, 36, yuv420, 61, 90));
    ASSERT_EQ(frame.width, 65);
    EXPECT_EQ(sample(frame, 0, 31, 20), 60);
    EXPECT_EQ(sample(frame, 0, 32, 20), 61);
    EXPECT_EQ(sample(frame, 0, 63, 20), 61);
    EXPECT_EQ(sample(frame, 0, 64, 20), 16);
    EXPECT_EQ(sample(frame, 1, 32, 10), 128);
}

TEST(SBSComposition, putsBarsOfFractionsOfAPixelAroundAnEye) {
    ConversionSettings settings;
    resizeTo(settings, 1000, 1000, ResizeMode::letterbox); // bars of 218.75 rows
    const Picture eye = flat(1920, 1080, yuv420, 216, 128);
    const Picture frame = composed(settings, eye, eye);
    EXPECT_EQ(sample(frame, 0, 500, 217), 16);
    EXPECT_EQ(sample(frame, 0, 500, 218), 66); // a quarter of it shows the eye
    EXPECT_EQ(sample(frame, 0, 500, 219), 216);
    EXPECT_EQ(sample(frame, 0, 1500, 780), 216);
    EXPECT_EQ(sample(frame, 0, 1500, 781), 66);
    EXPECT_EQ(sample(frame, 0, 1500, 782), 16);
}

TEST(SBSComposition, fitsARightEyeOfAnotherSizeIntoItsHalf) {
    const Picture frame = composed(ConversionSettings(), flat(64, 36, yuv420, 60, 90), flat(48, 30, yuv420, 150, 90));
    for (int x = 0; x < 128; ++x)
        ASSERT_EQ(sample(frame, 0, x, 35), x < 64 ? 60 : 150);
}

TEST(SBSComposition, isUndoneByCuttingTheFrame) {
    for (const int width : {64, 63}) {
        const Picture left = noise(width, 36, yuv420, 1);
        const Picture right = noise(width, 36, yuv420, 2);
        const ConversionSettings settings;
        const Picture frame = composed(settings, left, right);
        const EyeExtraction cut = eyeExtraction(settings, {width, 36}, eyeCells({}, frame.width, frame.height));
        Compositor compositor;
        Picture leftAgain = usedCanvas(width, 36);
        Picture rightAgain = usedCanvas(width, 36);
        compositor.place(frame, cut.left, leftAgain);
        compositor.place(frame, cut.right, rightAgain);
        eachSample(left, [&](int plane, int x, int y) {
            if (plane > 0 && width % 2 != 0)
                return; // chroma lies between the samples of the frame
            ASSERT_EQ(sample(leftAgain, plane, x, y), sample(left, plane, x, y));
            ASSERT_EQ(sample(rightAgain, plane, x, y), sample(right, plane, x, y));
        });
    }
}

} // namespace
} // namespace lumetwin
