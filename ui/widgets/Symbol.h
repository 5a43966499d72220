// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QIcon>
#include <QRectF>

class QPainter;

namespace lumetwin {

/// Small drawn signs, in one colour.
enum class Symbol { film, folder, picture, reset };

/// Fits the symbol into the rectangle, sharp at any size.
void drawSymbol(QPainter &painter, const QRectF &rect, Symbol symbol, const QColor &colour);

/// As an icon of that size in device independent pixels.
QIcon symbolIcon(Symbol symbol, const QColor &colour, int size, double devicePixelRatio);

} // namespace lumetwin
