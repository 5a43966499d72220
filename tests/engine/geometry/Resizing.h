// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"

#include <cstdint>

namespace lumetwin::test {

inline void resizeTo(ConversionSettings &settings, std::int64_t width, std::int64_t height, ResizeMode mode) {
    settings.enableResize = true;
    settings.resizeWidth = width;
    settings.resizeHeight = height;
    settings.resizeMode = mode;
}

} // namespace lumetwin::test
