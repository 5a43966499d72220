// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ApplicationIcon.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

/// Registers the resources of this static library, which does not happen by itself. Q_INIT_RESOURCE must stand outside
/// of every namespace.
static void registerPictures() {
    Q_INIT_RESOURCE(pictures);
}

namespace lumetwin {

QIcon applicationIcon() {
    registerPictures();
    QSvgRenderer picture(QStringLiteral(":/lumetwin/icon.svg"));
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 96, 128, 192, 256}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        picture.render(&painter);
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace lumetwin
