// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/BoundedQueue.h"
#include "media/NamedThread.h"
#include "media/Picture.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace lumetwin::media::ffmpeg {

struct TimedPicture {
    Picture left;
    std::optional<Picture> right; ///< of two views
    std::int64_t time = 0;
    std::int64_t duration = 0;
};

/// A thread that encodes a movie's pictures, and those that wait for it. Of two threads, one gives pictures and one
/// ends it.
class EncodingThread {
public:
    /// The work takes pictures until there are none, and owns all that it touches: it may outlive who started it.
    void start(std::function<void()> work);

    /// Waits for room; does nothing once the pictures are over.
    void give(TimedPicture picture) { pictures_.push(std::move(picture)); }
    /// For the work: waits for a picture; nothing when they are over.
    std::optional<TimedPicture> take() { return pictures_.pop(); }

    /// No more pictures come; those that wait are still encoded.
    void close() { pictures_.close(); }
    /// The same, and those that wait are dropped.
    void discard() { pictures_.discard(); }

    /// Waits for the last picture to be coded, or until it is cancelled.
    void drain(const std::function<bool()> &cancelled) const;
    /// Waits for the end.
    void join();
    /// Waits for the end if it is near; else the thread ends by itself (LingeringThreads.h).
    void leave();

private:
    static constexpr std::size_t picturesAhead = 3; ///< that wait for the encoder

    BoundedQueue<TimedPicture> pictures_{picturesAhead};
    NamedThread thread_;
};

} // namespace lumetwin::media::ffmpeg
