// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include <filesystem>
#include <functional>
#include <vector>

class QWidget;

namespace lumetwin {

/// The dialogs that choose files and folders. Tests replace them by ones that choose at once. Each function returns at
/// once; the choice comes later, and never comes when the user cancels.
class FilePanels {
public:
    using ChosenCallback = std::function<void(const std::vector<std::filesystem::path> &paths)>;

    virtual ~FilePanels() = default;

    /// Chooses any number of folders and files. Where a menu asks which, it opens at the parent.
    virtual void chooseInput(QWidget *parent, ChosenCallback chosen) = 0;
    /// Chooses one folder.
    virtual void chooseOutputFolder(QWidget *parent, ChosenCallback chosen) = 0;
    /// Chooses one file of any type.
    virtual void chooseFileToCheck(QWidget *parent, ChosenCallback chosen) = 0;
    /// Chooses the path of a new text file.
    virtual void chooseReport(QWidget *parent, ChosenCallback chosen) = 0;
};

/// The name filters of file dialogs: all media, videos, photos, all files.
QStringList mediaFilters();

/// Uses the desktop's dialogs, or Qt's where the desktop has none.
class DialogPanels : public FilePanels {
public:
    void chooseInput(QWidget *parent, ChosenCallback chosen) override;
    void chooseOutputFolder(QWidget *parent, ChosenCallback chosen) override;
    void chooseFileToCheck(QWidget *parent, ChosenCallback chosen) override;
    void chooseReport(QWidget *parent, ChosenCallback chosen) override;

private:
    std::filesystem::path lastFolder_;
};

} // namespace lumetwin
