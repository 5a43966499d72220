// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/DropIcon.h"

#include <QPainter>

namespace lumetwin {

DropIcon::DropIcon(QWidget *parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void DropIcon::setSymbols(const std::vector<Symbol> &symbols) {
    symbols_ = symbols;
    update();
}

void DropIcon::setColour(const QColor &colour) {
    colour_ = colour;
    update();
}

void DropIcon::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const QRectF all(rect());
    if (symbols_.size() == 1)
        return drawSymbol(painter, all, symbols_.front(), colour_);
    const QSizeF part = all.size() * 0.62;
    drawSymbol(painter, {all.topLeft(), part}, symbols_.front(), colour_);
    drawSymbol(painter, {QPointF(all.right() - part.width(), all.bottom() - part.height()), part}, symbols_.back(),
               colour_);
}

} // namespace lumetwin
