// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>
#include <QRect>

namespace lumetwin {

/// A frame in points inside a container; the origin is the container's bottom left corner.
struct PointFrame {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const PointFrame &) const = default;
};

/// Device independent pixels per point. A point is a pixel at the usual text size and grows with the user's font,
/// so that what is laid out in points has room for its texts.
struct PointScale {
    double x = 1; ///< a little less than y where that lets the form's width fit the screen
    double y = 1; ///< also of text sizes

    bool operator==(const PointScale &) const = default;

    /// availableWidth: pixels of the screen that a window may use.
    static PointScale of(const QFont &font, int availableWidth);
    /// For the application's font on the primary screen.
    static PointScale current();

    int horizontal(double points) const { return qRound(points * x); }
    int vertical(double points) const { return qRound(points * y); }

    /// The frame in Qt's coordinates (origin at the top left), for a container that is containerHeight points high.
    /// Edges that touch in points touch in pixels.
    QRect toQt(const PointFrame &frame, double containerHeight) const;

    /// The application's font at a size in points.
    QFont font(double size, QFont::Weight weight = QFont::Normal) const;
    /// The same with digits of equal width.
    QFont digitFont(double size) const;
};

} // namespace lumetwin
