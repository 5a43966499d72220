// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieTags.h"
#include "media/OutputFile.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace lumetwin::media::ffmpeg {

/// The bytes of a movie's `moov` box, its own header included.
using MovieHeader = std::vector<std::uint8_t>;

/// Reads the `moov` box that ends the file, lets it be edited, and writes it back in its place. The edit may change its
/// size but not where media data lies. Throws MediaError.
void editMovieHeader(const OutputFile &file, const std::function<void(MovieHeader &)> &edit);

/// Gives edits of duration 0, which in fragmented files mean "to the end", their track's duration (ISO/IEC
/// 14496-12, 8.6.6): the muxer leaves them so when it turns fragments into an ordinary movie.
void completeEditLists(MovieHeader &header);

/// Removes the box that announces fragments (`mvex`): in the finished movie there are none.
void removeFragmentDefaults(MovieHeader &header);

/// Sets the presentation size of the first video track (`tkhd` and, where present, `tapt`).
void setPresentationSize(MovieHeader &header, int width, int height);

/// Adds the tags as metadata items (`meta` of handler `mdta`, as QuickTime and phones write them: QuickTime File
/// Format, "Metadata"). Does nothing without tags.
void addMetadata(MovieHeader &header, const MovieTags &items);

/// What a source's tags mean, under the names by which the muxer knows them (creation_time, title, make, model,
/// location, …), and under those of metadata items (com.apple.quicktime.make, …).
MovieTags muxerTags(const MovieTags &source);
MovieTags metadataItems(const MovieTags &source);

} // namespace lumetwin::media::ffmpeg
