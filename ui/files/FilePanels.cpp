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
    if (mode != QFileDialog::Directory)
        dialog->setNameFilters(mediaFilters());
    dialog->setOption(QFileDialog::HideNameFilterDetails);
    dialog->setOption(QFileDialog::ShowDirsOnly, mode == QFileDialog::Directory);
    dialog->setLabelText(QFileDialog::Accept, toQString(text("button.select")));
    return dialog;
}

/// A file dialog has no parts of its own where the desktop brings the dialog.
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
                // Some desktops' dialogs tell capitals from small letters.
                patterns << QStringLiteral("*.") + word << QStringLiteral("*.") + word.toUpper();
            }
        return toQString(text(key)) + QStringLiteral(" (") + patterns.join(QLatin1Char(' ')) + QLatin1Char(')');
    };
    return {filter("filter.media", {videoExtensions, photoExtensions}), filter("filter.videos", {videoExtensions}),
            filter("filter.photos", {photoExtensions}), toQString(text("filter.all")) + QStringLiteral(" (*)")};
}

void DialogPanels::chooseInput(QWidget *parent, Chosen chosen) {
    constexpr char title[] = "panel.select.input.title";
    if (!hasNativeDialogs()) {
        auto *dialog =
            new FilesAndFoldersDialog(parent->window(), toQString(text(title)), toQString(text("button.select")));
        dialog->setNameFilters(mediaFilters());
        return open(dialog, lastPlace_, chosen);
    }
    // The desktops' own dialogs take either files or a folder; in a sandbox there is no other way in.
    auto *menu = new QMenu(parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(menu->addAction(toQString(text("menu.choose.files"))), &QAction::triggered, parent,
                     [=, this] { open(panel(parent, title, QFileDialog::ExistingFiles), lastPlace_, chosen); });
    QObject::connect(menu->addAction(toQString(text("menu.choose.folder"))), &QAction::triggered, parent,
                     [=, this] { open(panel(parent, title, QFileDialog::Directory), lastPlace_, chosen); });
    const QWidget *asking = parent->focusWidget() ? parent->focusWidget() : parent;
    const bool pointed = asking->rect().contains(asking->mapFromGlobal(QCursor::pos()));
    menu->popup(pointed ? QCursor::pos() : asking->mapToGlobal(asking->rect().bottomLeft()));
}

void DialogPanels::chooseOutputFolder(QWidget *parent, Chosen chosen) {
    open(panel(parent, "section.output.folder", QFileDialog::Directory), lastPlace_, chosen);
}

void DialogPanels::chooseFileToCheck(QWidget *parent, Chosen chosen) {
    open(panel(parent, "panel.check.spatial.title", QFileDialog::ExistingFile), lastPlace_, chosen);
}

} // namespace lumetwin
