// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FilePanels.h"

#include "ui/FilesAndFoldersDialog.h"
#include "ui/Localized.h"
#include "ui/desktop/PortalFiles.h"

#include <QCursor>
#include <QFile>
#include <QMenu>
#include <QStandardPaths>

namespace lumetwin {

namespace fs = std::filesystem;

namespace {

fs::path toPath(const QString &path) {
    return QFile::encodeName(path).toStdString();
}

QString startFolder(const fs::path &lastPlace) {
    if (!lastPlace.empty())
        return QFile::decodeName(lastPlace.c_str());
    const QString videos = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    return QFile::exists(videos) ? videos : QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
}

void open(QFileDialog *dialog, fs::path &lastPlace, const FilePanels::Chosen &chosen) {
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setDirectory(startFolder(lastPlace));
    QObject::connect(dialog, &QDialog::accepted, dialog, [dialog, &lastPlace, chosen] {
        auto *both = qobject_cast<FilesAndFoldersDialog *>(dialog);
        std::vector<fs::path> paths;
        for (const QString &file : both ? both->choice() : dialog->selectedFiles())
            paths.push_back(toPath(file));
        lastPlace = toPath(dialog->directory().absolutePath());
        if (!paths.empty())
            chosen(paths);
    });
    dialog->open();
}

QFileDialog *panel(QWidget *parent, const char *titleKey, QFileDialog::FileMode mode) {
    auto *dialog = new QFileDialog(parent->window(), toQString(text(titleKey)));
    dialog->setFileMode(mode);
    dialog->setOption(QFileDialog::ShowDirsOnly, mode == QFileDialog::Directory);
    dialog->setLabelText(QFileDialog::Accept, toQString(text("button.select")));
    return dialog;
}

} // namespace

void DialogPanels::chooseInput(QWidget *parent, Chosen chosen) {
    constexpr char title[] = "panel.select.input.title";
    if (!isConfined())
        return open(
            new FilesAndFoldersDialog(parent->window(), toQString(text(title)), toQString(text("button.select"))),
            lastPlace_, chosen);
    // In a sandbox the portal's dialog has to be used, which takes either files or a folder.
    auto *menu = new QMenu(parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(menu->addAction(toQString(text("menu.choose.files"))), &QAction::triggered, parent,
                     [=, this] { open(panel(parent, title, QFileDialog::ExistingFiles), lastPlace_, chosen); });
    QObject::connect(menu->addAction(toQString(text("menu.choose.folder"))), &QAction::triggered, parent,
                     [=, this] { open(panel(parent, title, QFileDialog::Directory), lastPlace_, chosen); });
    menu->popup(QCursor::pos());
}

void DialogPanels::chooseOutputFolder(QWidget *parent, Chosen chosen) {
    open(panel(parent, "section.output.folder", QFileDialog::Directory), lastPlace_, chosen);
}

void DialogPanels::chooseFileToCheck(QWidget *parent, Chosen chosen) {
    open(panel(parent, "panel.check.spatial.title", QFileDialog::ExistingFile), lastPlace_, chosen);
}

} // namespace lumetwin
