// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/preview/StereoPreview.h"

#include <QImage>

namespace lumetwin {

/// The same pixels as an image; no copy is made. A null image for an empty picture.
QImage imageOf(const PreviewPicture &picture);

/// Two pictures beside each other, or the left one alone when there is no right one.
QImage besideEachOther(const QImage &left, const QImage &right);

} // namespace lumetwin
