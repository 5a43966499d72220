// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"
#include "model/MediaFacts.h"
#include "model/PictureSize.h"
#include "model/SystemVersion.h"

namespace lumetwin {

/// Reads a file's headers, no media data. Never throws: a file that cannot be read is not spatial.
MediaFacts lookAt(const media::InputFile &file) noexcept;

/// Whether the facts are those of a spatial photo, or of a spatial video that the system supports.
bool isSpatialPhoto(const MediaFacts &facts);
bool isSpatialVideo(const MediaFacts &facts, SystemVersion system = SystemVersion::current());

/// The stereo values of a file, as the system reports them.
StereoValues stereoValues(const MediaFacts &facts, SystemVersion system = SystemVersion::current());

/// The size of a photo's picture (by its extension), or of a movie's first video track, according to the headers.
/// Throws when they cannot be read.
PictureSize pictureSize(const media::InputFile &file);

} // namespace lumetwin
