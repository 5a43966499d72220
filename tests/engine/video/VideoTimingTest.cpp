// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/VideoTiming.h"

#include <gtest/gtest.h>

namespace lumetwin {
namespace {

using media::Fraction;

VideoInfo film(Fraction rate, double duration = 10, Fraction tick = {1, 90000}) {
    media::VideoTrack track;
    track.pace = {rate, rate ? 1 / rate.value() : 0, bool(rate)};
    track.tick = tick;
    return videoInfo(track, duration);
}

TEST(VideoTiming, OfTheConstantTimeLineTruncatesTheFrameDuration) {
    for (const auto &[rate, duration] : {std::pair{Fraction{30, 1}, 20},
                                         {{30000, 1001}, 20},
                                         {{24, 1}, 25},
                                         {{24000, 1001}, 25},
                                         {{25, 1}, 24},
                                         {{60, 1}, 10},
                                         {{48, 1}, 12},
                                         {{90, 1}, 6},
                                         {{240, 1}, 2},
                                         {{1000, 1}, 1}}) {
        EXPECT_EQ(videoTiming(film(rate)).frameDuration, duration) << rate.value();
        EXPECT_EQ(videoTiming(film(rate)).timeScale, 600);
    }
}

TEST(VideoTiming, WithoutARateIsThirtyAndOfUnknownLength) {
    const VideoTiming timing = videoTiming(film({}));
    EXPECT_EQ(timing.rate, 30);
    EXPECT_EQ(timing.frameDuration, 20);
    EXPECT_EQ(timing.totalFrames, 0);
    EXPECT_EQ(timing.stretch, 1);
    EXPECT_FALSE(videoTiming(film({}), true).keepsTimes) << "there is nothing to keep";
}

TEST(VideoTiming, CountsTheFramesThatTheDurationHolds) {
    EXPECT_EQ(videoTiming(film({30, 1})).totalFrames, 300);
    EXPECT_EQ(videoTiming(film({25, 1}, 1.99)).totalFrames, 49);
    EXPECT_EQ(videoTiming(film({25, 1}, -1)).totalFrames, 0);
    EXPECT_EQ(videoTiming(film({25, 1}, 1e300)).totalFrames, 0);
}

TEST(VideoTiming, StretchesTheSoundAsThePicture) {
    EXPECT_EQ(videoTiming(film({30, 1})).stretch, 1);
    EXPECT_DOUBLE_EQ(videoTiming(film({30000, 1001})).stretch, 1000 / 1001.0);
    EXPECT_DOUBLE_EQ(videoTiming(film({48, 1})).stretch, 0.96);
    EXPECT_DOUBLE_EQ(videoTiming(film({90, 1})).stretch, 0.9);
    EXPECT_EQ(videoTiming(film({48, 1}), true).stretch, 1) << "with the film's own timing it stays as it is";
}

TEST(VideoTiming, LeavesTheSoundAloneForLessThanAMillisecondAnHour) {
    VideoInfo info = film({30, 1});
    info.track.pace.frameDuration = (1 + 2e-7) / 30;
    EXPECT_EQ(videoTiming(info).stretch, 1);
    info.track.pace.frameDuration = (1 + 4e-7) / 30;
    EXPECT_NE(videoTiming(info).stretch, 1);
}

TEST(ExactTimeScale, HoldsEveryFrameExactly) {
    const auto scale = [](Fraction rate) { return exactTimeScale(film(rate).track); };
    EXPECT_EQ(scale({24000, 1001}), 24000);
    EXPECT_EQ(scale({30000, 1001}), 30000);
    EXPECT_EQ(scale({60000, 1001}), 60000);
    EXPECT_EQ(scale({25, 1}), 600);
    EXPECT_EQ(scale({120, 1}), 600);
    EXPECT_EQ(scale({48, 1}), 4800) << "never less than 600";
    EXPECT_EQ(scale({90, 1}), 900);
}

TEST(ExactTimeScale, OfAVariableRateIsTheSourcesOwn) {
    media::VideoTrack track = film({25, 1}, 10, {1, 11520}).track;
    track.pace.isConstant = false;
    EXPECT_EQ(exactTimeScale(track), 11520);
    track.tick = {1, 90};
    EXPECT_EQ(exactTimeScale(track), 900);
    track.tick = {1, std::int64_t{1} << 40};
    EXPECT_EQ(exactTimeScale(track), 2147483647) << "what a file holds";
}

media::Frame at(std::int64_t time, std::int64_t duration = 0) {
    media::Frame frame;
    frame.time = time;
    frame.duration = duration;
    return frame;
}

TEST(OutputClock, CountsAtAConstantRateWhateverTheTimesAre) {
    const VideoInfo info = film({25, 1});
    OutputClock clock(videoTiming(info), info.track);
    EXPECT_EQ(clock.next(at(0)).time, 0);
    EXPECT_EQ(clock.next(at(90000)).time, 24);
    EXPECT_EQ(clock.next(at(90001)).time, 48);
    EXPECT_EQ(clock.next(at(90002)).duration, 24);
    EXPECT_NEAR(clock.farthestFromSound(), 1 - 24 / 600.0, 1e-9) << "the second picture comes this much too early";
}

TEST(OutputClock, KeepsGapsAndLeavesNoPictureOut) {
    VideoInfo info = film({25, 1}, 10, {1, 1000});
    info.track.pace.isConstant = false;
    OutputClock clock(videoTiming(info, true), info.track);
    EXPECT_EQ(clock.next(at(0, 40)).time, 0);
    EXPECT_EQ(clock.next(at(40, 40)).time, 40);
    const OutputClock::Moment late = clock.next(at(2500, 33));
    EXPECT_EQ(late.time, 2500);
    EXPECT_EQ(late.duration, 33);
    EXPECT_EQ(clock.next(at(2500)).time, 2501) << "two pictures of one time";
    EXPECT_EQ(clock.next(at(100)).time, 2502) << "times that go back";
    EXPECT_EQ(clock.next(at(INT64_MAX)).time, 2542) << "times beyond belief follow at the rate";
}

TEST(OutputClock, PutsRoundedTimesWhereTheRateHasThem) {
    const VideoInfo info = film({30000, 1001}, 10, {1, 1000});
    OutputClock clock(videoTiming(info, true), info.track);
    EXPECT_EQ(clock.next(at(0)).time, 0);
    EXPECT_EQ(clock.next(at(33)).time, 1001);
    EXPECT_EQ(clock.next(at(67)).time, 2002);
    EXPECT_EQ(clock.next(at(100)).time, 3003);
    EXPECT_EQ(clock.next(at(167)).time, 5005) << "a frame that is missing leaves its place";
}

TEST(OutputClock, BeginsWithTheSoundWhereThatIsEarlier) {
    VideoInfo info = film({25, 1}, 10, {1, 1000});
    info.track.startTime = 0.5;
    media::AudioTrack sound;
    sound.startTime = 0.1;
    OutputClock clock(videoTiming(info, true, sound), info.track);
    EXPECT_EQ(clock.next(at(500)).time, 240);
    OutputClock silent(videoTiming(info, true), info.track);
    EXPECT_EQ(silent.next(at(500)).time, 0);
}

} // namespace
} // namespace lumetwin
