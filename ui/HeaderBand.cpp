// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/HeaderBand.h"

#include <QPainter>

namespace lumetwin {

void HeaderBand::paintEvent(QPaintEvent *) {
    QColor band = palette().color(QPalette::Active, QPalette::Highlight);
    band.setAlphaF(0.15F);
    QPainter(this).fillRect(rect(), band);
}

} // namespace lumetwin
