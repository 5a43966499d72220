// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/bmff/BoxReader.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace lumetwin::media::images {

/// What the content of a segment APP2 begins with when it belongs to a Multi-Picture file (CIPA DC-007, 5.1). The TIFF
/// structure behind it is what all offsets count from.
inline constexpr std::string_view multiPictureMark{"MPF\0", 4};

/// One picture of a Multi-Picture file, as its index has it. The place is not checked.
struct IndexedPicture {
    std::uint32_t type = 0;  ///< the lower 24 bits of the attributes
    std::uint64_t place = 0; ///< in the file

    /// One of several pictures of equal rank: of a panorama, of angles, of eyes. Thumbnails have the types 01xxxx;
    /// phones write 05xxxx and zero for gain maps.
    bool isFrame() const { return type >> 16 == 2; }
    /// A frame of the kind "disparity".
    bool isEye() const { return type == 0x020002; }
};

/// The index in a TIFF structure at that place of the file; empty where it has none.
std::vector<IndexedPicture> pictureIndex(std::span<const std::uint8_t> structure, std::uint64_t place);

/// What a picture of a Multi-Picture file says of itself (CIPA DC-007, 5.2.4).
struct ViewpointFacts {
    std::optional<std::uint32_t> number; ///< viewpoints are numbered from left to right
    std::optional<double> convergence;   ///< degrees
    std::optional<double> baseline;      ///< metres
};

ViewpointFacts viewpointFacts(std::span<const std::uint8_t> structure);

/// The pictures of a file and, of its eyes, what they say.
struct MultiPicture {
    std::vector<std::uint64_t> eyes; ///< their places, from left to right
    std::vector<std::uint64_t> all;  ///< the places of all pictures in the index
    int others = 0;                  ///< frames besides the eyes
    std::optional<double> convergence;
    std::optional<double> baseline;
};

/// Reads the index of the file's first image and the segments of its eyes.
MultiPicture readMultiPicture(const bmff::Source &source);

} // namespace lumetwin::media::images
