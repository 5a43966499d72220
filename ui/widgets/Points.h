// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>
#include <QRect>

namespace lumetwin {

/// A rectangle in points inside a container. The origin is the container's bottom left corner.
struct PointFrame {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const PointFrame &) const = default;
};

/// Device independent pixels per point. One point is one pixel at the default text size and grows with the user's font,
/// so that a layout in points leaves enough space for its texts.
struct PointScale {
    double x = 1; ///< a little less than y when the form would not fit the screen's width
    double y = 1; ///< also the scale of text sizes

    bool operator==(const PointScale &) const = default;

    /// availableWidth: the part of the screen's width that a window may use, in pixels.
    static PointScale of(const QFont &font, int availableWidth);
    /// The scale for the application's font on the primary screen.
    static PointScale current();

    int horizontal(double points) const { return qRound(points * x); }
    int vertical(double points) const { return qRound(points * y); }

    /// The frame in Qt's coordinates (origin at the top left), for a container that is containerHeight points high.
    /// Frames that touch in points also touch in pixels.
    QRect toQt(const PointFrame &frame, double containerHeight) const;

    /// The application's font at a size in points.
    QFont font(double size, QFont::Weight weight = QFont::Normal) const;
    /// The same with digits of equal width.
    QFont digitFont(double size) const;
};

} // namespace lumetwin
