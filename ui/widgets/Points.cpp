// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/Points.h"

#include <QApplication>
#include <QFontInfo>
#include <QFontMetrics>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace lumetwin {

namespace {

constexpr double defaultTextPixels = 40.0 / 3; // 10 pt at 96 dots per inch, the default of desktops
constexpr double formWidth = 720;              // points
constexpr double largestScale = 3;
constexpr double minimumWidthShare = 0.9; // of the text scale; the texts leave that much space unused

} // namespace

PointScale PointScale::of(const QFont &font, int availableWidth) {
    const double text = QFontInfo(font).pixelSize() / defaultTextPixels;
    const double scale = std::clamp(std::round(text * 20) / 20, 1.0, largestScale);
    const double fitting = std::floor(availableWidth / formWidth * 50) / 50;
    return {std::clamp(fitting, std::max(1.0, scale * minimumWidthShare), scale), scale};
}

PointScale PointScale::current() {
    const QScreen *screen = QGuiApplication::primaryScreen();
    return of(QApplication::font(), screen ? screen->availableSize().width() : 0);
}

QRect PointScale::toQt(const PointFrame &frame, double containerHeight) const {
    const double top = containerHeight - frame.y - frame.height;
    return {QPoint(horizontal(frame.x), vertical(top)),
            QPoint(horizontal(frame.x + frame.width) - 1, vertical(top + frame.height) - 1)};
}

QFont PointScale::font(double size, QFont::Weight weight) const {
    QFont result = QApplication::font();
    result.setPixelSize(vertical(size));
    result.setWeight(weight);
    return result;
}

QFont PointScale::digitFont(double size) const {
    QFont result = font(size);
    // Fonts with tabular figures use them by default. For any other font, use a fixed-pitch family.
    const QFontMetrics metrics(result);
    if (metrics.horizontalAdvance(QLatin1Char('1')) != metrics.horizontalAdvance(QLatin1Char('0')))
        result.setFamilies({QStringLiteral("DejaVu Sans Mono"), QStringLiteral("monospace")});
    return result;
}

} // namespace lumetwin
