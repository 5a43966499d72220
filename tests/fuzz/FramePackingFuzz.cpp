// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/hevc/FramePacking.h"

#include <algorithm>

/// The first byte is the coding, the second the size of the configuration.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace lumetwin::media::hevc;
    if (size < 2)
        return 0;
    const NalBytes rest(data + 2, size - 2);
    const NalBytes configuration = rest.first(std::min<std::size_t>(data[1], rest.size()));
    packingOfStream(data[0] & 1 ? Coding::hevc : Coding::avc, configuration, rest.subspan(configuration.size()));
    return 0;
}
