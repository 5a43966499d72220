// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/StillPassages.h"

#include <algorithm>
#include <cstring>

namespace lumetwin::media::x265 {

namespace {

// x265 4.1 (RateControl::checkAndResetABR) looks at its last 20 pictures and wants several groups of equal B pictures.
constexpr int shortestPassage = 30;

/// Only luma is compared, because the encoder's look-ahead uses only luma.
bool sameLuma(const Picture &one, const Picture &other) {
    const std::size_t width =
        static_cast<std::size_t>(one.width) * static_cast<std::size_t>(one.format.bytesPerSample());
    for (int row = 0; row < one.height; ++row)
        if (std::memcmp(one.planes[0].data + row * one.planes[0].stride,
                        other.planes[0].data + row * other.planes[0].stride, width) != 0)
            return false;
    return true;
}

} // namespace

void StillPassages::show(const Picture &picture, std::int64_t time) {
    const bool same = last_ && sameLuma(last_, picture);
    if (!same && repetitions_ >= shortestPassage)
        ends_.push_back(time);
    repetitions_ = same ? repetitions_ + 1 : 0;
    last_ = picture;
}

bool StillPassages::endedAt(std::int64_t time) {
    return std::erase(ends_, time) > 0;
}

} // namespace lumetwin::media::x265
