// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/Alert.h"

#include <QMessageBox>

namespace lumetwin {

/// An alert as a message box. Its texts are shown as they stand, never as markup.
class AlertBox : public QMessageBox {
    Q_OBJECT

public:
    AlertBox(const Alert &alert, QWidget *parent);

signals:
    /// Once: the position of the pressed button, or AlertPresenter::dismissed.
    void answered(int button);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void addDetails(const std::string &details);
    void addButtons(const Alert &alert);
    void dismiss();
};

} // namespace lumetwin
