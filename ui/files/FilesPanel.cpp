// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/FilesPanel.h"

#include "ui/files/FileListView.h"
#include "ui/files/PreviewPane.h"
#include "ui/widgets/Localized.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QSaveFile>
#include <QToolButton>

#include <algorithm>
#include <utility>

namespace lumetwin {

namespace fs = std::filesystem;

namespace {

/// Whether the last run should have converted it, but did not.
bool isUnfinished(const FileRow &row) {
    return row.result && (row.result->state == FileState::failed || row.result->state == FileState::cancelled ||
                          row.result->state == FileState::notReached);
}

} // namespace

FilesPanel::FilesPanel(std::shared_ptr<const ConversionSettings> settings, FilesPanelServices services, QWidget *parent)
    : QWidget(parent), settings_(std::move(settings)), services_(std::move(services)), model_(settings_),
      looks_(services_.operations) {
    build();
    applyLooks();
    constexpr int soonEnough = 100; // milliseconds; many files change at the same time
    totalsTimer_.setSingleShot(true);
    totalsTimer_.setInterval(soonEnough);
    connect(&totalsTimer_, &QTimer::timeout, this, &FilesPanel::showTotals);
    connect(&looks_, &FileLooks::listed, this, &FilesPanel::listed);
    connect(&looks_, &FileLooks::looked, &model_, &FileListModel::setLook);
    connect(&looks_, &FileLooks::examined, &model_, &FileListModel::setFindings);
    connect(&model_, &QAbstractItemModel::dataChanged, this, &FilesPanel::scheduleTotals);
    connect(&model_, &QAbstractItemModel::modelReset, this, &FilesPanel::scheduleTotals);
    connect(&model_, &QAbstractItemModel::dataChanged, this, [this](const QModelIndex &first, const QModelIndex &last) {
        const int current = list_->currentIndex().row();
        if (current >= first.row() && current <= last.row())
            showCurrent();
    });
    connect(&model_, &FileListModel::leftOutChanged, this, &FilesPanel::leftOutChanged);
    showTotals();
}

FilesPanel::~FilesPanel() = default;

void FilesPanel::setInput() {
    leftOutBefore_.reset();
    model_.clear();
    list(false);
}

void FilesPanel::settingsChanged() {
    const Listing now{settings_->direction, settings_->inputLayout, settings_->outputFolderURL};
    if (now != listing_)
        list(now.layout == listing_.layout && now.direction == listing_.direction);
    model_.refresh(); // and with it the preview of the current row
}

void FilesPanel::focusFiles() {
    if (list_->isVisible())
        list_->setFocus();
    else
        (backButton_->isHidden() ? static_cast<QWidget *>(closeButton_) : backButton_)->setFocus();
}

void FilesPanel::setActive(bool active) {
    isActive_ = active;
    if (active)
        list(true);
    else
        looks_.end();
}

/// Lists the files in the background. keepsLooks: what is known of a file is still true.
void FilesPanel::list(bool keepsLooks) {
    listing_ = {settings_->direction, settings_->inputLayout, settings_->outputFolderURL};
    keepsLooks_ = keepsLooks_ && keepsLooks;
    if (!isActive_)
        return;
    if (!settings_->inputFiles && !settings_->inputFolderURL)
        return model_.clear();
    std::set<fs::path> known;
    for (const FileRow &row : model_.rows())
        if (keepsLooks_ && row.look && (row.findings || row.look->facts.isSpatial))
            known.insert(row.file);
    keepsLooks_ = true;
    looks_.begin(*settings_, std::move(known));
}

void FilesPanel::listed(const std::vector<FileRow> &rows, const std::set<std::string> &outputs,
                        const QString &failure) {
    const int current = std::max(list_->currentIndex().row(), 0);
    model_.setRows(rows, outputs);
    emptyLabel_->setText(failure.isEmpty() ? toQString(text("files.empty")) : failure);
    emptyLabel_->setVisible(rows.empty());
    const bool takesFocus =
        !rows.empty() && !list_->isVisible() && (backButton_->hasFocus() || closeButton_->hasFocus());
    list_->setVisible(!rows.empty());
    if (takesFocus)
        list_->setFocus();
    if (!rows.empty())
        list_->setCurrentIndex(model_.index(std::min(current, model_.rowCount() - 1)));
    showCurrent();
}

void FilesPanel::showCurrent() {
    const QModelIndex index = list_->currentIndex();
    if (index.isValid())
        preview_->showRow(model_.rowAt(index));
    else
        preview_->showNothing();
}

void FilesPanel::runBegan() {
    looks_.end(); // the conversions need the processors
    preview_->setLocked(true);
    model_.beginRun();
}

void FilesPanel::fileBegan(const std::string &name) {
    model_.beginFile(name);
    list_->scrollTo(model_.currentFile());
}

void FilesPanel::fileProgressed(double fraction) {
    model_.setFraction(fraction);
}

void FilesPanel::fileEnded(const FileResult &result) {
    model_.setResult(result);
}

void FilesPanel::runEnded() {
    preview_->setLocked(false);
    model_.endRun();
    takeBackIn();
    list(true);
}

void FilesPanel::takeBackIn() {
    if (!leftOutBefore_)
        return;
    std::vector<fs::path> files;
    for (const FileRow &row : model_.rows())
        if (!leftOutBefore_->contains(row.file))
            files.push_back(row.file);
    leftOutBefore_.reset();
    model_.setLeftOut(files, false);
}

void FilesPanel::scheduleTotals() {
    if (!totalsTimer_.isActive())
        totalsTimer_.start();
}

void FilesPanel::showTotals() {
    totalsLabel_->setText(totalsText(model_.rows(), *settings_));
    const bool hasResults =
        std::ranges::any_of(model_.rows(), [](const FileRow &row) { return row.result.has_value(); });
    reportButton_->setVisible(hasResults);
    againButton_->setVisible(std::ranges::any_of(model_.rows(), isUnfinished));
    showAdvice();
}

/// Says what most files of the wrong kind have in common, and offers to do something about it.
void FilesPanel::showAdvice() {
    const auto count = [this](bool (*isMeant)(const FileRow &, const ConversionSettings &)) {
        return std::ranges::count_if(model_.rows(), [&](const FileRow &row) {
            return !row.isLeftOut && !row.result && isMeant(row, *settings_);
        });
    };
    const std::int64_t against = count(isAgainstDirection), noStereo = count(isNoStereo);
    advice_->setVisible(against + noStereo > 0 && !model_.isRunning());
    turnButton_->setVisible(against > 0);
    if (against > 0 && settings_->direction == ConversionDirection::spatialToSBS)
        adviceLabel_->setText(countedText("files.advice.not.spatial.one", "files.advice.not.spatial.format", against));
    else if (against > 0)
        adviceLabel_->setText(countedText("files.advice.spatial.one", "files.advice.spatial.format", against));
    else if (noStereo > 0)
        adviceLabel_->setText(countedText("files.advice.no.stereo.one", "files.advice.no.stereo.format", noStereo));
}

void FilesPanel::leaveOut(bool (*isMeant)(const FileRow &, const ConversionSettings &)) {
    std::vector<fs::path> files;
    for (const FileRow &row : model_.rows())
        if (isMeant(row, *settings_))
            files.push_back(row.file);
    model_.setLeftOut(files, true);
}

/// Starts a run of the unfinished files, and takes the others back in at its end.
void FilesPanel::convertFailedAgain() {
    std::vector<fs::path> others;
    for (const FileRow &row : model_.rows())
        if (!isUnfinished(row))
            others.push_back(row.file);
    leftOutBefore_ = settings_->leftOut;
    model_.setLeftOut(others, true);
    emit startAsked();
}

void FilesPanel::copyReport() {
    QGuiApplication::clipboard()->setText(runReport(model_.rows(), *settings_));
}

void FilesPanel::saveReport() {
    services_.chooseReport(this, [this](const fs::path &path) {
        QSaveFile file(QFile::decodeName(path.c_str()));
        if (!file.open(QIODevice::WriteOnly) || file.write(runReport(model_.rows(), *settings_).toUtf8()) < 0 ||
            !file.commit())
            totalsLabel_->setText(toQString(formatted("files.report.failed.format", file.errorString().toStdString())));
    });
}

} // namespace lumetwin
