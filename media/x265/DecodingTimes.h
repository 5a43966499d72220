// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <deque>

namespace lumetwin::media::x265 {

/// When each access unit is decoded, in the caller's ticks: the times of showing in order, as many access units later
/// as coding runs ahead of showing. (The encoder's own are undefined for clips shorter than its reordering.)
class DecodingTimes {
public:
    DecodingTimes() = default;
    /// `duration` is what the access units before the first time are apart.
    DecodingTimes(int reordering, std::int64_t duration) : before_(reordering), duration_(duration) {}

    /// The next picture in order of showing.
    void show(std::int64_t time);

    /// Of the next access unit in order of coding; its picture was shown before.
    std::int64_t next();

private:
    int before_ = 0; ///< access units that are still to be decoded before the first time of showing
    std::int64_t duration_ = 0;
    std::deque<std::int64_t> times_;
};

} // namespace lumetwin::media::x265
