// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"

#include <cstdint>
#include <string>

namespace lumetwin {

/// The size rounded up to a multiple of 16. size is at least 1; it is returned unchanged if that would overflow.
std::int64_t roundedUpTo16(std::int64_t size);

/// Whether the width or height of an eye is odd, which cannot be encoded.
bool isOddSize(const ConversionSettings &settings);

/// The output size that the resize options give, and a warning when encoders cannot use it well.
std::string resizePreview(const ConversionSettings &settings);

} // namespace lumetwin
