// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/DisparityBar.h"

#include "ui/widgets/Localized.h"
#include "ui/widgets/Palettes.h"
#include "ui/widgets/Points.h"

#include <QPainter>

#include <algorithm>

namespace lumetwin {

namespace {

// Percent of the width; positive is behind the screen.
constexpr double scaleEnd = 5;
constexpr double comfortNear = -1;
constexpr double comfortFar = 2;

} // namespace

DisparityBar::DisparityBar(QWidget *parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMinimumHeight(sizeHint().height());
}

void DisparityBar::setFigures(const std::optional<DisparityFigures> &figures) {
    figures_ = figures;
    const QString words =
        figures ? toQString(formatted("preview.disparity.format", figures->nearest, figures->middle, figures->farthest))
                : toQString(text("preview.disparity.unknown"));
    setToolTip(words + QLatin1Char('\n') + toQString(text("preview.disparity.help")));
    setAccessibleDescription(words);
    update();
}

QSize DisparityBar::sizeHint() const {
    return {PointScale::current().horizontal(200), PointScale::current().vertical(34)};
}

double DisparityBar::xOf(double disparity) const {
    return (std::clamp(disparity, -scaleEnd, scaleEnd) + scaleEnd) / (2 * scaleEnd) * width();
}

void DisparityBar::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const PointScale scale = PointScale::current();
    const double top = scale.vertical(4), height = scale.vertical(10);
    painter.setPen(Qt::NoPen);
    painter.setBrush(separatorColour(palette()));
    painter.drawRoundedRect(QRectF(0, top, width(), height), 3, 3);
    painter.setBrush(comfortColour(palette()));
    painter.drawRect(QRectF(xOf(comfortNear), top, xOf(comfortFar) - xOf(comfortNear), height));
    if (figures_) {
        const double near = figures_->nearest, far = figures_->farthest;
        const bool isComfortable = near >= comfortNear - 0.05 && far <= comfortFar + 0.05;
        painter.setBrush(isHighContrast(palette()) ? palette().color(QPalette::HighlightedText)
                         : isComfortable           ? palette().color(QPalette::WindowText)
                                                   : warningColour(palette()));
        const double from = xOf(near), length = std::max(3.0, xOf(far) - from);
        painter.drawRoundedRect(QRectF(from, top + height / 2 - 2, length, 4), 2, 2);
        painter.drawEllipse(QPointF(xOf(figures_->middle), top + height / 2), 4, 4);
    }
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawLine(QPointF(xOf(0), top - 3), QPointF(xOf(0), top + height + 3));
    painter.setFont(scale.font(11));
    painter.setPen(secondaryTextColour(palette()));
    const QRectF words(0, top + height + 3, width(), this->height() - top - height - 3);
    painter.drawText(words, Qt::AlignLeft | Qt::AlignTop, toQString(text("preview.disparity.near")));
    painter.drawText(words, Qt::AlignHCenter | Qt::AlignTop, toQString(text("preview.disparity.screen")));
    painter.drawText(words, Qt::AlignRight | Qt::AlignTop, toQString(text("preview.disparity.far")));
}

} // namespace lumetwin
