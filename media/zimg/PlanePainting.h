// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/zimg/PlaneFilter.h"
#include "media/zimg/PlaneGeometry.h"

namespace lumetwin::media::zimg {

/// A whole plane of a picture.
PlaneView planeOf(const Picture &picture, int plane);

void fillPlane(const PlaneView &plane, int value);

/// Puts samples onto the canvas samples that a geometry touches; those that it covers in part are mixed with what is
/// there.
void paint(const PlaneView &samples, const PlaneGeometry &geometry, const PlaneView &canvas);

/// The same with one value everywhere.
void paint(int value, const PlaneGeometry &geometry, const PlaneView &canvas);

} // namespace lumetwin::media::zimg
