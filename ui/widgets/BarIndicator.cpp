// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/BarIndicator.h"

#include "ui/widgets/Palettes.h"

#include <QPainter>
#include <QPainterPath>
#include <QTimerEvent>

#include <algorithm>
#include <cmath>

namespace lumetwin {

namespace {

constexpr int steps = 1000;        // of the bar, as accessibility tools see it
constexpr int frameInterval = 33;  // milliseconds
constexpr double sweep = 1600;     // milliseconds from one end to the other
constexpr double sweepShare = 0.3; // of the bar's length

} // namespace

BarIndicator::BarIndicator(const QColor &fill, QWidget *parent) : QProgressBar(parent), fill_(fill) {
    setRange(0, steps);
    setValue(0);
    setTextVisible(false);
}

void BarIndicator::setDoubleValue(double value) {
    doubleValue_ = value;
    if (!indeterminate_)
        setValue(static_cast<int>(std::clamp(value, 0.0, 1.0) * steps));
    update();
}

void BarIndicator::setIndeterminate(bool indeterminate) {
    if (indeterminate == indeterminate_)
        return;
    indeterminate_ = indeterminate;
    setRange(0, indeterminate ? 0 : steps);
    if (indeterminate) {
        sinceStart_.start();
        animation_.start(frameInterval, this);
    } else {
        animation_.stop();
        setDoubleValue(doubleValue_);
    }
    update();
}

void BarIndicator::timerEvent(QTimerEvent *event) {
    if (event->timerId() == animation_.timerId())
        update();
    else
        QProgressBar::timerEvent(event);
}

void BarIndicator::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bar = QRectF(rect());
    QPainterPath track;
    track.addRoundedRect(bar, bar.height() / 2, bar.height() / 2);
    const bool highContrast = isHighContrast(palette());
    painter.fillPath(track, highContrast ? palette().color(QPalette::Window) : greyColour(1, 0.14));
    QRectF filled = bar;
    if (indeterminate_) {
        const double phase = std::fmod(static_cast<double>(sinceStart_.elapsed()), 2 * sweep) / sweep;
        const double position = (1 - std::cos(phase * M_PI)) / 2; // back and forth, slower at the ends
        filled.setWidth(bar.width() * sweepShare);
        filled.moveLeft((bar.width() - filled.width()) * position);
    } else {
        filled.setWidth(bar.width() * std::clamp(doubleValue_, 0.0, 1.0));
    }
    painter.setClipPath(track);
    QPainterPath part;
    part.addRoundedRect(filled, bar.height() / 2, bar.height() / 2);
    painter.fillPath(part, highContrast ? palette().color(QPalette::Highlight) : fill_);
    if (highContrast)
        painter.strokePath(track, QPen(palette().color(QPalette::WindowText), 2));
}

} // namespace lumetwin
