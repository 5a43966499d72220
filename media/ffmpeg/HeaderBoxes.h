// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/ffmpeg/MovieHeader.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

// The boxes of a header that our own muxer wrote: 32-bit sizes only.
namespace lumetwin::media::ffmpeg {

std::uint32_t get32(const std::uint8_t *bytes);
void put32(std::uint8_t *bytes, std::uint32_t value);

struct Range {
    std::size_t begin; ///< of the box, header included
    std::size_t end;
};

/// The first child of the given type in [begin, end).
std::optional<Range> child(const MovieHeader &header, std::size_t begin, std::size_t end, std::string_view type);

/// The box that the path of types leads to from the given box on, with all that lie on the way, outermost first; the
/// given box is the first of them. Nothing where one is missing.
std::optional<std::vector<Range>> descend(const MovieHeader &header, const Range &from,
                                          const std::vector<std::string_view> &path);

/// Puts bytes in the place of [begin, end), which lies inside all the given boxes, and sets their sizes and the
/// header's.
void replace(MovieHeader &header, const std::vector<Range> &enclosing, std::size_t begin, std::size_t end,
             const MovieHeader &bytes);

/// The first video track: the one whose media has a `vmhd`.
std::optional<Range> videoTrack(const MovieHeader &header);

} // namespace lumetwin::media::ffmpeg
