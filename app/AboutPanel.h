// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

namespace lumetwin {

/// The "About" dialog: name, version, licence and the libraries used.
class AboutPanel : public QDialog {
    Q_OBJECT

public:
    /// Shows the panel, or brings it to the front if it is already open.
    static void orderFront(QWidget *window);

private:
    explicit AboutPanel(QWidget *window);
};

} // namespace lumetwin
