// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/bmff/BoxReader.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace lumetwin::media::images {

/// A marker segment of a JPEG file (ITU-T T.81, B.1.1.4).
struct JpegSegment {
    std::uint8_t marker = 0; ///< its code without 0xFF
    std::uint64_t place = 0; ///< of the content behind the length field, in the file
    std::size_t size = 0;    ///< of the content, at most 65,533 bytes
};

/// Calls `take` with the segments of the image that begins at `place`, in order, up to its samples. Damage ends the
/// list. Returns false where no image begins there. Throws what `take` throws, but for FormatError, which ends it.
bool visitSegments(const bmff::Source &source, std::uint64_t place,
                   const std::function<void(const JpegSegment &)> &take);

/// The content of a segment. Throws FormatError where the file ends before.
std::vector<std::uint8_t> contentOf(const bmff::Source &source, const JpegSegment &segment);

// Codes of markers.
inline constexpr std::uint8_t application1 = 0xE1;
inline constexpr std::uint8_t application2 = 0xE2;
inline constexpr std::uint8_t application3 = 0xE3;

/// Whether a marker begins a frame header, which has the picture's size (ITU-T T.81, table B.1).
constexpr bool isFrameHeader(std::uint8_t marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

} // namespace lumetwin::media::images
