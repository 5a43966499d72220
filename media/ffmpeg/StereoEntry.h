// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieWriter.h"
#include "media/ffmpeg/MovieHeader.h"

namespace lumetwin::media::ffmpeg {

/// Gives the video track's sample entry the form of platform-written spatial movies: hvcC (every array of parameter
/// sets complete), lhvC, colr, fiel, vexu {eyes {stri, hero, cams, cmfy}, proj}, hfov, with all values written, also
/// those that are 0. False where the entry is not as the muxer writes it.
bool completeStereoEntry(MovieHeader &header, const StereoVideoEncoding &encoding);

/// Adds the track apertures (`tapt`: QuickTime File Format) of a track that is coded in the size of its sample
/// entry and shown in the given one.
void addApertures(MovieHeader &header, int width, int height);

} // namespace lumetwin::media::ffmpeg
