// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/alerts/Alert.h"

#include <QMessageBox>

namespace lumetwin {

/// An alert as a message box. Its texts are shown as they stand, never as markup.
class AlertBox : public QMessageBox {
    Q_OBJECT

public:
    AlertBox(const Alert &alert, QWidget *parent);

    /// Takes no click and no key for a moment: one that comes now was meant for what has just gone from here.
    void holdBack();

signals:
    /// Once: the position of the pressed button, or AlertPresenter::dismissed.
    void answered(int button);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void addDetails(const Alert &alert);
    void addButtons(const Alert &alert);
    void dismiss();

    bool held_ = false;
};

} // namespace lumetwin
