// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/ImageList.h"

#include <algorithm>
#include <cstdlib>

namespace {

using namespace lumetwin::media;

void require(bool holds) {
    if (!holds)
        std::abort();
}

/// What the header promises of every file that it accepts.
void check(const HeifFile &file) {
    for (const HeifStereoGroup &group : file.stereoGroups) {
        require(!group.left || (*group.left < file.images.size() && !group.entities.empty()));
        require(!group.right || (*group.right < file.images.size() && group.entities.size() > 1));
    }
    require(!file.primary || *file.primary < file.images.size());
    const auto eyes = file.stereoEyes();
    require(eyes.has_value() == (!file.stereoGroups.empty() && file.images.size() > 1));
    require(!eyes || (eyes->left < file.images.size() && eyes->right < file.images.size()));
    file.stereoDisparityAdjustment();
    for (const HeifImage &image : file.images) {
        require(image.width <= std::max(image.codedWidth, image.codedHeight));
        require(image.pixelIntrinsics().has_value() == image.intrinsics.has_value());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    try {
        check(heif::readHeif(*bmff::fromMemory({data, size})));
    } catch (const bmff::FormatError &) {
        // Refusing is what it should do.
    }
    return 0;
}
