// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/metadata/Xmp.h"

#include <cstdint>
#include <cstdlib>

using namespace lumetwin::media::images;

/// What is written of a packet can be read again, needs no more correction, and tells of no new extras.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string packet(reinterpret_cast<const char *>(data), size);
    const std::string corrected = correctedXmp(packet, 640, 480);
    if (correctedXmp(corrected, 640, 480) != corrected)
        std::abort();
    xmpPanorama(packet);
    const lumetwin::media::PhotoExtras before = xmpExtras(packet);
    const lumetwin::media::PhotoExtras after = xmpExtras(corrected);
    if (after.gainMap > before.gainMap || after.depthMap > before.depthMap || after.film > before.film)
        std::abort();
    return 0;
}
