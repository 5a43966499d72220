// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"

namespace lumetwin::media::images {

/// The metadata, corrected for the picture: its size, upright, no thumbnails, and with a colour profile.
ImageMetadata correctedMetadata(const Picture &picture, ImageMetadata metadata);

} // namespace lumetwin::media::images
