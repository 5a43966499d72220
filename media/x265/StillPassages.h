// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"

#include <cstdint>
#include <vector>

namespace lumetwin::media::x265 {

/// Finds the ends of still passages (black, a title, a photo that is shown for a while): x265's rate control forgets
/// the bits before such an end, and whoever steers it has to know.
class StillPassages {
public:
    /// The next picture in order of showing, 8-bit and of one size; it is kept until the one after it.
    void show(const Picture &picture, std::int64_t time);

    /// Whether the picture of this time was the first to differ after a still passage. It is asked for once.
    bool endedAt(std::int64_t time);

private:
    Picture last_;
    int repetitions_ = 0;
    std::vector<std::int64_t> ends_;
};

} // namespace lumetwin::media::x265
