// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include <filesystem>
#include <functional>
#include <vector>

class QWidget;

namespace lumetwin {

/// The open panels. Replaced in tests by ones that choose. Each returns at once; the choice comes later, and never
/// when the user cancels.
class FilePanels {
public:
    using Chosen = std::function<void(const std::vector<std::filesystem::path> &paths)>;

    virtual ~FilePanels() = default;

    /// Folders and files, several at once.
    virtual void chooseInput(QWidget *parent, Chosen chosen) = 0;
    /// One folder.
    virtual void chooseOutputFolder(QWidget *parent, Chosen chosen) = 0;
    /// One file of any kind.
    virtual void chooseFileToCheck(QWidget *parent, Chosen chosen) = 0;
};

/// What file dialogs offer to show: all media, videos, photos, everything.
QStringList mediaFilters();

/// Panels of the desktop.
class DialogPanels : public FilePanels {
public:
    void chooseInput(QWidget *parent, Chosen chosen) override;
    void chooseOutputFolder(QWidget *parent, Chosen chosen) override;
    void chooseFileToCheck(QWidget *parent, Chosen chosen) override;

private:
    std::filesystem::path lastPlace_;
};

} // namespace lumetwin
