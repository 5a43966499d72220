// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/metadata/CorrectedMetadata.h"

#include "media/colour/ColourProfile.h"
#include "media/metadata/ExifBlock.h"
#include "media/metadata/Xmp.h"

#include <utility>

namespace lumetwin::media::images {

ImageMetadata correctedMetadata(const Picture &picture, ImageMetadata metadata) {
    ExifBlock exif = ExifBlock::parse(metadata.exif);
    metadata.exif.clear();
    if (!exif.empty()) {
        exif.describePicture(picture.width, picture.height);
        if (metadata.iccProfile.empty() && picture.colour.primaries == jpegColour.primaries)
            exif.describeSRGB();
        metadata.exif = exif.bytes();
    }
    metadata.xmp = correctedXmp(std::move(metadata.xmp), picture.width, picture.height);
    if (metadata.iccProfile.empty() && picture.format.model != ColourModel::grey)
        metadata.iccProfile = profileOf(picture.colour);
    return metadata;
}

} // namespace lumetwin::media::images
