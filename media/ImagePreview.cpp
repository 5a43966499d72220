// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ImagePreview.h"

#include "media/Image.h"
#include "media/jpeg/JpegPreview.h"

namespace lumetwin::media {

Picture readPreview(const InputFile &file, int width, int height) {
    if (imageKind(file) == ImageKind::jpeg)
        if (Picture preview = images::readJpegPreview(file, width, height))
            return preview;
    return ImageFile(file).read().picture;
}

} // namespace lumetwin::media
