// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/DropIcon.h"

#include <QPainter>
#include <QTextBoundaryFinder>

namespace lumetwin {

namespace {

QStringList graphemes(const QString &text) {
    QStringList result;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype start = 0, end; (end = finder.toNextBoundary()) > start; start = end)
        result << text.mid(start, end - start);
    return result;
}

} // namespace

void DropIcon::paintEvent(QPaintEvent *event) {
    const QStringList icons = graphemes(text());
    if (icons.size() < 2)
        return QLabel::paintEvent(event);
    QPainter painter(this);
    QFont small = font();
    small.setPixelSize(qMax(1, font().pixelSize() * 11 / 16));
    painter.setFont(small);
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignTop, icons.first());
    painter.drawText(rect(), Qt::AlignRight | Qt::AlignBottom, icons.last());
}

} // namespace lumetwin
