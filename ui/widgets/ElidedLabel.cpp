// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/ElidedLabel.h"

#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace lumetwin {

ElidedLabel::ElidedLabel(const QString &text, QWidget *parent) : QLabel(text, parent) {
    setTextFormat(Qt::PlainText);
}

QSize ElidedLabel::minimumSizeHint() const {
    return {fontMetrics().horizontalAdvance(QStringLiteral("…")), QLabel::minimumSizeHint().height()};
}

QString ElidedLabel::elidedText() const {
    QString line = text();
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return fontMetrics().elidedText(line, Qt::ElideMiddle, contentsRect().width());
}

void ElidedLabel::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(contentsRect(), static_cast<int>(alignment()) | Qt::TextSingleLine, elidedText());
}

bool ElidedLabel::event(QEvent *event) {
    if (event->type() != QEvent::ToolTip)
        return QLabel::event(event);
    const bool whole = elidedText() == text();
    QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), whole ? QString() : text().toHtmlEscaped(), this);
    return true;
}

} // namespace lumetwin
