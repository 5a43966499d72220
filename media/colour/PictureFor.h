// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"

namespace lumetwin::media::images {

/// The picture in a format that this kind of file supports, converted if necessary. Throws like convertColour().
Picture pictureFor(ImageKind kind, Picture picture, const Cancellation &cancellation);

} // namespace lumetwin::media::images
