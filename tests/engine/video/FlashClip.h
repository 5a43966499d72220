// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/FrameTimes.h"

#include <filesystem>
#include <string>
#include <vector>

namespace lumetwin::test {

/// Frames of one duration, after a gap in which the frame before stays.
struct Passage {
    int frames = 0;
    media::Fraction frameDuration; ///< seconds
    double gap = 0;                ///< seconds
};

/// A side-by-side clip in which a frame of both halves flashes about once a second, each time with a click of the sound
/// at the moment when the flash begins. Frames before the first and after the last passage do not exist.
struct FlashClip {
    std::vector<Passage> passages;
    int timeScale = 90000; ///< of the file, where its container has one
    double soundStart = 0; ///< seconds by which the sound begins later than the picture
    double soundTail = 0;  ///< seconds by which the sound lasts longer than the picture (negative: shorter)
    std::vector<std::string> options{"-c:v", "libx264", "-preset", "ultrafast", "-bf", "2", "-c:a", "pcm_s16le"};

    static FlashClip constant(media::Fraction rate, double seconds);
    /// Seconds at which each frame begins.
    std::vector<double> frameTimes() const;
    double duration() const;
};

std::filesystem::path draw(const std::filesystem::path &file, const FlashClip &clip);

/// When something happens in a movie, as the ffmpeg of the media stack plays it; seconds.
struct Events {
    std::vector<double> flashes;
    std::vector<double> clicks;
};
Events eventsOf(const std::filesystem::path &movie);

/// The seconds by which a flash and its click are apart, at most. Fails the test unless there are as many of both, and
/// at least `least`.
double farthestApart(const Events &events, std::size_t least);

} // namespace lumetwin::test
