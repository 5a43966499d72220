// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/FileListView.h"

#include "ui/files/FileListModel.h"
#include "ui/files/FileRowDelegate.h"
#include "ui/widgets/Localized.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>

#include <algorithm>

namespace lumetwin {

namespace fs = std::filesystem;

FileListView::FileListView(FileListModel *model, QWidget *parent) : QListView(parent), files_(model) {
    setModel(model);
    setItemDelegate(new FileRowDelegate(this));
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setUniformItemSizes(true);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    connect(this, &QListView::doubleClicked, this, &FileListView::open);
    connect(model, &QAbstractItemModel::modelReset, this, &FileListView::viewMoved);
}

std::vector<fs::path> FileListView::visibleFiles() const {
    std::vector<fs::path> files;
    const QModelIndex first = indexAt(viewport()->rect().topLeft() + QPoint(1, 1));
    for (QModelIndex index = first; index.isValid() && visualRect(index).intersects(viewport()->rect());
         index = index.siblingAtRow(index.row() + 1))
        files.push_back(files_->rowAt(index).file);
    return files;
}

std::vector<fs::path> FileListView::selectedFiles() const {
    std::vector<fs::path> files;
    for (const QModelIndex &index : selectionModel()->selectedIndexes())
        files.push_back(files_->rowAt(index).file);
    return files;
}

bool FileListView::isAnySelectedIn() const {
    const QModelIndexList selected = selectionModel()->selectedIndexes();
    return std::ranges::any_of(selected, [this](const QModelIndex &index) { return !files_->rowAt(index).isLeftOut; });
}

void FileListView::leaveOutSelected(bool leftOut) {
    if (!files_->isRunning())
        files_->setLeftOut(selectedFiles(), leftOut);
}

fs::path FileListView::fileToOpen(const QModelIndex &index) const {
    const FileRow &row = files_->rowAt(index);
    return row.result && !row.result->output.empty() ? row.result->output : row.file;
}

void FileListView::open(const QModelIndex &index) {
    if (index.isValid())
        emit openAsked(fileToOpen(index));
}

void FileListView::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Delete)
        leaveOutSelected(true);
    else if (event->key() == Qt::Key_Space)
        leaveOutSelected(isAnySelectedIn());
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        open(currentIndex());
    else
        QListView::keyPressEvent(event);
}

void FileListView::contextMenuEvent(QContextMenuEvent *event) {
    const QModelIndex index = currentIndex();
    if (!index.isValid())
        return;
    const FileRow &row = files_->rowAt(index);
    const bool hasResult = row.result && !row.result->output.empty();
    const bool leavesOut = isAnySelectedIn();
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [menu](const char *key) { return menu->addAction(toQString(text(key))); };
    connect(add(hasResult ? "files.menu.open.result" : "files.menu.open"), &QAction::triggered, this,
            [this, file = fileToOpen(index)] { emit openAsked(file); });
    connect(add("files.menu.show"), &QAction::triggered, this,
            [this, file = fileToOpen(index)] { emit showAsked(file); });
    menu->addSeparator();
    QAction *leave = add(leavesOut ? "files.menu.leave.out" : "files.menu.take.in");
    leave->setEnabled(!files_->isRunning());
    connect(leave, &QAction::triggered, this, [this, leavesOut] { leaveOutSelected(leavesOut); });
    menu->addSeparator();
    connect(add("files.menu.copy.report"), &QAction::triggered, this, &FileListView::reportAsked);
    const QPoint place = event->reason() == QContextMenuEvent::Keyboard
                             ? viewport()->mapToGlobal(visualRect(index).center())
                             : event->globalPos();
    menu->popup(place);
}

void FileListView::currentChanged(const QModelIndex &current, const QModelIndex &previous) {
    QListView::currentChanged(current, previous);
    emit currentFileChanged(current);
}

void FileListView::scrollContentsBy(int dx, int dy) {
    QListView::scrollContentsBy(dx, dy);
    emit viewMoved();
}

void FileListView::resizeEvent(QResizeEvent *event) {
    QListView::resizeEvent(event);
    emit viewMoved();
}

} // namespace lumetwin
