// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/FilesAndFoldersDialog.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QFileInfo>
#include <QPushButton>

#include <algorithm>

namespace lumetwin {

FilesAndFoldersDialog::FilesAndFoldersDialog(QWidget *parent, const QString &title, const QString &prompt)
    : QFileDialog(parent, title) {
    setOption(QFileDialog::DontUseNativeDialog);
    setOption(QFileDialog::HideNameFilterDetails);
    setFileMode(QFileDialog::ExistingFiles);
    setLabelText(QFileDialog::Accept, prompt);
    // Without a selected entry QFileDialog disables its accept button. Here no selection means the shown folder, so the
    // button stays enabled.
    if (auto *buttons = findChild<QDialogButtonBox *>())
        for (QAbstractButton *button : buttons->buttons())
            if (buttons->buttonRole(button) == QDialogButtonBox::AcceptRole) {
                button->installEventFilter(this);
                button->setEnabled(true);
            }
}

bool FilesAndFoldersDialog::eventFilter(QObject *watched, QEvent *event) {
    auto *button = qobject_cast<QPushButton *>(watched);
    if (button && event->type() == QEvent::EnabledChange && !button->isEnabled())
        button->setEnabled(true);
    return QFileDialog::eventFilter(watched, event);
}

void FilesAndFoldersDialog::accept() {
    QStringList selected = selectedFiles();
    if (selected.isEmpty())
        selected << directory().absolutePath();
    const auto exists = [](const QString &path) { return QFileInfo::exists(path); };
    if (!std::all_of(selected.cbegin(), selected.cend(), exists))
        return QFileDialog::accept(); // shows which file is missing
    choice_ = selected;
    done(Accepted);
}

} // namespace lumetwin
