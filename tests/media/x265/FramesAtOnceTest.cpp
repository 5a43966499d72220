// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/FramesAtOnce.h"

#include "media/Processors.h"
#include "media/x265/StereoEncoder.h"

#include <gtest/gtest.h>

namespace lumetwin::media::x265 {
namespace {

TEST(FramesAtOnce, AreTwoOnSmallMachines) {
    for (const int processors : {1, 2})
        for (const int height : {96, 1080, 4320})
            EXPECT_EQ(framesAtOnce(processors, height * 16 / 9, height, 64), 2);
}

TEST(FramesAtOnce, FollowTheProcessors) {
    EXPECT_EQ(framesAtOnce(4, 1920, 1080, 64), 2);
    EXPECT_EQ(framesAtOnce(8, 1920, 1080, 64), 3);
    EXPECT_EQ(framesAtOnce(16, 1920, 1080, 64), 4);
    EXPECT_EQ(framesAtOnce(1000, 1920, 1080, 64), 8);
}

TEST(FramesAtOnce, AreFewerForLargerPictures) {
    EXPECT_EQ(framesAtOnce(16, 1280, 720, 64), 6);
    EXPECT_EQ(framesAtOnce(16, 3840, 2160, 64), 3);
    EXPECT_EQ(framesAtOnce(16, 8192, 4320, 64), 2);
    EXPECT_EQ(framesAtOnce(16, 96, 96, 32), 8);
}

struct Stream {
    std::size_t bytes = 0;
    int units = 0;
};

Stream codedWith(int processors) {
    assumeProcessors(processors);
    constexpr int frames = 100;
    StereoFormat format;
    format.width = 320;
    format.height = 192;
    format.timeScale = 25;
    format.frameDuration = 1;
    format.averageBitRate = 400'000;
    StereoEncoder encoder("stream.mov", format);
    Stream stream;
    const auto count = [&](const AccessUnit &unit) {
        stream.bytes += unit.bytes.size();
        ++stream.units;
    };
    for (int frame = 0; frame < frames; ++frame) {
        const auto draw = [&](int shift) {
            Picture picture = makePicture(format.width, format.height, yuv420);
            for (int plane = 0; plane < 3; ++plane)
                for (int y = 0; y < picture.planeHeight(plane); ++y)
                    for (int x = 0; x < picture.planeWidth(plane); ++x)
                        picture.planes[plane].data[y * picture.planes[plane].stride + x] =
                            static_cast<std::uint8_t>(((x + frame + shift) * (y + 3 * frame)) >> 4);
            return picture;
        };
        encoder.encode(draw(0), draw(5), frame, count);
    }
    encoder.finish(count);
    assumeProcessors(0);
    return stream;
}

TEST(FramesAtOnce, DoNotMoveTheBitRate) {
    const Stream two = codedWith(2);
    EXPECT_EQ(two.units, 100);
    for (const int processors : {4, 16, 64}) {
        const Stream more = codedWith(processors);
        EXPECT_EQ(more.units, 100);
        const double ratio = static_cast<double>(more.bytes) / static_cast<double>(two.bytes);
        EXPECT_NEAR(ratio, 1, 0.05) << processors << " processors";
    }
}

} // namespace
} // namespace lumetwin::media::x265
