// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/ffmpeg/MovieHeader.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

// Reads and edits boxes of a header written by our muxer. All sizes have 32 bits.
namespace lumetwin::media::ffmpeg {

std::uint32_t get32(const std::uint8_t *bytes);
void put32(std::uint8_t *bytes, std::uint32_t value);

struct Range {
    std::size_t begin; ///< of the box, header included
    std::size_t end;
};

/// The first child of the given type in [begin, end).
std::optional<Range> child(const MovieHeader &header, std::size_t begin, std::size_t end, std::string_view type);

/// Follows the path of types from the given box. Returns all boxes on the way, outermost first, beginning with the
/// given box; nullopt when one is missing.
std::optional<std::vector<Range>> descend(const MovieHeader &header, const Range &from,
                                          const std::vector<std::string_view> &path);

/// Replaces the bytes in [begin, end), which is inside all the given boxes, and corrects their sizes and the header's.
void replace(MovieHeader &header, const std::vector<Range> &enclosing, std::size_t begin, std::size_t end,
             const MovieHeader &bytes);

/// The first video track, which is the first whose media has a `vmhd`.
std::optional<Range> videoTrack(const MovieHeader &header);

} // namespace lumetwin::media::ffmpeg
