// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/EyePair.h"
#include "media/Image.h"
#include "media/InputFile.h"
#include "media/Picture.h"

#include <functional>

namespace lumetwin::media {

/// Reads an image file for a look at it, fast where its format allows that: a JPEG file as grey, at an eighth, a
/// quarter, or half of its size, but not smaller than `width` × `height` where it is larger, and without the last bits
/// of a progressive one; others as ImageFile::read() does. Pictures that are damaged may be read. Throws MediaError.
Picture readPreview(const InputFile &file, int width, int height);

/// The size that is needed of a picture that has this size in its file.
using NeededSize = std::function<PixelSize(const PixelSize &whole)>;

/// A photo's picture, possibly smaller than in its file.
struct ReducedImage {
    StillImage image;  ///< without Exif and XMP when it is reduced
    PixelSize whole;   ///< in the file
    int reduction = 1; ///< 1, 2, 4 or 8: pixels of the file along one pixel of the picture; incomplete ones count
};

/// Reads an image file as ImageFile::read() does, but where the format allows that (JPEG) reduced, to not less than the
/// needed size. Throws MediaError, also when the file is damaged.
ReducedImage readReduced(const InputFile &file, const NeededSize &needed);

/// The same for the first two eyes of a Multi-Picture file; see readEyePictures().
EyePair<ReducedImage> readReducedEyes(const ImageFile &file, const NeededSize &needed);

} // namespace lumetwin::media
