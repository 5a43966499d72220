// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace lumetwin::media::images {

/// An XMP packet that says of the picture what is true: upright, of this size, without thumbnails and without the
/// extension that a JPEG file may keep elsewhere.
std::string correctedXmp(std::string packet, int width, int height);

} // namespace lumetwin::media::images
