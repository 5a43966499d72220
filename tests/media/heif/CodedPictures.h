// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/heif/HeifWriter.h"

#include <functional>

namespace lumetwin::test {

/// Brightness at a place.
using Drawing = std::function<int(int x, int y)>;

/// Draws an image, cuts it into tiles (the last column and row repeat beyond its edge) and has each coded by the
/// stack's x265 as a still picture. Even tile sizes.
media::heif::CodedImage codedImage(int width, int height, int tileWidth, int tileHeight, const Drawing &drawing);

/// The NAL units of an Annex B stream.
std::vector<media::heif::Bytes> nalUnits(const media::heif::Bytes &stream);

} // namespace lumetwin::test
