// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/SRGB.h"

#include "media/ColourConversion.h"
#include "media/Image.h"
#include "media/StandardRange.h"
#include "media/colour/ColourProfile.h"

namespace lumetwin::media {

Picture inSRGB(Picture picture, const std::vector<std::uint8_t> &iccProfile, const std::filesystem::path &file,
               const Cancellation &cancellation) {
    const bool grey = picture.format.model == ColourModel::grey;
    if (iccProfile.empty() && !grey && isHighDynamicRange(picture.colour))
        return StandardRange::ofPhoto(std::move(picture), cancellation);
    const std::vector<std::uint8_t> &profile =
        iccProfile.empty() && !grey ? images::profileOf(picture.colour) : iccProfile;
    if (profile.empty() || (!grey && images::isSRGB(profile))) {
        picture.colour.primaries = jpegColour.primaries;
        picture.colour.transfer = jpegColour.transfer;
        return picture;
    }
    const int depth = picture.format.depth > 8 ? 16 : 8;
    const PictureFormat wanted{grey ? ColourModel::grey : ColourModel::rgb, depth, 0, 0};
    if (picture.format != wanted) {
        ColourTags colour = picture.colour;
        colour.matrix = 0;
        colour.range = ColourRange::full;
        picture = convertColour(picture, wanted, colour, cancellation);
    }
    return images::throughProfile(std::move(picture), profile, file, cancellation);
}

} // namespace lumetwin::media
