// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace lumetwin {

/// The band behind the form's title, in the accent colour at reduced opacity.
class HeaderBand : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace lumetwin
