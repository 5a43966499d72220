// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

#include <cstdint>

class QLabel;
class QProgressBar;

namespace lumetwin {

/// Tells how far the check of the input has come, and lets the user give it up. It destroys itself once it is closed,
/// by whatever: its button, Escape, its window's button or its owner.
class CheckingDialog : public QDialog {
    Q_OBJECT

public:
    CheckingDialog(std::int64_t total, QWidget *parent);

    /// How many videos have been checked so far.
    void setTested(std::int64_t tested);
    int tested() const;
    QString words() const;

    /// Puts the dialog away without a signal.
    void dismiss();

signals:
    /// Once: the user gave the check up.
    void givenUp();

protected:
    void done(int result) override;

private:
    std::int64_t total_;
    QLabel *label_;
    QProgressBar *bar_;
    bool dismissed_ = false;
};

} // namespace lumetwin
