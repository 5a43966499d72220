// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"
#include "media/MovieFile.h"
#include "media/Picture.h"

#include <functional>
#include <span>

namespace lumetwin::media {

/// A picture, and its time in the movie.
struct SampledFrame {
    Picture picture;
    double seconds = 0; ///< 0 when the track has no times
};

/// Decodes single frames of one of a movie's video tracks (of a multiview stream its base view): for each position (0:
/// the beginning, 1: the end), the last random access picture before it, or the next one where there is none before.
/// Calls `take` with each frame, in the order of the positions, and not twice with the same one; stops when it
/// returns false. Positions where nothing can be decoded are passed over. Fast rather than exact: without loop filters.
/// Throws MediaError when the file is not a movie, lacks the track or a decoder for it, or is encrypted.
void sampleFrames(const InputFile &file, std::span<const double> positions,
                  const std::function<bool(SampledFrame frame)> &take, VideoStream video = VideoStream::first);

} // namespace lumetwin::media
