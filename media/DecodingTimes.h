// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <deque>

namespace lumetwin::media {

/// Computes the decoding times of coded pictures from their presentation times and the reordering delay (in pictures)
/// of the encoder: the n-th packet is decoded when the picture that many positions before the n-th is shown.
class DecodingTimes {
public:
    explicit DecodingTimes(int reordering) : reordering_(reordering) {}

    /// Call for each picture that is given to the encoder, in presentation order.
    void add(std::int64_t time, std::int64_t duration) {
        if (times_.empty() && coded_ == 0)
            first_ = time;
        times_.push_back(time);
        duration_ = duration;
    }

    struct Moment {
        std::int64_t time;
        std::int64_t duration; ///< until the next packet; for the last packet the duration of the last picture
    };

    /// The decoding time and duration of the next packet.
    Moment next() {
        const std::int64_t time = timeOfNext();
        if (coded_++ >= reordering_ && !times_.empty())
            times_.pop_front();
        const bool known = coded_ < reordering_ || !times_.empty();
        const std::int64_t following = known ? timeOfNext() : time + duration_;
        return {time, following > time ? following - time : duration_};
    }

private:
    std::int64_t timeOfNext() const {
        if (coded_ < reordering_)
            return first_ - (reordering_ - coded_) * duration_;
        return times_.empty() ? first_ : times_.front();
    }

    int reordering_;
    std::deque<std::int64_t> times_; ///< of pictures whose decoding time was not returned yet
    std::int64_t first_ = 0;
    std::int64_t duration_ = 0;
    std::int64_t coded_ = 0;
};

} // namespace lumetwin::media
