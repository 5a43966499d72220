// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"

#include <cstdint>
#include <string>

namespace lumetwin {

/// The next multiple of 16 that is not smaller. For values from 1; the largest ones stay as they are.
std::int64_t roundedUpTo16(std::int64_t size);

/// Whether the size of an eye is one that cannot be encoded.
bool isOddSize(const ConversionSettings &settings);

/// What the resize options lead to: the output's size, and a warning about sizes that do not suit encoders.
std::string resizePreview(const ConversionSettings &settings);

} // namespace lumetwin
