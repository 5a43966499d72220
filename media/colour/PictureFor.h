// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"

namespace lumetwin::media::images {

/// The picture in a form that files of the kind hold: itself, or converted. Throws as convertColour() does.
Picture pictureFor(ImageKind kind, Picture picture, const Cancellation &cancellation);

} // namespace lumetwin::media::images
