// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/jpeg/JpegErrors.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

namespace lumetwin::media::images {

/// The colour profile in the markers that were read; empty without one. Decoder: has a `codec`, and `run` for steps of
/// the library.
template <typename Decoder> std::vector<std::uint8_t> profileIn(Decoder &decoder) {
    JOCTET *data = nullptr;
    unsigned length = 0;
    decoder.run([&] { jpeg_read_icc_profile(&decoder.codec, &data, &length); });
    const std::unique_ptr<JOCTET, void (*)(void *)> owner(data, std::free);
    return {data, data + length};
}

} // namespace lumetwin::media::images
