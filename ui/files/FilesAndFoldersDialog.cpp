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
    // Without a marked entry the dialog would disable its button; here that means the folder itself.
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
    QStringList marked = selectedFiles();
    if (marked.isEmpty())
        marked << directory().absolutePath();
    const auto exists = [](const QString &path) { return QFileInfo::exists(path); };
    if (!std::all_of(marked.cbegin(), marked.cend(), exists))
        return QFileDialog::accept(); // says which one is missing
    choice_ = marked;
    done(Accepted);
}

} // namespace lumetwin
