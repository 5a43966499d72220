// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/PreviewImages.h"

#include <QPainter>

#include <memory>

namespace lumetwin {

QImage imageOf(const PreviewPicture &picture) {
    if (!picture.pixels || picture.pixels->empty())
        return {};
    using Pixels = std::shared_ptr<const std::vector<std::uint8_t>>;
    auto *owner = new Pixels(picture.pixels); // deleted with the last copy of the image
    return {picture.pixels->data(),
            picture.width,
            picture.height,
            static_cast<qsizetype>(picture.width) * 4,
            QImage::Format_RGB32,
            [](void *pixels) { delete static_cast<Pixels *>(pixels); },
            owner};
}

QImage besideEachOther(const QImage &left, const QImage &right) {
    if (right.isNull())
        return left;
    QImage both(left.width() + right.width(), std::max(left.height(), right.height()), QImage::Format_RGB32);
    both.fill(Qt::black);
    QPainter painter(&both);
    painter.drawImage(0, 0, left);
    painter.drawImage(left.width(), 0, right);
    return both;
}

} // namespace lumetwin
