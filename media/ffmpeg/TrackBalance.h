// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <condition_variable>
#include <limits>
#include <mutex>

namespace lumetwin::media::ffmpeg {

/// Keeps two tracks, written by two threads, at about the same time. The track that is ahead waits, so that the muxer
/// never buffers more than the lead. A missing or ended track is never waited for.
class TrackBalance {
public:
    enum Track { video = 0, audio = 1 };

    void add(Track track) { position_[track] = 0; }

    /// The track has reached the given time (seconds). Waits while it is ahead of the other track by more than the
    /// lead.
    void reach(Track track, double time) {
        std::unique_lock lock(mutex_);
        position_[track] = time;
        changed_.notify_all();
        changed_.wait(lock, [&] { return released_ || time - position_[1 - track] <= lead; });
    }

    void end(Track track) {
        const std::lock_guard lock(mutex_);
        position_[track] = std::numeric_limits<double>::infinity();
        changed_.notify_all();
    }

    /// Ends all waiting, also in the future.
    void release() {
        const std::lock_guard lock(mutex_);
        released_ = true;
        changed_.notify_all();
    }

private:
    static constexpr double lead = 2; // seconds

    std::mutex mutex_;
    std::condition_variable changed_;
    std::array<double, 2> position_{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
    bool released_ = false;
};

} // namespace lumetwin::media::ffmpeg
