// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace lumetwin {

/// The band behind the form's title: the accent colour at reduced opacity, with a symbol to the left of the title.
class HeaderBand : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    void setSymbolRect(const QRect &place);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QRect symbolRect_;
};

} // namespace lumetwin
