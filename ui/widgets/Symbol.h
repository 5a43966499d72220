// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QIcon>
#include <QRectF>

class QPainter;

namespace lumetwin {

/// Small pictures in one colour.
enum class Symbol { close, done, failure, files, film, folder, other, picture, reset, warning };

/// Draws the symbol into the middle of the rectangle, sharp at any size.
void drawSymbol(QPainter &painter, const QRectF &rect, Symbol symbol, const QColor &colour);

/// The symbol as an icon. size: width and height in device independent pixels.
QIcon symbolIcon(Symbol symbol, const QColor &colour, int size, double devicePixelRatio);

} // namespace lumetwin
