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

/// A box onto which one folder or a set of media files is dropped or pasted; a click asks for a choice. An unusable
/// drop is refused in words, which go after a while, and leaves what the box holds.
class DropFolderView : public QWidget {
    Q_OBJECT

public:
    explicit DropFolderView(QWidget *parent = nullptr);

    /// Called in the drop itself.
    std::function<void(const std::filesystem::path &folder)> onFolderDropped;
    /// Called in the drop itself, with files sorted by name.
    std::function<void(const std::vector<std::filesystem::path> &files)> onFilesDropped;
    /// Called when the user asks for a choice, with a click or with the keyboard.
    std::function<void()> onActivated;
    /// Why a folder is not taken, in words; empty where nothing speaks against it.
    std::function<std::string(const std::filesystem::path &folder)> objection;

    QString placeholder() const { return placeholder_; }
    void setPlaceholder(const QString &text);

    /// From now on one folder is all that is taken.
    void takeOnlyFolders() { onlyFolders_ = true; }

    void showFolder(const std::filesystem::path &folder);
    void showFiles(const std::vector<std::filesystem::path> &files);

    /// Takes paths as a drop of them would be taken. Returns whether there was something usable among them.
    bool acceptPaths(const std::vector<std::filesystem::path> &paths);

    /// Says for a while why something is not taken.
    void refuse(const QString &why);
    bool isRefusing() const { return !refusal_.isEmpty(); }

    /// The one-line text that is shown.
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
    bool mayTake(const QMimeData &mime) const;
    /// Empty where nothing speaks against it.
    std::string reasonAgainst(const DroppedInput &input) const;
    /// Whether the data is taken; files of a portal's transfer arrive a little later.
    bool acceptData(const QMimeData &mime);

    QString placeholder_;
    ElidedLabel *label = nullptr;
    DropIcon *iconLabel = nullptr;
    bool hasContent_ = false;
    bool isHighlighted_ = false;
    bool onlyFolders_ = false;
    QString content_; ///< what the text says of what the box holds
    QString refusal_; ///< while something is being refused
    QTimer refusalEnd_;
};

/// The symbols for a set of files: photos, videos or both.
std::vector<Symbol> symbolsOfFiles(const std::vector<std::filesystem::path> &files);

} // namespace lumetwin
