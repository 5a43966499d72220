// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/ElidedLabel.h"

#include <QWidget>

#include <filesystem>
#include <functional>
#include <vector>

class QMimeData;

namespace lumetwin {

class DropIcon;

/// A box onto which one folder or a set of media files is dropped or pasted. Unusable drops leave it as it is.
class DropFolderView : public QWidget {
    Q_OBJECT

public:
    explicit DropFolderView(QWidget *parent = nullptr);

    /// Called in the drop itself.
    std::function<void(const std::filesystem::path &folder)> onFolderDropped;
    /// Called in the drop itself, with files sorted by name.
    std::function<void(const std::vector<std::filesystem::path> &files)> onFilesDropped;
    /// Called when the user asks for a choice with the keyboard.
    std::function<void()> onActivated;

    QString placeholder() const { return placeholder_; }
    void setPlaceholder(const QString &text);

    void showFolder(const std::filesystem::path &folder);
    void showFiles(const std::vector<std::filesystem::path> &files);

    /// Takes paths as a drop of them would be taken. Returns whether there was something usable among them.
    bool acceptPaths(const std::vector<std::filesystem::path> &paths);

    /// The one-line text that is shown.
    QString shownText() const { return label->text(); }
    bool hasContent() const { return hasContent_; }
    bool isHighlighted() const { return isHighlighted_; }

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void setupView();
    void layoutLabels();
    void updateAppearance();
    void setHighlighted(bool highlighted);
    void showContent(const QString &icon, const QString &text);
    /// Whether the data is taken; files of a portal's transfer arrive a little later.
    bool acceptData(const QMimeData &mime);

    QString placeholder_;
    ElidedLabel *label = nullptr;
    DropIcon *iconLabel = nullptr;
    bool hasContent_ = false;
    bool isHighlighted_ = false;
};

/// The icon for a set of files: photos, videos or both.
QString iconOfFiles(const std::vector<std::filesystem::path> &files);

} // namespace lumetwin
