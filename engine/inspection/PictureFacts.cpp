// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/PictureFacts.h"

#include "engine/batch/MediaKinds.h"
#include "engine/inspection/VideoInfo.h"
#include "media/Image.h"
#include "media/MovieFile.h"

namespace lumetwin {

bool PictureFacts::looksSideBySide() const {
    // Two pictures of 4:3 are 2.67 times as wide as high; a single wide film is 2.4.
    constexpr double twoPictures = 2.55;
    return height > 0 && static_cast<double>(width) / static_cast<double>(height) >= twoPictures;
}

PictureFacts pictureFacts(const std::filesystem::path &file) {
    if (isPhotoFile(file)) {
        const media::StillImage image = media::readImage(file);
        return {image.picture.width, image.picture.height};
    }
    const VideoInfo info = loadVideoInfo(media::MovieFile(file));
    return {info.width, info.height};
}

} // namespace lumetwin
