// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/alerts/AlertIcon.h"

#include <QIconEngine>
#include <QPainter>

namespace lumetwin {

namespace {

constexpr double side = 32; // of the square that the icons are drawn in

void drawWarning(QPainter &painter) {
    const QColor amber(245, 180, 30), dark(60, 40, 0);
    // The pen rounds the corners.
    painter.setPen(QPen(amber, 5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(amber);
    painter.drawPolygon(QPolygonF{QPointF(16, 5.5), QPointF(28.5, 26.5), QPointF(3.5, 26.5)});
    painter.setPen(QPen(dark, 3, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(16, 11), QPointF(16, 18.5));
    painter.setPen(Qt::NoPen);
    painter.setBrush(dark);
    painter.drawEllipse(QPointF(16, 23.5), 1.9, 1.9);
}

void drawInformation(QPainter &painter) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(40, 120, 200));
    painter.drawEllipse(QPointF(16, 16), 14, 14);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(16, 9.5), 2, 2);
    painter.setPen(QPen(Qt::white, 3, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(16, 15), QPointF(16, 23));
}

class AlertIconEngine : public QIconEngine {
public:
    using Draw = void (*)(QPainter &);
    explicit AlertIconEngine(Draw draw) : draw_(draw) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode, QIcon::State) override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / side, rect.height() / side);
        draw_(*painter);
        painter->restore();
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return picture;
    }
    QIconEngine *clone() const override { return new AlertIconEngine(draw_); }

private:
    Draw draw_;
};

} // namespace

QIcon warningIcon() {
    return QIcon(new AlertIconEngine(drawWarning));
}

QIcon informationIcon() {
    return QIcon(new AlertIconEngine(drawInformation));
}

} // namespace lumetwin
