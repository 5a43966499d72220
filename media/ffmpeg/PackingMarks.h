// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/StereoPacking.h"
#include "media/ffmpeg/Ffmpeg.h"
#include "media/ffmpeg/MovieHeader.h"
#include "media/hevc/CodedUnits.h"

namespace lumetwin::media::ffmpeg {

/// Adds the frame packing message to a packet with start codes, before its first slice.
void markPacket(AVPacket &packet, const StereoPacking &packing, hevc::Coding coding);

/// Announces the packing to the muxer of Matroska, before it writes its header: StereoMode, and for half eyes pixels of
/// such a shape that the display size becomes that of one eye (RFC 9559, 18.10). Does nothing for other packings.
/// Throws std::bad_alloc.
void markStream(AVStream &stream, const StereoPacking &packing);

/// Adds the stereoscopic video box (`st3d`, Spherical Video V2) to the first sample entry of the video track, behind
/// the decoder's configuration. Does nothing for a packing that it has no value for.
void markTrack(MovieHeader &header, const StereoPacking &packing);

} // namespace lumetwin::media::ffmpeg
