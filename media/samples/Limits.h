// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"

#include <cstdint>
#include <filesystem>

namespace lumetwin::media::images {

/// Throws MediaError where a file claims a picture that is empty or larger than what is read.
void checkSize(const std::filesystem::path &file, std::int64_t width, std::int64_t height);

/// A new picture of a size that a file claims. Throws MediaError as above, and where memory is short.
Picture makeChecked(const std::filesystem::path &file, int width, int height, PictureFormat format, ColourTags colour);

} // namespace lumetwin::media::images
