// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

#include <cstdint>

class QLabel;
class QProgressBar;

namespace lumetwin {

/// Shows the progress of the check of the input, and lets the user cancel it. It deletes itself when it is closed by
/// its button, by Escape, by the window's close button, or by its owner.
class CheckingDialog : public QDialog {
    Q_OBJECT

public:
    CheckingDialog(std::int64_t total, QWidget *parent);

    /// How many videos have been checked so far.
    void setCheckedCount(std::int64_t count);
    int checkedCount() const;
    QString labelText() const;

    /// Closes the dialog without a signal.
    void dismiss();

signals:
    /// Emitted once, when the user cancels the check.
    void cancelled();

protected:
    void done(int result) override;

private:
    std::int64_t total_;
    QLabel *label_;
    QProgressBar *bar_;
    bool dismissed_ = false;
};

} // namespace lumetwin
