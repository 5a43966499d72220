// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ColouredButton.h"

#include "ui/Palettes.h"
#include "ui/Points.h"

#include <QPainter>

namespace lumetwin {

ColouredButton::ColouredButton(const QString &title, double cornerRadius, QWidget *parent)
    : QPushButton(title, parent), cornerRadius_(cornerRadius) {
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::PointingHandCursor);
}

void ColouredButton::setColour(const QColor &colour) {
    colour_ = colour;
    update();
}

QColor ColouredButton::colour() const {
    return colour_.value_or(accentColour(palette()));
}

void ColouredButton::paintEvent(QPaintEvent *) {
    const PointScale scale = PointScale::current();
    const double radius = cornerRadius_ * scale.y;
    QColor ground = colour();
    if (!isEnabled())
        ground.setAlphaF(0.45F);
    else if (isDown())
        ground = ground.darker(125);
    else if (underMouse())
        ground = ground.lighter(112);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(rect(), radius, radius);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Qt::white, 2));
        painter.drawRoundedRect(QRectF(rect()).adjusted(3, 3, -3, -3), qMax(1.0, radius - 3), qMax(1.0, radius - 3));
    }
    painter.setPen(isEnabled() ? QColor(Qt::white) : lumetwin::white(1, 0.7));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextShowMnemonic, text());
}

} // namespace lumetwin
