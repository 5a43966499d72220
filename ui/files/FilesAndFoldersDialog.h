// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFileDialog>

namespace lumetwin {

/// A file dialog that takes folders as well as files, several at once; with nothing marked it takes the folder that
/// it shows. The desktops' own dialogs take either the one or the other.
class FilesAndFoldersDialog : public QFileDialog {
    Q_OBJECT

public:
    FilesAndFoldersDialog(QWidget *parent, const QString &title, const QString &prompt);

    QStringList choice() const { return choice_; }

protected:
    void accept() override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QStringList choice_;
};

} // namespace lumetwin
