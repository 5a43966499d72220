// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieWriter.h"
#include "media/ffmpeg/MovieHeader.h"

namespace lumetwin::media::ffmpeg {

/// Changes the video track's sample entry to the form of platform-written spatial movies: hvcC (every array of
/// parameter sets complete), lhvC, colr, clli, mdcv, fiel, vexu {eyes {stri, hero, cams, cmfy}, proj}, hfov. All values
/// are written, even 0. Returns false when the entry is not as the muxer writes it.
bool completeStereoEntry(MovieHeader &header, const StereoVideoEncoding &encoding);

/// Adds the track apertures (`tapt`, QuickTime File Format) of a track whose coded size is that of its sample entry and
/// whose display size is the given one.
void addApertures(MovieHeader &header, int width, int height);

} // namespace lumetwin::media::ffmpeg
