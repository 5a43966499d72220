// SPDX-License-Identifier: GPL-3.0-or-later
// The frame times of spatial movies made from side-by-side video.
#include "tests/support/Clips.h"
#include "tests/support/Conversions.h"
#include "tests/support/Paths.h"
#include "tests/support/SpatialMovie.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace lumetwin {
namespace {

using test::BoxFile;
using test::Clip;
using test::draw;
using test::expectViews;
using test::TemporaryFolder;
using test::toSpatial;
using testing::ElementsAre;
using Progress = std::pair<std::int64_t, std::int64_t>;

std::vector<std::int64_t> timesOf(const std::filesystem::path &movie) {
    std::vector<std::int64_t> times;
    for (const test::MovieSample &sample : test::videoSamples(BoxFile(movie)))
        times.push_back(sample.time);
    std::sort(times.begin(), times.end());
    return times;
}

TEST(SBSVideoTiming, writesAtARegeneratedConstantRate) {
    const TemporaryFolder folder;
    Clip clip;
    clip.frames = 4;
    for (const auto &[rate, times] :
         std::vector<std::pair<std::string, std::vector<std::int64_t>>>{{"25", {0, 24, 48, 72}},
                                                                        {"30000/1001", {0, 20, 40, 60}},
                                                                        {"24", {0, 25, 50, 75}},
                                                                        {"60", {0, 10, 20, 30}}}) {
        clip.rate = rate;
        toSpatial({}, draw(folder / "in.mp4", clip), folder / "out.mov");
        EXPECT_EQ(timesOf(folder / "out.mov"), times) << rate;
    }
}

TEST(SBSVideoTiming, dropsTheGapsOfAVariableRate) {
    const TemporaryFolder folder;
    Clip clip;
    clip.frames = 9;
    clip.filter = "setpts='(N+20*gte(N,5)+floor(N/3))/30/TB'";
    clip.video = {"-c:v", "libx264", "-qp", "6", "-fps_mode", "vfr"};
    toSpatial({}, draw(folder / "in.mp4", clip), folder / "out.mov");
    const auto times = timesOf(folder / "out.mov");
    // Nine frames that are shown for 31/30 s: 600 × 31 / 270, truncated.
    EXPECT_THAT(times, ElementsAre(0, 68, 136, 204, 272, 340, 408, 476, 544));
    expectViews(folder / "out.mov", 192, 96);
}

TEST(SBSVideoTiming, takesASourceWithoutARateAsThirtyFrames) {
    const TemporaryFolder folder;
    // A raw stream without timing in its headers.
    Clip clip;
    clip.frames = 3;
    clip.video = {"-c:v", "libx265", "-x265-params", "log-level=none:vui-timing-info=0", "-f", "hevc"};
    draw(folder / "in.hevc", clip);
    const auto run = toSpatial({}, folder / "in.hevc", folder / "out.mov");
    EXPECT_THAT(timesOf(folder / "out.mov"), ElementsAre(0, 20, 40));
    expectViews(folder / "out.mov", 192, 96);
    EXPECT_THAT(run.progress, ElementsAre(Progress{0, 0})) << "the total is unknown";
}

TEST(SBSVideoTiming, writesClipsOfEveryLength) {
    const TemporaryFolder folder;
    Clip clip;
    for (const int frames : {1, 2, 3, 5, 17}) {
        clip.frames = frames;
        toSpatial({}, draw(folder / "in.mp4", clip), folder / "out.mov");
        const auto times = timesOf(folder / "out.mov");
        ASSERT_EQ(times.size(), static_cast<std::size_t>(frames));
        EXPECT_EQ(times.front(), 0);
        EXPECT_EQ(times.back(), 20 * (frames - 1));
        expectViews(folder / "out.mov", 192, 96);
    }
}

} // namespace
} // namespace lumetwin
