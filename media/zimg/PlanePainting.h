// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/zimg/PlaneFilter.h"
#include "media/zimg/PlaneGeometry.h"

namespace lumetwin::media::zimg {

/// A whole plane of a picture.
PlaneView planeOf(const Picture &picture, int plane);

void fillPlane(const PlaneView &plane, int value);

/// Draws samples on the canvas samples that a geometry touches. Partly covered samples are blended with the canvas.
void paint(const PlaneView &samples, const PlaneGeometry &geometry, const PlaneView &canvas);

/// The same with one constant value.
void paint(int value, const PlaneGeometry &geometry, const PlaneView &canvas);

} // namespace lumetwin::media::zimg
