// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

namespace lumetwin {

/// An icon of one emoji; two are drawn as a small pile, so that they keep to the place of one.
class DropIcon : public QLabel {
    Q_OBJECT

public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace lumetwin
