// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/ColouredButton.h"

#include "ui/widgets/Palettes.h"
#include "ui/widgets/Points.h"

#include <QPainter>
#include <QPainterPath>

namespace lumetwin {

namespace {

constexpr QChar stopSquare(0x23F9);
constexpr QChar playSign(0x25B6);
constexpr QChar checkMark(0x2713);

/// The outline of the symbol that a title begins with, in a square of 1 by 1. Empty for a title without a symbol.
QPainterPath symbolPath(const QString &title) {
    QPainterPath path;
    if (title.startsWith(stopSquare)) {
        path.addRoundedRect(0.06, 0.06, 0.88, 0.88, 0.1, 0.1);
    } else if (title.startsWith(playSign)) {
        path.addPolygon(QPolygonF({{0.1, 0}, {1, 0.5}, {0.1, 1}}));
        path.closeSubpath();
    } else if (title.startsWith(checkMark)) {
        path.addPolygon(QPolygonF({{0.05, 0.55}, {0.38, 0.88}, {0.95, 0.15}}));
    }
    return path;
}

} // namespace

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
    QColor background = colour();
    const QColor textColour = colour_ ? QColor(Qt::white) : textOnAccentColour(palette());
    // The background gets darker, never lighter, so that the title stays readable.
    if (!isEnabled())
        background.setAlphaF(0.45F);
    else if (isDown())
        background = background.darker(125);
    else if (underMouse())
        background = background.darker(110);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(background);
    painter.drawRoundedRect(rect(), radius, radius);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(textColour, 2));
        painter.drawRoundedRect(QRectF(rect()).adjusted(3, 3, -3, -3), qMax(1.0, radius - 3), qMax(1.0, radius - 3));
    }
    QColor faded = textColour;
    faded.setAlphaF(0.7F);
    painter.setPen(isEnabled() ? textColour : faded);
    paintTitle(painter);
}

void ColouredButton::paintTitle(QPainter &painter) const {
    const QPainterPath symbol = symbolPath(text());
    const QString words = symbol.isEmpty() ? text() : text().mid(1).trimmed();
    const double size = symbol.isEmpty() ? 0 : font().pixelSize() * 0.72, gap = size * 0.8;
    const double width = fontMetrics().horizontalAdvance(words);
    const double left = (this->width() - size - gap - width) / 2;
    painter.drawText(QRectF(left + size + gap, 0, width + 1, height()), Qt::AlignLeft | Qt::AlignVCenter, words);
    if (symbol.isEmpty())
        return;
    painter.translate(left, (height() - size) / 2);
    painter.scale(size, size);
    const QColor textColour = painter.pen().color();
    if (text().startsWith(checkMark))
        painter.strokePath(symbol, QPen(textColour, 0.16, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    else
        painter.fillPath(symbol, textColour);
}

} // namespace lumetwin
