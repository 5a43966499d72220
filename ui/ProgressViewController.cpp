// SPDX-License-Identifier: GPL-3.0-or-later
// One run of a batch, and what the sheet does with what the batch reports.
#include "ui/ProgressViewController.h"

#include "ui/AlertPresenter.h"
#include "ui/BackgroundThreads.h"
#include "ui/BarIndicator.h"
#include "ui/ElidedLabel.h"
#include "ui/Localized.h"
#include "ui/MainThreadQueue.h"
#include "ui/ProgressTexts.h"

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
    processor = std::make_shared<VideoProcessor>(settings);
    connectProcessor();
    // The thread keeps the processor alive, not the sheet.
    BackgroundThreads::shared().run("batch", [processor = processor, services = services_] {
        services.run(*processor);
        if (services.runEnded)
            MainThreadQueue::shared().post(services.runEnded);
    });
}

/// Each callback posts itself, from whatever thread, to the interface thread and does nothing there once the sheet
/// has gone.
void ProgressViewController::connectProcessor() {
    const QPointer<ProgressViewController> weak(this);
    const auto repost = [weak](auto operation) {
        return [weak, operation](const auto &...arguments) {
            MainThreadQueue::shared().post([weak, operation, arguments...] {
                if (weak)
                    operation(*weak, arguments...);
            });
        };
    };
    using Self = ProgressViewController;
    processor->onProgress = repost(std::mem_fn(&Self::updateProgress));
    processor->onFrameProgress = repost(std::mem_fn(&Self::updateFrameProgress));
    processor->onSkip = repost(std::mem_fn(&Self::showSkipped));
    processor->onComplete = repost(std::mem_fn(&Self::conversionFinished));
    processor->onFailure = repost([](Self &sheet, const std::string &fileName, const std::string &reason) {
        sheet.details_ += detailLine(fileName, reason);
    });
    processor->onConverted = repost([](Self &sheet, const std::string &, const std::filesystem::path &output) {
        sheet.outputs_.push_back(output);
    });
}

void ProgressViewController::updateProgress(std::int64_t current, std::int64_t total, const std::string &fileName) {
    filesDone_ = current;
    filesTotal_ = total;
    const double fraction = fractionOf(current, total);
    overallProgress->setDoubleValue(fraction);
    overallLabel->setText(toQString(filesText(current, total)));
    fileCountLabel->setText(toQString(formatted("progress.filecount.format", current, total)));
    fileNameLabel->setText(toQString(formatted("progress.processing.format", fileName)));
    statusLabel->setText(toQString(text("progress.converting")));
    fileProgressBar->setIndeterminate(true);
    fileProgressLabel->setText(toQString(text("progress.frame.calculating")));
    emit batchProgressed(fraction);
}

void ProgressViewController::updateFrameProgress(std::int64_t current, std::int64_t total) {
    fileProgressBar->setIndeterminate(total < 1);
    fileProgressLabel->setText(toQString(framesText(current, total)));
    if (total < 1)
        return;
    const double fraction = fractionOf(current, total);
    fileProgressBar->setDoubleValue(fraction);
    if (filesTotal_ > 0)
        emit batchProgressed(batchFraction(filesDone_, filesTotal_, fraction));
}

void ProgressViewController::showSkipped(const std::string &fileName, const std::string &reason) {
    fileNameLabel->setText(toQString(fileName));
    fileProgressLabel->setText(toQString(reason));
    fileProgressBar->setIndeterminate(false);
    fileProgressBar->setDoubleValue(0);
    details_ += detailLine(fileName, reason);
}

void ProgressViewController::updateElapsedTime() {
    if (startTime)
        elapsedLabel->setText(toQString(elapsedText(std::chrono::steady_clock::now() - *startTime)));
}

void ProgressViewController::conversionFinished(bool success, const std::string &message) {
    timerUpdateTimer->stop();
    if (isCancelled())
        return;
    state_ = State::finished;
    withdrawQuestion();
    fileProgressBar->setIndeterminate(false);
    fileProgressBar->setDoubleValue(1);
    overallProgress->setDoubleValue(1);
    overallLabel->setText(toQString(text("status.done")));
    fileProgressLabel->setText(toQString(text("status.done")));
    statusLabel->setText(toQString(message));
    turnIntoCloseButton();
    emit batchFinished(success, toQString(message));
    showResult(success, message);
}

void ProgressViewController::showResult(bool success, const std::string &message) {
    const bool showsOutputs = !outputs_.empty() && services_.showInFolder;
    const Alert alert = resultAlert(success, message, details_, showsOutputs);
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
    if (state_ != State::running || question_)
        return;
    question_ = new QWidget(this);
    services_.alerts->present(stopQuestion(), question_, [this](int button) {
        withdrawQuestion();
        if (button == 0)
            stop();
    });
}

/// An alert goes with the widget that it was presented on.
void ProgressViewController::withdrawQuestion() {
    if (question_)
        question_->deleteLater();
    question_ = nullptr;
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
    // Minimizing the window hides the sheet too, but does not put it away.
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
