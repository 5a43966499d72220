// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

namespace lumetwin::media {

/// Interleaved signed 16-bit samples. count: samples per channel.
struct AudioBlock {
    std::shared_ptr<const std::int16_t[]> samples;
    int count = 0;
};

} // namespace lumetwin::media
