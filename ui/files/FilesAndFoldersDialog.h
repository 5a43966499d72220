// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFileDialog>

namespace lumetwin {

/// A file dialog that accepts folders and files together, several at once. With nothing selected it chooses the folder
/// that it shows. Native dialogs accept either files or folders.
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
