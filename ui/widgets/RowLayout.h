// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHBoxLayout>

namespace lumetwin {

/// A horizontal layout without margins for the parts of a row.
inline QHBoxLayout *rowLayoutIn(QWidget *row) {
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    return layout;
}

} // namespace lumetwin
