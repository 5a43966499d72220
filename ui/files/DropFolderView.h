// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/Symbol.h"

#include <QTimer>
#include <QWidget>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

class QMimeData;

namespace lumetwin {

class DropIcon;
struct DroppedInput;

/// A box that accepts one folder or a set of media files, dropped or pasted. A click asks for a choice in a dialog.
/// When a drop cannot be used, the box says why for some seconds and keeps its content.
class DropFolderView : public QWidget {
    Q_OBJECT

public:
    explicit DropFolderView(QWidget *parent = nullptr);

    /// Called during the drop.
    std::function<void(const std::filesystem::path &folder)> onFolderDropped;
    /// Called during the drop.
    std::function<void(const DroppedInput &files)> onFilesDropped;
    /// Called when the user clicks the box or presses Space or Enter in it.
    std::function<void()> onActivated;
    /// Returns a message for the user when a folder cannot be used, otherwise an empty string. Optional.
    std::function<std::string(const std::filesystem::path &folder)> objection;

    QString placeholder() const { return placeholder_; }
    void setPlaceholder(const QString &text);

    /// From now on only a single folder is accepted.
    void acceptOnlyFolders() { onlyFolders_ = true; }

    void showFolder(const std::filesystem::path &folder);
    void showFiles(const std::vector<std::filesystem::path> &files);

    /// Does what a drop of these paths does. Returns whether any of them can be used.
    bool acceptPaths(const std::vector<std::filesystem::path> &paths);

    /// Shows for five seconds why something is refused.
    void refuse(const QString &why);
    bool isRefusing() const { return !refusal_.isEmpty(); }

    /// The text that the box shows, in one line.
    QString shownText() const { return label->text(); }
    bool hasContent() const { return hasContent_; }
    bool isHighlighted() const { return isHighlighted_; }

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void setupView();
    void layoutLabels();
    void updateAppearance();
    void setHighlighted(bool highlighted);
    void showContent(const std::vector<Symbol> &symbols, const QString &text);
    void endRefusal();
    bool canAccept(const QMimeData &mime) const;
    /// Why the input is refused, as a message for the user; empty when it is accepted.
    std::string reasonToRefuse(const DroppedInput &input) const;
    /// Returns whether the data is accepted. Files of a portal's transfer arrive later.
    bool acceptData(const QMimeData &mime);

    QString placeholder_;
    ElidedLabel *label = nullptr;
    DropIcon *iconLabel = nullptr;
    bool hasContent_ = false;
    bool isHighlighted_ = false;
    bool onlyFolders_ = false;
    QString content_; ///< the text for the content of the box
    QString refusal_; ///< empty when no refusal is shown
    QTimer refusalEnd_;
};

/// The symbols for a set of files: a picture, a film, or both.
std::vector<Symbol> symbolsOfFiles(const std::vector<std::filesystem::path> &files);

} // namespace lumetwin
