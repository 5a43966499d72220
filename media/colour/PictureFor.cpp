// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/colour/PictureFor.h"

#include "media/ColourConversion.h"

#include <algorithm>

namespace lumetwin::media::images {

namespace {

/// Code points 5 and 6 of ITU-T H.273 name the same matrix.
bool isBT601(int one, int other) {
    return one >= 5 && one <= 6 && other >= 5 && other <= 6;
}

} // namespace

Picture pictureFor(ImageKind kind, Picture picture, const Cancellation &cancellation) {
    PictureFormat format = picture.format;
    ColourTags colour = picture.colour;
    const bool isYuv = format.model == ColourModel::yuv;
    if (kind == ImageKind::jpeg) {
        format.depth = 8;
        if (isYuv) {
            format.chromaShiftX = std::min(format.chromaShiftX, 1);
            colour.matrix = jpegColour.matrix;
            colour.range = jpegColour.range;
        }
    } else if (kind == ImageKind::heif) {
        format = yuv420;
        if (!isYuv) {
            colour.matrix = jpegColour.matrix;
            colour.range = jpegColour.range;
            colour.chromaLocation = jpegColour.chromaLocation;
        }
    } else if (isYuv) {
        format = {ColourModel::rgb, format.depth, 0, 0};
        colour.matrix = 0;
        colour.range = ColourRange::full;
    }
    const bool sameMatrix = colour.matrix == picture.colour.matrix || isBT601(colour.matrix, picture.colour.matrix);
    if (format == picture.format && sameMatrix && colour.range == picture.colour.range) {
        picture.colour = colour;
        return picture;
    }
    return convertColour(picture, format, colour, cancellation);
}

} // namespace lumetwin::media::images
