// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/form/HeaderBand.h"

#include "ui/widgets/Palettes.h"
#include "ui/widgets/Symbol.h"

#include <QPainter>

namespace lumetwin {

void HeaderBand::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), bandColour(palette()));
    drawSymbol(painter, QRectF(symbolRect_), Symbol::film, palette().color(QPalette::WindowText));
}

void HeaderBand::setSymbolRect(const QRect &place) {
    symbolRect_ = place;
    update();
}

} // namespace lumetwin
