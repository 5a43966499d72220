// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/Symbol.h"

#include <QFile>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>

// The symbols are resources of a static library, so they must be registered explicitly. Q_INIT_RESOURCE must stand
// outside of every namespace.
static void loadSymbols() {
    Q_INIT_RESOURCE(symbols);
}

namespace lumetwin {

namespace {

const char *symbolName(Symbol symbol) {
    switch (symbol) {
    case Symbol::close:
        return "close";
    case Symbol::done:
        return "done";
    case Symbol::failure:
        return "failure";
    case Symbol::files:
        return "files";
    case Symbol::film:
        return "film";
    case Symbol::folder:
        return "folder";
    case Symbol::other:
        return "other";
    case Symbol::picture:
        return "picture";
    case Symbol::reset:
        return "reset";
    case Symbol::warning:
        return "warning";
    }
    return "";
}

QByteArray colouredSvg(Symbol symbol, const QColor &colour) {
    loadSymbols();
    QFile file(QStringLiteral(":/lumetwin/symbols/%1.svg").arg(QLatin1String(symbolName(symbol))));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("a symbol is missing in the program");
    return file.readAll().replace("currentColor", colour.name().toLatin1());
}

} // namespace

void drawSymbol(QPainter &painter, const QRectF &rect, Symbol symbol, const QColor &colour) {
    QSvgRenderer renderer(colouredSvg(symbol, colour));
    const double side = std::min(rect.width(), rect.height());
    QRectF square(0, 0, side, side);
    square.moveCenter(rect.center());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(painter.opacity() * colour.alphaF());
    renderer.render(&painter, square);
    painter.restore();
}

QIcon symbolIcon(Symbol symbol, const QColor &colour, int size, double devicePixelRatio) {
    const int pixels = static_cast<int>(std::ceil(size * devicePixelRatio));
    QPixmap picture(pixels, pixels);
    picture.fill(Qt::transparent);
    {
        QPainter painter(&picture);
        drawSymbol(painter, QRectF(picture.rect()), symbol, colour);
    }
    picture.setDevicePixelRatio(devicePixelRatio);
    return QIcon(picture);
}

} // namespace lumetwin
