// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/PreviewCanvas.h"

#include "ui/widgets/Palettes.h"
#include "ui/widgets/Points.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace lumetwin {

namespace {

constexpr int wiggleInterval = 140; // milliseconds for each eye
constexpr int modeCount = 7;
constexpr double keyStep = 40; // points

} // namespace

PreviewCanvas::PreviewCanvas(QWidget *parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setMinimumHeight(PointScale::current().vertical(60));
    connect(&wiggle_, &QTimer::timeout, this, [this] {
        showsSecond_ = !showsSecond_;
        update();
    });
}

void PreviewCanvas::setShow(const PreviewShow &show) {
    show_ = show;
    message_.clear();
    if (show_.second.isNull()) {
        wiggle_.stop();
        showsSecond_ = false;
    } else if (!wiggle_.isActive()) {
        wiggle_.start(wiggleInterval);
    }
    moveBy({}); // stays within the new picture
    update();
}

void PreviewCanvas::setMessage(const QString &message) {
    show_ = {};
    message_ = message;
    wiggle_.stop();
    setAccessibleDescription(message);
    update();
}

void PreviewCanvas::setActualSize(bool actualSize) {
    isActualSize_ = actualSize;
    offset_ = {};
    setCursor(actualSize ? Qt::OpenHandCursor : Qt::ArrowCursor);
    update();
}

QSize PreviewCanvas::room() const {
    return size() * devicePixelRatioF();
}

QRectF PreviewCanvas::placeOf(const QImage &picture) const {
    const QSizeF natural = QSizeF(picture.size()) / devicePixelRatioF();
    const bool fits = natural.width() <= width() && natural.height() <= height();
    QRectF place({}, isActualSize_ || fits ? natural : natural.scaled(size(), Qt::KeepAspectRatio));
    place.moveCenter(QRectF(rect()).center() + (isActualSize_ ? offset_ : QPointF()));
    return place;
}

void PreviewCanvas::moveBy(QPointF offset) {
    const QSizeF picture = QSizeF(show_.picture.size()) / devicePixelRatioF();
    const double x = std::max(0.0, (picture.width() - width()) / 2),
                 y = std::max(0.0, (picture.height() - height()) / 2);
    offset_ = {std::clamp(offset_.x() + offset.x(), -x, x), std::clamp(offset_.y() + offset.y(), -y, y)};
    update();
}

void PreviewCanvas::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), hasPicture() ? QColor(Qt::black) : sectionColour(palette()));
    if (hasPicture()) {
        const QImage &picture = showsSecond_ ? show_.second : show_.picture;
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(placeOf(picture), picture);
    } else {
        painter.setPen(secondaryTextColour(palette()));
        painter.setFont(PointScale::current().font(12));
        const int margin = PointScale::current().horizontal(16);
        painter.drawText(rect().adjusted(margin, 0, -margin, 0), Qt::AlignCenter | Qt::TextWordWrap, message_);
    }
    if (hasFocus()) {
        painter.setPen(QPen(accentColour(palette()), 2));
        painter.drawRect(rect().adjusted(1, 1, -1, -1));
    }
}

void PreviewCanvas::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    emit resized();
}

void PreviewCanvas::keyPressEvent(QKeyEvent *event) {
    const double step = PointScale::current().horizontal(keyStep);
    const int mode = event->key() - Qt::Key_1;
    if (mode >= 0 && mode < modeCount)
        emit modeAsked(mode);
    else if (event->key() == Qt::Key_Z)
        emit actualSizeAsked(!isActualSize_);
    else if (isActualSize_ && event->key() == Qt::Key_Left)
        moveBy({step, 0});
    else if (isActualSize_ && event->key() == Qt::Key_Right)
        moveBy({-step, 0});
    else if (isActualSize_ && event->key() == Qt::Key_Up)
        moveBy({0, step});
    else if (isActualSize_ && event->key() == Qt::Key_Down)
        moveBy({0, -step});
    else
        QWidget::keyPressEvent(event);
}

void PreviewCanvas::mousePressEvent(QMouseEvent *event) {
    grabbed_ = event->position();
}

void PreviewCanvas::mouseMoveEvent(QMouseEvent *event) {
    if (isActualSize_ && event->buttons().testFlag(Qt::LeftButton)) {
        moveBy(event->position() - grabbed_);
        grabbed_ = event->position();
    }
}

void PreviewCanvas::mouseDoubleClickEvent(QMouseEvent *) {
    emit actualSizeAsked(!isActualSize_);
}

} // namespace lumetwin
