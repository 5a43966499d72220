// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/inspection/VideoInfo.h"
#include "media/FrameReader.h"
#include "media/MovieFile.h"

#include <cstdint>
#include <optional>

namespace lumetwin {

/// The unit of the constant time line: 1/600 s.
inline constexpr int videoTimeScale = 600;

/// The time line of one output.
struct VideoTiming {
    double rate = 30;               ///< the source's nominal rate, 30 when it has none
    int timeScale = videoTimeScale; ///< units a second of the output's times
    std::int64_t frameDuration = 0; ///< in these units; of the constant time line: 600 / rate, truncated
    std::int64_t totalFrames = 0;   ///< duration × nominal rate, truncated; 0 when unknown
    bool keepsTimes = false;        ///< each frame at its own time, instead of at a constant rate
    double begin = 0;               ///< the source's time that becomes 0, seconds
    /// Duration written ÷ duration of the source. The sound is stretched by it; exactly 1 where it may stay as it is.
    double stretch = 1;

    double framesPerSecond() const { return static_cast<double>(timeScale) / static_cast<double>(frameDuration); }
};

/// The time line at a constant rate in 1/600 s; or, with `keepTiming`, the one of the source's own times, which begins
/// with the first picture or the first sound, whichever is earlier.
VideoTiming videoTiming(const VideoInfo &info, bool keepTiming = false,
                        const std::optional<media::AudioTrack> &sound = std::nullopt);

/// A time scale that holds a film's times exactly: 600 where that does; the numerator of a constant rate (24000, 30000,
/// 60000), or a multiple that is at least 600; else that of the track.
int exactTimeScale(const media::VideoTrack &track);

/// Gives each frame of an output its time.
class OutputClock {
public:
    OutputClock(const VideoTiming &timing, const media::VideoTrack &track) : timing_(timing), track_(track) {}

    struct Moment {
        std::int64_t time; ///< in units of the time scale
        std::int64_t duration;
    };

    /// Of the next frame. Always later than the one before.
    Moment next(const media::Frame &frame);

    /// Seconds: the farthest that a picture has been from its sound so far, which is stretched.
    double farthestFromSound() const { return farthest_; }

private:
    /// Of the next frame, in seconds since the beginning of the output; nothing where it has none, or one beyond
    /// belief.
    std::optional<double> sourceTime(const media::Frame &frame) const;
    std::int64_t ownTime(std::optional<double> source) const;
    std::int64_t ownDuration(const media::Frame &frame) const;

    VideoTiming timing_;
    media::VideoTrack track_;
    std::int64_t index_ = 0;
    std::int64_t last_ = -1;
    double farthest_ = 0;
};

} // namespace lumetwin
