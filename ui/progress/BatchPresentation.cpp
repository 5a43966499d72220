// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/progress/BatchPresentation.h"

#include "ui/progress/ProgressViewController.h"
#include "ui/progress/SheetOverlay.h"

namespace lumetwin {

BatchPresentation::BatchPresentation(QWidget *content, const FormServices &services)
    : content_(content), services_(services) {}

BatchPresentation::~BatchPresentation() {
    // A batch must not go on when no window shows it.
    if (isConverting())
        sheet_->runningProcessor()->cancelRequested = true;
}

BatchPresentation::State BatchPresentation::state() const {
    if (sheet_)
        return State::presented;
    return threadRuns_ ? State::stopping : State::idle;
}

bool BatchPresentation::isConverting() const {
    return sheet_ && sheet_->state() == ProgressViewController::State::running;
}

void BatchPresentation::present(const std::shared_ptr<const ConversionSettings> &settings) {
    sheet_ = makeSheet(settings);
    threadRuns_ = true;
    emit batchStarted();
    sheet_->viewDidLoad();
    overlay_ = new SheetOverlay(content_, sheet_);
    emit stateChanged();
}

ProgressViewController *BatchPresentation::makeSheet(const std::shared_ptr<const ConversionSettings> &settings) {
    const auto runEnded = [weak = QPointer(this)] {
        if (weak)
            weak->threadEnded();
    };
    const auto fileEnded = [weak = QPointer(this)](const FileResult &result) {
        if (weak)
            emit weak->fileEnded(result);
    };
    auto *sheet =
        new ProgressViewController(settings, {services_.alerts.get(), services_.operations, services_.runBatch,
                                              runEnded, services_.showInFolder, fileEnded});
    connect(sheet, &ProgressViewController::fileBegan, this, &BatchPresentation::fileBegan);
    connect(sheet, &ProgressViewController::fileProgressed, this, &BatchPresentation::fileProgressed);
    connect(sheet, &ProgressViewController::dismissed, this, &BatchPresentation::dismissSheet);
    connect(sheet, &ProgressViewController::batchProgressed, this, &BatchPresentation::batchProgressed);
    connect(sheet, &ProgressViewController::batchFinished, this, [this](bool success, const QString &message) {
        emit batchFinished(success, message);
        emit batchEnded();
    });
    return sheet;
}

void BatchPresentation::dismissSheet() {
    if (!sheet_)
        return;
    if (sheet_->isCancelled())
        emit batchEnded();
    sheet_ = nullptr;
    overlay_->hide();
    overlay_->deleteLater();
    emit stateChanged();
}

void BatchPresentation::threadEnded() {
    threadRuns_ = false;
    emit threadLeft();
    emit stateChanged();
}

} // namespace lumetwin
