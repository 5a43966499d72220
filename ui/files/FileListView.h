// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QListView>

#include <filesystem>
#include <vector>

namespace lumetwin {

class FileListModel;

/// The list of files. Space and Delete leave the selected files out of the run; Enter and a double click open the
/// result of a file, or the file itself where there is none.
class FileListView : public QListView {
    Q_OBJECT

public:
    explicit FileListView(FileListModel *model, QWidget *parent = nullptr);

    /// The files whose rows can be seen.
    std::vector<std::filesystem::path> visibleFiles() const;

signals:
    void currentFileChanged(const QModelIndex &index);
    /// Rows came into view.
    void viewMoved();
    void openAsked(const std::filesystem::path &file);
    void showAsked(const std::filesystem::path &file);
    void reportAsked();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void scrollContentsBy(int dx, int dy) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    std::vector<std::filesystem::path> selectedFiles() const;
    void leaveOutSelected(bool leftOut);
    bool isAnySelectedIn() const;
    /// The result of a row, or its file where there is none.
    std::filesystem::path fileToOpen(const QModelIndex &index) const;
    void open(const QModelIndex &index);

    FileListModel *files_;
};

} // namespace lumetwin
