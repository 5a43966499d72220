// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieTags.h"
#include "media/OutputFile.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace lumetwin::media::ffmpeg {

/// The bytes of a movie's `moov` box, including its header.
using MovieHeader = std::vector<std::uint8_t>;

/// Reads the `moov` box at the end of the file, calls `edit`, and writes the box back. The edit may change its size,
/// but not the position of media data. Throws MediaError.
void editMovieHeader(const OutputFile &file, const std::function<void(MovieHeader &)> &edit);

/// Replaces edit durations of 0, which in fragmented files mean "to the end", by the track's duration (ISO/IEC
/// 14496-12, 8.6.6). The muxer does not do this when it converts fragments into an ordinary movie.
void completeEditLists(MovieHeader &header);

/// Removes the box that declares fragments (`mvex`), because the finished movie has none.
void removeFragmentDefaults(MovieHeader &header);

/// Sets the presentation size of the first video track (in `tkhd` and, if present, in `tapt`).
void setPresentationSize(MovieHeader &header, int width, int height);

/// Adds the tags as metadata items (`meta` with handler `mdta`, as in QuickTime files and those of phones: QuickTime
/// File Format, "Metadata"). Does nothing without tags.
void addMetadata(MovieHeader &header, const MovieTags &items);

/// Converts a source's tags to the names that the muxer uses (creation_time, title, make, model, location, …), and to
/// those of metadata items (com.apple.quicktime.make, …).
MovieTags muxerTags(const MovieTags &source);
MovieTags metadataItems(const MovieTags &source);

} // namespace lumetwin::media::ffmpeg
