// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/DecodingTimes.h"

namespace lumetwin::media::x265 {

void DecodingTimes::show(std::int64_t time) {
    times_.push_back(time);
}

std::int64_t DecodingTimes::next() {
    if (before_ > 0)
        return times_.front() - before_-- * duration_;
    const std::int64_t time = times_.front();
    times_.pop_front();
    return time;
}

} // namespace lumetwin::media::x265
