// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace lumetwin {

/// What a SheetOverlay presents.
class Sheet : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Takes its usual size, or a smaller one that the room holds.
    virtual void fitInto(QSize room) = 0;
};

} // namespace lumetwin
