// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"

#include <cstdint>
#include <vector>

namespace lumetwin::media::x265 {

/// Finds the ends of still passages (black, a title, a photo shown for some time). There x265's rate control resets its
/// history, which its caller must know.
class StillPassages {
public:
    /// Call with each picture in presentation order: all of one size and depth. A picture is kept until the next one.
    void show(const Picture &picture, std::int64_t time);

    /// Whether the picture of this time was the first different one after a still passage. Can be asked once for each
    /// time.
    bool endedAt(std::int64_t time);

private:
    Picture last_;
    int repetitions_ = 0;
    std::vector<std::int64_t> ends_;
};

} // namespace lumetwin::media::x265
