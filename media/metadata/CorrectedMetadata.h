// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"

namespace lumetwin::media::images {

/// The metadata as it is true for the picture: its size, upright, without thumbnails, and with a colour profile.
ImageMetadata correctedMetadata(const Picture &picture, ImageMetadata metadata);

} // namespace lumetwin::media::images
