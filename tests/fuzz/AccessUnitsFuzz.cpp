// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/AccessUnitGuard.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

/// The first byte is the size of the configuration, the second one that of a later configuration.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace lumetwin::media::ffmpeg;
    if (size < 2)
        return 0;
    std::span rest(data + 2, size - 2);
    const auto taken = [&](std::size_t wanted) {
        const std::span part = rest.first(std::min(wanted, rest.size()));
        rest = rest.subspan(part.size());
        return part;
    };
    AccessUnitGuard guard(taken(data[0]));
    const std::span later = taken(data[1]);
    std::vector<std::uint8_t> sample(rest.begin(), rest.end());
    if (guard.keep(sample) > sample.size())
        std::abort();
    guard.configure(later);
    sample.assign(rest.begin(), rest.end());
    if (guard.keep(sample) > sample.size())
        std::abort();
    return 0;
}
