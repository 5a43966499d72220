// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ImagePreview.h"

#include "media/jpeg/JpegPreview.h"

#include <optional>
#include <utility>

namespace lumetwin::media {

Picture readPreview(const InputFile &file, int width, int height) {
    if (imageKind(file) == ImageKind::jpeg)
        if (Picture preview = images::readJpegPreview(file, width, height))
            return preview;
    return ImageFile(file).read().picture;
}

ReducedImage readReduced(const InputFile &file, const NeededSize &needed) {
    if (imageKind(file) == ImageKind::jpeg)
        if (std::optional<ReducedImage> reduced = images::readReducedJpeg(file, {}, needed))
            return std::move(*reduced);
    ReducedImage whole{ImageFile(file).read(), {}, 1};
    whole.whole = {whole.image.picture.width, whole.image.picture.height};
    return whole;
}

} // namespace lumetwin::media
