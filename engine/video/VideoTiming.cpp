// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/VideoTiming.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lumetwin {

namespace {

constexpr double fallbackRate = 30;
// One millisecond per hour: not audible, so the sound is not stretched.
constexpr double inaudible = 0.001 / 3600;
constexpr double latestTime = 1e9; // seconds; later times are certainly wrong, and could not be counted exactly

std::int64_t frames(const VideoInfo &info) {
    const double total = info.duration * static_cast<double>(info.fps);
    return info.fps > 0 && total > 0 && total < 9e18 ? static_cast<std::int64_t>(total) : 0;
}

double stretchOf(const VideoTiming &timing, const media::FramePace &pace) {
    if (pace.frameDuration <= 0)
        return 1;
    const double stretch = static_cast<double>(timing.frameDuration) / timing.timeScale / pace.frameDuration;
    return std::abs(stretch - 1) < inaudible ? 1 : stretch;
}

/// Whether each frame of a constant rate begins at an integer number of units.
bool isExact(int timeScale, const media::Fraction &rate) {
    return timeScale * rate.denominator % rate.numerator == 0;
}

} // namespace

int exactTimeScale(const media::VideoTrack &track) {
    constexpr std::int64_t largest = std::numeric_limits<int>::max();
    const media::Fraction &rate = track.pace.rate;
    if (track.pace.isConstant && rate && rate.numerator <= largest) {
        if (isExact(videoTimeScale, rate))
            return videoTimeScale;
        std::int64_t scale = rate.numerator;
        while (scale < videoTimeScale)
            scale *= 10;
        return static_cast<int>(scale);
    }
    std::int64_t scale = track.tick ? track.tick.denominator : videoTimeScale;
    while (scale < videoTimeScale)
        scale *= 10;
    return static_cast<int>(std::min(scale, largest));
}

VideoTiming videoTiming(const VideoInfo &info, bool keepTiming, const std::optional<media::AudioTrack> &sound) {
    VideoTiming timing;
    timing.rate = info.fps > 0 ? static_cast<double>(info.fps) : fallbackRate;
    timing.totalFrames = frames(info);
    timing.begin = info.track.startTime;
    timing.keepsTimes = keepTiming && info.fps > 0;
    if (timing.keepsTimes) {
        const media::FramePace &pace = info.track.pace;
        timing.timeScale = exactTimeScale(info.track);
        timing.frameDuration = std::llround(timing.timeScale / pace.rate.value());
        if (sound)
            timing.begin = std::min(timing.begin, sound->startTime);
    } else {
        timing.frameDuration = static_cast<std::int64_t>(videoTimeScale / timing.rate);
    }
    // With a rate above the time scale the time would not advance.
    timing.frameDuration = std::max<std::int64_t>(timing.frameDuration, 1);
    if (!timing.keepsTimes)
        timing.stretch = stretchOf(timing, info.track.pace);
    return timing;
}

std::optional<double> OutputClock::sourceTime(const media::Frame &frame) const {
    std::optional<std::int64_t> ticks = track_.hasTimes ? frame.time : std::nullopt;
    if (track_.listedTimes) {
        const auto index = static_cast<std::size_t>(index_);
        ticks = index < track_.listedTimes->size() ? std::optional((*track_.listedTimes)[index]) : std::nullopt;
    }
    const double time = ticks ? static_cast<double>(*ticks) * track_.tick.value() - timing_.begin : latestTime;
    return std::abs(time) < latestTime ? std::optional(time) : std::nullopt;
}

std::int64_t OutputClock::ownTime(std::optional<double> source) const {
    if (!source)
        return last_ < 0 ? 0 : last_ + timing_.frameDuration;
    const double time = *source;
    const double tick = track_.tick.value();
    if (track_.pace.isConstant) {
        // Times of a constant rate that were rounded to ticks are computed again from the rate.
        const double step = 1 / track_.pace.rate.value();
        const double first = track_.startTime - timing_.begin;
        const double grid = std::round((time - first) / step) * step + first;
        if (std::abs(grid - time) <= tick * 1.01)
            return std::llround(grid * timing_.timeScale);
    }
    return std::llround(time * timing_.timeScale);
}

std::int64_t OutputClock::ownDuration(const media::Frame &frame) const {
    const double seconds = static_cast<double>(frame.duration) * track_.tick.value();
    if (track_.pace.isConstant || !(seconds > 0 && seconds < latestTime))
        return timing_.frameDuration;
    return std::max<std::int64_t>(std::llround(seconds * timing_.timeScale), 1);
}

OutputClock::Moment OutputClock::next(const media::Frame &frame) {
    const std::optional<double> source = sourceTime(frame);
    const std::int64_t wanted = timing_.keepsTimes ? ownTime(source) : index_ * timing_.frameDuration;
    last_ = std::max(wanted, last_ + 1);
    ++index_;
    if (source) {
        const double written = static_cast<double>(last_) / timing_.timeScale;
        farthest_ = std::max(farthest_, std::abs(written - *source * timing_.stretch));
    }
    return {last_, timing_.keepsTimes ? ownDuration(frame) : timing_.frameDuration};
}

} // namespace lumetwin
