// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/StillPassages.h"

#include <gtest/gtest.h>

#include <cstring>

namespace lumetwin::media::x265 {
namespace {

/// A plain picture whose rows lie further apart than they are wide; `corner` is its last luma sample.
Picture plain(int luma, int corner, int chroma = 128) {
    Picture picture = cropped(makePicture(80, 40, yuv420), 0, 0, 66, 34);
    for (int plane = 0; plane < 3; ++plane)
        for (int row = 0; row < picture.planeHeight(plane); ++row)
            std::memset(picture.planes[plane].data + row * picture.planes[plane].stride, plane == 0 ? luma : chroma,
                        static_cast<std::size_t>(picture.planeWidth(plane)));
    picture.planes[0].data[33 * picture.planes[0].stride + 65] = static_cast<std::uint8_t>(corner);
    return picture;
}

/// Shows one picture `count` times from a time on, 20 ticks apart; the time of the next.
std::int64_t show(StillPassages &passages, const Picture &picture, int count, std::int64_t time) {
    for (int shown = 0; shown < count; ++shown, time += 20)
        passages.show(picture, time);
    return time;
}

TEST(StillPassages, EndWithTheFirstPictureThatDiffers) {
    StillPassages passages;
    const std::int64_t change = show(passages, plain(16, 16), 40, 0);
    show(passages, plain(16, 17), 40, change);
    for (std::int64_t time = 0; time < change + 800; time += 20)
        EXPECT_EQ(passages.endedAt(time), time == change) << time;
    EXPECT_FALSE(passages.endedAt(change));
}

TEST(StillPassages, AreThirtyRepetitionsAtLeast) {
    StillPassages passages;
    const std::int64_t first = show(passages, plain(16, 16), 30, 0);
    const std::int64_t second = show(passages, plain(20, 20), 31, first);
    show(passages, plain(30, 30), 1, second);
    EXPECT_FALSE(passages.endedAt(first));
    EXPECT_TRUE(passages.endedAt(second));
}

TEST(StillPassages, AreOfLumaWhateverSurroundsIt) {
    StillPassages passages;
    std::int64_t time = 0;
    for (int shown = 0; shown < 40; ++shown)
        time = show(passages, plain(16, 16, 100 + shown), 1, time);
    show(passages, plain(200, 200), 1, time);
    EXPECT_TRUE(passages.endedAt(time));
}

TEST(StillPassages, AreNotPicturesThatMove) {
    StillPassages passages;
    std::int64_t time = 0;
    for (int shown = 0; shown < 80; ++shown)
        time = show(passages, plain(16, shown), 1, time);
    for (std::int64_t shown = 0; shown < time; shown += 20)
        EXPECT_FALSE(passages.endedAt(shown));
}

} // namespace
} // namespace lumetwin::media::x265
