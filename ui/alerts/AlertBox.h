// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/alerts/Alert.h"

#include <QMessageBox>

namespace lumetwin {

/// Shows an alert as a message box. Its texts are plain text, never markup.
class AlertBox : public QMessageBox {
    Q_OBJECT

public:
    AlertBox(const Alert &alert, QWidget *parent);

    /// Ignores clicks and keys for 0.8 seconds, because they were meant for the alert that was here just before.
    void ignoreInputBriefly();

signals:
    /// Emitted once: the position of the pressed button, AlertPresenter::sideButton, or AlertPresenter::dismissed.
    void answered(int button);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void addDetails(const Alert &alert);
    void addButtons(const Alert &alert);
    void dismiss();

    bool ignoresInput_ = false;
};

} // namespace lumetwin
