// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"
#include "media/Picture.h"

#include <functional>
#include <span>

namespace lumetwin::media {

/// Decodes single frames of a movie's first video track (of a multiview stream its base view): for each position (0:
/// the beginning, 1: the end), the last random access picture before it, or the next one where there is none before.
/// Calls `take` with each picture, in the order of the positions, and not twice with the same one; stops when it
/// returns false. Positions where nothing can be decoded are passed over. Fast rather than exact: without loop filters.
/// Throws MediaError when the file is not a movie, has no video track or no decoder, or is encrypted.
void sampleFrames(const InputFile &file, std::span<const double> positions,
                  const std::function<bool(Picture picture)> &take);

} // namespace lumetwin::media
