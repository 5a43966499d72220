// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <deque>

namespace lumetwin::media {

/// Decoding times of coded pictures, from the times of the pictures as they were handed over and the number of pictures
/// by which coding runs ahead of showing: the n-th packet is decoded when the picture so many before the n-th is shown.
class DecodingTimes {
public:
    explicit DecodingTimes(int reordering) : reordering_(reordering) {}

    /// A picture was handed to the encoder, in the order in which they are shown.
    void add(std::int64_t time, std::int64_t duration) {
        if (times_.empty() && coded_ == 0)
            first_ = time;
        times_.push_back(time);
        duration_ = duration;
    }

    struct Moment {
        std::int64_t time;
        std::int64_t duration; ///< until the next packet; that of the last picture where there is none yet
    };

    /// Of the next packet.
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
    std::deque<std::int64_t> times_; ///< of the pictures whose decoding time was not given out yet
    std::int64_t first_ = 0;
    std::int64_t duration_ = 0;
    std::int64_t coded_ = 0;
};

} // namespace lumetwin::media
