// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/StillEncoder.h"

#include "tests/support/Drawing.h"

#include <gtest/gtest.h>

#include <array>
#include <future>
#include <latch>

namespace lumetwin::media::x265 {
namespace {

// Each test is a process of its own: here the first encoders of one are opened, all at the same moment.
TEST(StillEncoder, theFirstPicturesOfAProcessMayBeCodedAtOnce) {
    const Picture picture = test::noise(192, 128, yuv420);
    const auto code = [&] { return encodeStill("test.heic", picture, 20, 1); };
    constexpr std::size_t atOnce = 8;
    std::latch start(atOnce);
    std::array<std::future<CodedStill>, atOnce> coded;
    for (auto &still : coded)
        still = std::async(std::launch::async, [&] {
            start.arrive_and_wait();
            return code();
        });
    const CodedStill alone = code();
    for (auto &still : coded) {
        const CodedStill one = still.get();
        EXPECT_EQ(one.parameterSets, alone.parameterSets);
        EXPECT_EQ(one.slices, alone.slices);
    }
}

} // namespace
} // namespace lumetwin::media::x265
