// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/files/RowTexts.h"

#include <QAbstractListModel>

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace lumetwin {

/// The rows of the list of files. The check mark of a row says whether it takes part in the run.
class FileListModel : public QAbstractListModel {
    Q_OBJECT

public:
    explicit FileListModel(std::shared_ptr<const ConversionSettings> settings, QObject *parent = nullptr);

    const std::vector<FileRow> &rows() const { return rows_; }
    const FileRow &rowAt(const QModelIndex &index) const { return rows_.at(static_cast<std::size_t>(index.row())); }
    RowState stateOf(const FileRow &row) const { return rowState(row, *settings_, outputs_); }
    const ConversionSettings &settings() const { return *settings_; }

    /// Replaces the rows. A file that was there keeps its look and its findings; results are kept of all.
    void setRows(std::vector<FileRow> rows, std::set<std::string> outputs);
    void clear();
    void setLook(const std::filesystem::path &file, const FileLook &look);
    void setFindings(const std::filesystem::path &file, const StereoFindings &findings);
    /// Leaves files out of the run, or takes them back in.
    void setLeftOut(const std::vector<std::filesystem::path> &files, bool leftOut);
    /// The settings have changed, and with them what will happen to the files.
    void refresh();

    // A run.
    /// A run begins: forgets the results of the files that take part in it.
    void beginRun();
    /// Whether a run goes on. Its files cannot be left out meanwhile.
    bool isRunning() const { return isRunning_; }
    /// A file of that name begins; its state follows the frames.
    void beginFile(const std::string &name);
    void setFraction(double fraction);
    void setResult(const FileResult &result);
    /// Forgets what was running, after the end or a stop.
    void endRun();
    /// The row of the file that is converted; invalid when there is none.
    QModelIndex currentFile() const { return running_ < 0 ? QModelIndex() : index(running_); }

    // QAbstractItemModel
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

signals:
    /// The user has left files out or taken them back in.
    void leftOutChanged(const std::set<std::filesystem::path> &files);

private:
    int indexOf(const std::filesystem::path &file) const;
    void changed(int row);
    std::set<std::filesystem::path> leftOut() const;

    std::shared_ptr<const ConversionSettings> settings_;
    std::vector<FileRow> rows_;
    std::map<std::filesystem::path, int> indexes_; ///< of the rows, by file
    std::set<std::string> outputs_;
    std::map<std::filesystem::path, FileResult> results_; ///< of the last run, also of files that are not listed yet
    bool isRunning_ = false;
    int running_ = -1; ///< the row that is converted; -1: none
};

} // namespace lumetwin
