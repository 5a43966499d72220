// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"
#include "media/Picture.h"

namespace lumetwin::media {

/// Reads an image file for a look at it, fast where its format allows that: a JPEG file as grey, at an eighth, a
/// quarter, or half of its size, but not smaller than `width` × `height` where it is larger; others as
/// ImageFile::read() does. Pictures that are damaged may be read. Throws MediaError.
Picture readPreview(const InputFile &file, int width, int height);

} // namespace lumetwin::media
