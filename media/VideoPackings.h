// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"
#include "media/StereoPacking.h"

#include <optional>
#include <string>

namespace lumetwin::media {

/// What a movie says of how it has its two eyes. What is not said is nullopt.
struct VideoPackings {
    std::optional<StereoPacking> container; ///< tags of the container, with what the pixel shape says of half or full
    std::optional<StereoPacking> stream;    ///< frame packing SEI of the first coded picture (H.264 and HEVC)
    std::optional<int> secondStream; ///< index of a second video stream equal to the first (codec, size, rate, length)
    std::string projection;          ///< "" where nothing is said, else "rect", "equi", "fish", … as in vexu/proj

    bool operator==(const VideoPackings &) const = default;
};

/// Reads headers and the first video packet, and decodes nothing for itself. For a damaged or unreadable file nothing
/// is said. Never throws.
VideoPackings readVideoPackings(const InputFile &file) noexcept;

} // namespace lumetwin::media
