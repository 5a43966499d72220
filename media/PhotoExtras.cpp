// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/PhotoExtras.h"

#include "media/HeifFile.h"
#include "media/Image.h"
#include "media/jpeg/JpegExtras.h"

namespace lumetwin::media {

PhotoExtras photoExtras(const std::filesystem::path &file) noexcept {
    try {
        const auto kind = imageKind(file);
        if (kind == ImageKind::jpeg)
            return images::jpegExtras(*bmff::openFile(file));
        if (kind == ImageKind::heif) {
            const HeifFile heif = readHeifFile(file);
            return {heif.hasGainMap, heif.hasDepthMap, heif.hasMovie};
        }
    } catch (const std::exception &) {
        return {};
    }
    return {};
}

} // namespace lumetwin::media
