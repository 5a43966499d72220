// SPDX-License-Identifier: GPL-3.0-or-later
// Runs one batch and shows what it reports.
#include "ui/progress/ProgressViewController.h"

#include "engine/texts/FileNames.h"
#include "engine/texts/WarningTexts.h"
#include "ui/alerts/AlertPresenter.h"
#include "ui/progress/ProgressTexts.h"
#include "ui/widgets/BackgroundThreads.h"
#include "ui/widgets/BarIndicator.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/MainThreadQueue.h"

#include <QKeyEvent>
#include <QPointer>
#include <QTimer>

namespace lumetwin {

ProgressViewController::ProgressViewController(std::shared_ptr<const ConversionSettings> theSettings, Services services,
                                               QWidget *parent)
    : Sheet(parent), settings(std::move(theSettings)), services_(std::move(services)) {
    loadView();
}

ProgressViewController::~ProgressViewController() = default;

void ProgressViewController::viewDidLoad() {
    buildInterface();
    startProcessing();
}

void ProgressViewController::startProcessing() {
    startTime = std::chrono::steady_clock::now();
    timerUpdateTimer = new QTimer(this);
    connect(timerUpdateTimer, &QTimer::timeout, this, &ProgressViewController::updateElapsedTime);
    timerUpdateTimer->start(500);
    processor = std::make_shared<VideoProcessor>(settings, SystemVersion::current(), services_.operations);
    connectProcessor();
    // The processor is owned by the thread too, so it may outlive the sheet.
    BackgroundThreads::shared().run("batch", [processor = processor, services = services_] {
        services.run(*processor);
        if (services.runEnded)
            MainThreadQueue::shared().post(services.runEnded);
    });
}

/// The processor calls back on its own threads. Each callback is posted to the interface thread, and does nothing there
/// when the sheet is gone.
void ProgressViewController::connectProcessor() {
    const QPointer<ProgressViewController> weak(this);
    const auto onMainThread = [weak](auto operation) {
        return [weak, operation](const auto &...arguments) {
            MainThreadQueue::shared().post([weak, operation, arguments...] {
                if (weak)
                    operation(*weak, arguments...);
            });
        };
    };
    using Self = ProgressViewController;
    processor->onProgress = onMainThread(std::mem_fn(&Self::updateProgress));
    processor->onFrameProgress = onMainThread(std::mem_fn(&Self::updateFrameProgress));
    processor->onSkip = onMainThread(std::mem_fn(&Self::showSkipped));
    processor->onComplete = onMainThread(std::mem_fn(&Self::conversionFinished));
    processor->onResult = [weak, fileEnded = services_.fileEnded](const FileResult &result) {
        MainThreadQueue::shared().post([weak, fileEnded, result] {
            if (fileEnded)
                fileEnded(result);
            if (weak)
                weak->addResult(result);
        });
    };
}

void ProgressViewController::updateProgress(std::int64_t current, std::int64_t total, const std::string &fileName) {
    filesDone_ = current;
    filesTotal_ = total;
    firstReport_.reset();
    showBatchFraction(total < 1 ? 0 : batchFraction(frames_, current, total, 0));
    fileCountLabel->setText(toQString(formatted("progress.filecount.format", current, total)));
    fileNameLabel->setText(toQString(formatted("progress.processing.format", fileName)));
    statusLabel->setText(toQString(text("progress.converting")));
    fileProgressBar->setIndeterminate(true);
    fileProgressLabel->setText(toQString(activityText(fileName)));
    emit fileBegan(fileName);
}

/// Shows the share in the bar and its text, and emits it.
void ProgressViewController::showBatchFraction(double fraction) {
    fraction_ = fraction;
    overallProgress->setDoubleValue(fraction);
    overallLabel->setText(toQString(filesText(filesDone_, filesTotal_, fraction)));
    emit batchProgressed(fraction);
}

/// Frames per second of the current file; nullopt in its first second.
std::optional<double> ProgressViewController::frameRate(std::int64_t current) {
    const auto now = std::chrono::steady_clock::now();
    if (!firstReport_)
        firstReport_ = {now, current};
    const double seconds = std::chrono::duration<double>(now - firstReport_->time).count();
    const auto frames = static_cast<double>(current - firstReport_->frame);
    return seconds >= 1 && frames > 0 ? std::optional(frames / seconds) : std::nullopt;
}

void ProgressViewController::updateFrameProgress(std::int64_t current, std::int64_t total) {
    fileProgressBar->setIndeterminate(total < 1);
    fileProgressLabel->setText(toQString(framesText(current, total, frameRate(current))));
    if (total < 1)
        return;
    const double fraction = fractionOf(current, total);
    fileProgressBar->setDoubleValue(fraction);
    emit fileProgressed(fraction);
    if (filesTotal_ > 0)
        showBatchFraction(batchFraction(frames_, filesDone_, filesTotal_, fraction));
}

void ProgressViewController::showSkipped(const std::string &fileName, const std::string &reason) {
    fileNameLabel->setText(toQString(fileName));
    fileProgressLabel->setText(toQString(reason));
    fileProgressBar->setIndeterminate(false);
    fileProgressBar->setDoubleValue(0);
    details_ += detailLine(fileName, reason);
    ++skipped_;
    skipReasons_.insert(reason);
}

void ProgressViewController::addResult(const FileResult &result) {
    const std::string name = lastPathComponent(result.input);
    if (result.state == FileState::failed)
        details_ += detailLine(name, result.reason);
    for (const Warning &warning : result.warnings)
        details_ += detailLine(name, warningText(warning));
    if (result.wasConverted())
        outputs_.push_back(result.output);
    if (result.state == FileState::convertedWithWarnings)
        ++warned_;
}

void ProgressViewController::updateElapsedTime() {
    if (!startTime)
        return;
    const auto elapsed = std::chrono::steady_clock::now() - *startTime;
    elapsedLabel->setText(toQString(elapsedText(elapsed, timeLeft(elapsed, fraction_))));
}

void ProgressViewController::conversionFinished(bool success, const std::string &message) {
    timerUpdateTimer->stop();
    if (isCancelled())
        return;
    state_ = State::finished;
    delete stopQuestionParent_; // now, not later: the result alert checks whether another alert was closed just before
    elapsedLabel->setText(toQString(elapsedText(std::chrono::steady_clock::now() - *startTime)));
    fileProgressBar->setIndeterminate(false);
    fileProgressBar->setDoubleValue(1);
    overallProgress->setDoubleValue(1);
    overallLabel->setText(toQString(text("status.done")));
    fileProgressLabel->setText(toQString(text("status.done")));
    fileCountLabel->setText(toQString(formatted("progress.filecount.format", filesTotal_, filesTotal_)));
    statusLabel->setText(toQString(message));
    turnIntoCloseButton();
    const BatchResult end = batchResult(success, message);
    const Alert result = resultAlert(end);
    showTitle(success && !end.isEmpty() ? text("progress.title.done") : result.message);
    emit batchFinished(success, toQString(message));
    showResult(result);
}

BatchResult ProgressViewController::batchResult(bool success, const std::string &message) const {
    const bool showsOutputs = !outputs_.empty() && services_.showInFolder;
    return {success, message, details_, showsOutputs, skipped_, skipReasons_, warned_, !outputs_.empty()};
}

void ProgressViewController::showTitle(const std::string &title) {
    titleLabel->setText(toQString(title));
    setAccessibleName(toQString(title));
}

void ProgressViewController::showResult(const Alert &alert) {
    services_.alerts->present(alert, this, [this](int button) {
        if (button == AlertPresenter::sideButton)
            services_.showInFolder(settings->outputFolderURL.value_or(outputs_.front().parent_path()), outputs_);
    });
}

void ProgressViewController::buttonPressed() {
    if (state_ == State::finished)
        closeTapped();
    else
        cancelTapped();
}

void ProgressViewController::cancelTapped() {
    confirmCancel();
}

void ProgressViewController::confirmCancel() {
    if (state_ != State::running || stopQuestionParent_)
        return;
    stopQuestionParent_ = new QWidget(this);
    services_.alerts->present(stopQuestion(), stopQuestionParent_, [this](int button) {
        closeStopQuestion();
        if (button == 0)
            stop();
    });
}

/// Destroying this widget closes the alert. It is deleted later, because the alert is just delivering its answer.
void ProgressViewController::closeStopQuestion() {
    if (stopQuestionParent_)
        stopQuestionParent_->deleteLater();
    stopQuestionParent_ = nullptr;
}

void ProgressViewController::stop() {
    if (state_ != State::running)
        return closeTapped();
    state_ = State::cancelled;
    processor->cancelRequested = true;
    timerUpdateTimer->stop();
    emit dismissed();
}

void ProgressViewController::closeTapped() {
    emit dismissed();
}

void ProgressViewController::hideEvent(QHideEvent *event) {
    QWidget::hideEvent(event);
    // Minimizing the window hides the sheet too, with a spontaneous event, but does not close it.
    if (timerUpdateTimer && !event->spontaneous())
        timerUpdateTimer->stop();
}

void ProgressViewController::keyPressEvent(QKeyEvent *event) {
    if (event->matches(QKeySequence::Cancel))
        buttonPressed();
    else
        QWidget::keyPressEvent(event);
}

} // namespace lumetwin
