// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace lumetwin {

/// The widget that a SheetOverlay presents.
class Sheet : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Resizes to its normal size, or to a smaller one that fits into the available size.
    virtual void fitInto(QSize available) = 0;
};

} // namespace lumetwin
