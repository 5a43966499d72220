// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/form/HeaderBand.h"

#include "ui/widgets/Palettes.h"
#include "ui/widgets/Symbol.h"

#include <QPainter>

namespace lumetwin {

void HeaderBand::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), bandColour(palette()));
    drawSymbol(painter, QRectF(symbolPlace_), Symbol::film, palette().color(QPalette::WindowText));
}

void HeaderBand::setSymbolPlace(const QRect &place) {
    symbolPlace_ = place;
    update();
}

} // namespace lumetwin
