// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/stereo/LumaPlane.h"
#include "tests/support/Drawing.h"

namespace lumetwin::test {

/// The picture as the search for disparities sees it: its luma, 512 samples wide.
inline LumaPlane planeOf(const Picture &picture) {
    return reducedLuma(picture, all(picture), 512, 512 * picture.height / picture.width);
}

} // namespace lumetwin::test
