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
        require(group.left.has_value() == group.right.has_value());
        require(!group.left || (*group.left < file.images.size() && *group.right < file.images.size() &&
                                *group.left != *group.right && group.entities.size() == 2));
    }
    require(!file.primary || *file.primary < file.images.size());
    require((file.stereoGroup() == nullptr) == file.stereoGroups.empty());
    file.stereoDisparityAdjustment();
    for (const HeifImage &image : file.images) {
        require(image.width <= std::max(image.codedWidth, image.codedHeight));
        require(image.pixelIntrinsics().has_value() == image.intrinsics.has_value());
        require(!image.exif || !image.exif->extents.empty());
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
