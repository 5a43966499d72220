// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

namespace lumetwin {

/// Name, version, licence and the libraries used.
class AboutPanel : public QDialog {
    Q_OBJECT

public:
    /// Shows the panel, or brings the one that is open to the front.
    static void orderFront(QWidget *window);

private:
    explicit AboutPanel(QWidget *window);
};

} // namespace lumetwin
