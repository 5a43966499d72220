// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/FileListModel.h"

#include "engine/texts/FileNames.h"
#include "ui/widgets/Localized.h"

#include <algorithm>

namespace lumetwin {

namespace fs = std::filesystem;

FileListModel::FileListModel(std::shared_ptr<const ConversionSettings> settings, QObject *parent)
    : QAbstractListModel(parent), settings_(std::move(settings)) {}

void FileListModel::setRows(std::vector<FileRow> rows, std::set<std::string> outputs) {
    std::map<fs::path, FileRow> known;
    for (FileRow &row : rows_)
        known.emplace(row.file, std::move(row));
    for (FileRow &row : rows)
        if (const auto before = known.find(row.file);
            before != known.end() && before->second.rightEye == row.rightEye) {
            row.look = std::move(before->second.look);
            row.findings = std::move(before->second.findings);
        }
    for (FileRow &row : rows)
        if (const auto result = results_.find(row.file); result != results_.end())
            row.result = result->second;
    beginResetModel();
    rows_ = std::move(rows);
    indexes_.clear();
    for (const FileRow &row : rows_)
        indexes_.emplace(row.file, static_cast<int>(indexes_.size()));
    outputs_ = std::move(outputs);
    running_ = -1;
    endResetModel();
}

void FileListModel::clear() {
    beginResetModel();
    rows_.clear();
    indexes_.clear();
    results_.clear();
    running_ = -1;
    endResetModel();
}

int FileListModel::indexOf(const fs::path &file) const {
    const auto found = indexes_.find(file);
    return found == indexes_.end() ? -1 : found->second;
}

void FileListModel::changed(int row) {
    emit dataChanged(index(row), index(row));
}

void FileListModel::setLook(const fs::path &file, const FileLook &look) {
    if (const int row = indexOf(file); row >= 0) {
        rows_[static_cast<std::size_t>(row)].look = look;
        changed(row);
    }
}

void FileListModel::setFindings(const fs::path &file, const StereoFindings &findings) {
    if (const int row = indexOf(file); row >= 0) {
        rows_[static_cast<std::size_t>(row)].findings = findings;
        changed(row);
    }
}

std::set<fs::path> FileListModel::leftOut() const {
    std::set<fs::path> files;
    for (const FileRow &row : rows_)
        if (row.isLeftOut)
            files.insert(row.file);
    return files;
}

void FileListModel::setLeftOut(const std::vector<fs::path> &files, bool leftOut) {
    for (const fs::path &file : files)
        if (const int row = indexOf(file);
            row >= 0 && rows_[static_cast<std::size_t>(row)].kind != FileRow::Kind::unsupported) {
            rows_[static_cast<std::size_t>(row)].isLeftOut = leftOut;
            changed(row);
        }
    emit leftOutChanged(this->leftOut());
}

void FileListModel::refresh() {
    if (!rows_.empty())
        emit dataChanged(index(0), index(static_cast<int>(rows_.size()) - 1));
}

void FileListModel::beginRun() {
    for (FileRow &row : rows_)
        if (!row.isLeftOut)
            row.result.reset();
    std::erase_if(results_, [this](const auto &entry) { return !settings_->leftOut.contains(entry.first); });
    isRunning_ = true;
    running_ = -1;
    refresh();
}

void FileListModel::beginFile(const std::string &name) {
    const auto isNext = [&](const FileRow &row) {
        return !row.isLeftOut && !row.result && row.kind != FileRow::Kind::unsupported &&
               lastPathComponent(row.file) == name;
    };
    const auto found = std::ranges::find_if(rows_, isNext);
    running_ = found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
    setFraction(0);
}

void FileListModel::setFraction(double fraction) {
    if (running_ < 0)
        return;
    rows_[static_cast<std::size_t>(running_)].fraction = fraction;
    changed(running_);
}

void FileListModel::setResult(const FileResult &result) {
    results_[result.input] = result;
    const int row = indexOf(result.input);
    if (row < 0)
        return;
    FileRow &ended = rows_[static_cast<std::size_t>(row)];
    ended.fraction.reset();
    ended.result = result;
    if (running_ == row)
        running_ = -1;
    changed(row);
}

void FileListModel::endRun() {
    if (running_ >= 0)
        rows_[static_cast<std::size_t>(running_)].fraction.reset();
    isRunning_ = false;
    running_ = -1;
    refresh();
}

int FileListModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant FileListModel::data(const QModelIndex &index, int role) const {
    const FileRow &row = rowAt(index);
    switch (role) {
    case Qt::DisplayRole:
        return displayName(row.file);
    case Qt::ToolTipRole:
        return displayPath(row.file) + QLatin1Char('\n') + rowReport(row, *settings_, outputs_);
    case Qt::AccessibleTextRole:
        return displayName(row.file) + QStringLiteral(", ") + stateOf(row).text;
    case Qt::AccessibleDescriptionRole:
        return rowDetails(row, *settings_);
    case Qt::CheckStateRole:
        return row.kind == FileRow::Kind::unsupported ? QVariant() : row.isLeftOut ? Qt::Unchecked : Qt::Checked;
    default:
        return {};
    }
}

bool FileListModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (role != Qt::CheckStateRole || isRunning_)
        return false;
    setLeftOut({rowAt(index).file}, value.toInt() == Qt::Unchecked);
    return true;
}

Qt::ItemFlags FileListModel::flags(const QModelIndex &index) const {
    const Qt::ItemFlags common = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    const bool isMedia = index.isValid() && rowAt(index).kind != FileRow::Kind::unsupported;
    return isMedia ? common | Qt::ItemIsUserCheckable : common;
}

} // namespace lumetwin
