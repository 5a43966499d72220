// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/inspection/VideoInfo.h"
#include "media/FrameReader.h"
#include "media/MovieFile.h"

#include <cstdint>
#include <optional>

namespace lumetwin {

/// The time scale of the constant time line: units of 1/600 s.
inline constexpr int videoTimeScale = 600;

/// The time line of one output.
struct VideoTiming {
    double rate = 30;               ///< the source's nominal rate, 30 when it has none
    int timeScale = videoTimeScale; ///< units per second of the output's times
    std::int64_t frameDuration = 0; ///< in these units; for the constant time line: 600 / rate, truncated
    std::int64_t totalFrames = 0;   ///< duration × nominal rate, truncated; 0 when unknown
    bool keepsTimes = false;        ///< keeps the time of each frame, instead of a constant rate
    double begin = 0;               ///< the source's time that becomes 0, seconds
    /// Output duration divided by source duration: the factor to stretch the sound. Exactly 1 when it is not stretched.
    double stretch = 1;

    double framesPerSecond() const { return static_cast<double>(timeScale) / static_cast<double>(frameDuration); }
};

/// The time line with a constant rate in units of 1/600 s. With `keepTiming`, the source's own times; it then begins
/// with the first picture or the first sound, whichever is earlier.
VideoTiming videoTiming(const VideoInfo &info, bool keepTiming = false,
                        const std::optional<media::AudioTrack> &sound = std::nullopt);

/// A time scale that represents a video's times exactly: 600 if possible; otherwise the numerator of a constant rate
/// (24000, 30000, 60000) or a multiple of it that is at least 600; otherwise the time scale of the track.
int exactTimeScale(const media::VideoTrack &track);

/// Computes the time of each frame of an output.
class OutputClock {
public:
    OutputClock(const VideoTiming &timing, const media::VideoTrack &track) : timing_(timing), track_(track) {}

    struct Moment {
        std::int64_t time; ///< in units of the time scale
        std::int64_t duration;
    };

    /// The time and duration of the next frame. Always later than the frame before.
    Moment next(const media::Frame &frame);

    /// The largest distance of a picture from its (stretched) sound so far, in seconds.
    double farthestFromSound() const { return farthest_; }

private:
    /// The time of a frame in seconds since the beginning of the output; nullopt when it has none or it is not
    /// plausible.
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
