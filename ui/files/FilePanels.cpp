// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/FilePanels.h"

#include "engine/inspection/MediaKinds.h"
#include "ui/desktop/PortalFiles.h"
#include "ui/files/FilesAndFoldersDialog.h"
#include "ui/widgets/Localized.h"

#include <QCursor>
#include <QFile>
#include <QMenu>
#include <QStandardPaths>

#include <span>

namespace lumetwin {

namespace fs = std::filesystem;

namespace {

fs::path toPath(const QString &path) {
    return QFile::encodeName(path).toStdString();
}

QString startFolder(const fs::path &lastFolder) {
    if (!lastFolder.empty())
        return QFile::decodeName(lastFolder.c_str());
    const QString videos = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    return QFile::exists(videos) ? videos : QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
}

void openDialog(QFileDialog *dialog, fs::path &lastFolder, const FilePanels::ChosenCallback &chosen) {
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setDirectory(startFolder(lastFolder));
    QObject::connect(dialog, &QDialog::accepted, dialog, [dialog, &lastFolder, chosen] {
        auto *both = qobject_cast<FilesAndFoldersDialog *>(dialog);
        std::vector<fs::path> paths;
        for (const QString &file : both ? both->choice() : dialog->selectedFiles())
            paths.push_back(toPath(file));
        lastFolder = toPath(dialog->directory().absolutePath());
        if (!paths.empty())
            chosen(paths);
    });
    dialog->open();
}

QFileDialog *makeDialog(QWidget *parent, const char *titleKey, QFileDialog::FileMode mode) {
    auto *dialog = new QFileDialog(parent->window(), toQString(text(titleKey)));
    dialog->setFileMode(mode);
    if (mode != QFileDialog::Directory)
        dialog->setNameFilters(mediaFilters());
    dialog->setOption(QFileDialog::HideNameFilterDetails);
    dialog->setOption(QFileDialog::ShowDirsOnly, mode == QFileDialog::Directory);
    dialog->setLabelText(QFileDialog::Accept, toQString(text("button.select")));
    return dialog;
}

/// QFileDialog has no child widgets when the desktop provides the dialog.
bool hasNativeDialogs() {
    return isConfined() || QFileDialog().findChildren<QWidget *>().isEmpty();
}

} // namespace

QStringList mediaFilters() {
    const auto filter = [](const char *key, std::initializer_list<std::span<const std::string_view>> kinds) {
        QStringList patterns;
        for (const auto &extensions : kinds)
            for (const std::string_view extension : extensions) {
                const QString word = QString::fromUtf8(extension.data(), static_cast<qsizetype>(extension.size()));
                // The dialogs of some desktops match patterns by case.
                patterns << QStringLiteral("*.") + word << QStringLiteral("*.") + word.toUpper();
            }
        return toQString(text(key)) + QStringLiteral(" (") + patterns.join(QLatin1Char(' ')) + QLatin1Char(')');
    };
    return {filter("filter.media", {videoExtensions, furtherVideoExtensions, photoExtensions, furtherPhotoExtensions}),
            filter("filter.videos", {videoExtensions, furtherVideoExtensions}),
            filter("filter.photos", {photoExtensions, furtherPhotoExtensions}),
            toQString(text("filter.all")) + QStringLiteral(" (*)")};
}

void DialogPanels::chooseInput(QWidget *parent, ChosenCallback chosen) {
    constexpr char title[] = "panel.select.input.title";
    if (!hasNativeDialogs()) {
        auto *dialog =
            new FilesAndFoldersDialog(parent->window(), toQString(text(title)), toQString(text("button.select")));
        dialog->setNameFilters(mediaFilters());
        return openDialog(dialog, lastFolder_, chosen);
    }
    // A native dialog accepts either files or folders, so a menu asks which. In a sandbox only native dialogs give
    // access to files.
    auto *menu = new QMenu(parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(menu->addAction(toQString(text("menu.choose.files"))), &QAction::triggered, parent, [=, this] {
        openDialog(makeDialog(parent, title, QFileDialog::ExistingFiles), lastFolder_, chosen);
    });
    QObject::connect(menu->addAction(toQString(text("menu.choose.folder"))), &QAction::triggered, parent,
                     [=, this] { openDialog(makeDialog(parent, title, QFileDialog::Directory), lastFolder_, chosen); });
    const bool pointerInside = parent->rect().contains(parent->mapFromGlobal(QCursor::pos()));
    menu->popup(pointerInside ? QCursor::pos() : parent->mapToGlobal(parent->rect().bottomLeft()));
}

void DialogPanels::chooseOutputFolder(QWidget *parent, ChosenCallback chosen) {
    openDialog(makeDialog(parent, "section.output.folder", QFileDialog::Directory), lastFolder_, chosen);
}

void DialogPanels::chooseFileToCheck(QWidget *parent, ChosenCallback chosen) {
    openDialog(makeDialog(parent, "panel.check.spatial.title", QFileDialog::ExistingFile), lastFolder_, chosen);
}

void DialogPanels::chooseReport(QWidget *parent, ChosenCallback chosen) {
    auto *dialog = new QFileDialog(parent->window(), toQString(text("files.report.save")));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setDefaultSuffix(QStringLiteral("txt"));
    dialog->selectFile(QStringLiteral("Lumetwin.txt"));
    openDialog(dialog, lastFolder_, chosen);
}

} // namespace lumetwin
