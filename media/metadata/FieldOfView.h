// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace lumetwin::media::images {

/// The horizontal field of view in degrees that an Exif block says of a picture with that shape (units do not matter)
/// and, in pixels, that width: from the focal length on 35 mm film, else from the focal length and the resolution of
/// the focal plane. nullopt where it says neither, or nothing between 1 and 179 degrees.
std::optional<double> horizontalFieldOfView(std::span<const std::uint8_t> exif, double width, double height);

} // namespace lumetwin::media::images
