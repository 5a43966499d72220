// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ProgressViewController.h"

#include "ui/AlertPresenter.h"
#include "ui/BackgroundThreads.h"
#include "ui/BarIndicator.h"
#include "ui/ColouredButton.h"
#include "ui/ElidedLabel.h"
#include "ui/Localized.h"
#include "ui/MainThreadQueue.h"
#include "ui/Palettes.h"
#include "ui/Points.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPointer>
#include <QTimer>

#include <algorithm>

namespace lumetwin {

namespace {

constexpr double sheetWidth = 560; // points
constexpr double sheetHeight = 340;
constexpr double sheetRadius = 14;

const QColor sheetGround = colour(0.08, 0.09, 0.12);
const QColor stopRed = colour(0.7, 0.15, 0.15);
const QColor closeGreen = colour(0.15, 0.5, 0.25);
const QColor barBlue = colour(0.25, 0.55, 1.0);
const QColor barGreen = colour(0.3, 0.75, 0.5);

double fractionOf(std::int64_t current, std::int64_t total) {
    return total < 1 ? 0 : static_cast<double>(current) / static_cast<double>(total);
}

std::int64_t percentOf(double fraction) {
    return static_cast<std::int64_t>(fraction * 100);
}

QString buttonTitle(const char *symbol, const std::string &title) {
    return QString::fromUtf8(symbol) + QStringLiteral("  ") + toQString(title);
}

} // namespace

ProgressViewController::ProgressViewController(std::shared_ptr<const ConversionSettings> theSettings, Services services,
                                               QWidget *parent)
    : Sheet(parent), settings(std::move(theSettings)), services_(std::move(services)) {
    loadView();
}

ProgressViewController::~ProgressViewController() = default;

void ProgressViewController::loadView() {
    setObjectName(QStringLiteral("progressSheet"));
    setAccessibleName(toQString(text("progress.title")));
}

void ProgressViewController::viewDidLoad() {
    buildInterface();
    startProcessing();
}

QLabel *ProgressViewController::addLabel(const char *name, QLabel *label, const QColor &colour) {
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignCenter);
    setTextColour(label, colour);
    return label;
}

void ProgressViewController::buildInterface() {
    const auto label = [this](const char *name, const std::string &text, const QColor &colour) {
        return addLabel(name, new ElidedLabel(toQString(text), this), colour);
    };
    cancelButton = new ColouredButton(buttonTitle("⏹", text("button.cancel")), 8, this);
    cancelButton->setObjectName(QStringLiteral("cancelButton"));
    cancelButton->setAccessibleName(toQString(text("button.cancel")));
    cancelButton->setColour(stopRed);
    connect(cancelButton, &QPushButton::clicked, this, &ProgressViewController::buttonPressed);
    elapsedLabel = label("elapsedLabel", text("progress.elapsed.initial"), white(0.5));
    fileCountLabel = label("fileCountLabel", "0 / 0", colour(0.5, 0.75, 1.0));
    overallProgress = new BarIndicator(barBlue, this);
    overallProgress->setObjectName(QStringLiteral("overallProgress"));
    overallProgress->setAccessibleName(toQString(text("spoken.overall.progress")));
    overallLabel = label("overallLabel", text("progress.files.initial"), white(0.55));
    fileProgressBar = new BarIndicator(barGreen, this);
    fileProgressBar->setObjectName(QStringLiteral("fileProgressBar"));
    fileProgressBar->setAccessibleName(toQString(text("spoken.file.progress")));
    fileProgressBar->setIndeterminate(true);
    fileProgressLabel = label("fileProgressLabel", text("progress.frame.initial"), colour(0.4, 0.85, 0.6));
    fileNameLabel = static_cast<ElidedLabel *>(label("fileNameLabel", text("progress.preparing"), white(0.8)));
    statusLabel = label("statusLabel", text("progress.starting"), white(0.45));
    titleLabel = label("titleLabel", text("progress.title"), white(1));
    setFocusProxy(cancelButton);
    layoutWidgets();
}

void ProgressViewController::fitInto(QSize room) {
    const PointScale usual = PointScale::current();
    scale_ = {std::min(usual.x, room.width() / sheetWidth), std::min(usual.y, room.height() / sheetHeight)};
    if (titleLabel)
        layoutWidgets();
}

void ProgressViewController::layoutWidgets() {
    const PointScale &scale = scale_;
    setFixedSize(scale.horizontal(sheetWidth), scale.vertical(sheetHeight));
    const auto place = [&](QWidget *widget, const PointFrame &frame, double size,
                           QFont::Weight weight = QFont::Normal) {
        widget->setFont(scale.font(size, weight));
        widget->setGeometry(scale.toQt(frame, sheetHeight));
    };
    place(cancelButton, {200, 24, 160, 38}, 14, QFont::DemiBold);
    place(elapsedLabel, {40, 76, 480, 18}, 11);
    place(fileCountLabel, {40, 102, 480, 20}, 12);
    place(overallProgress, {40, 128, 480, 14}, 11);
    place(overallLabel, {40, 148, 480, 18}, 11);
    place(fileProgressBar, {40, 176, 480, 12}, 11);
    place(fileProgressLabel, {40, 194, 480, 18}, 11);
    place(fileNameLabel, {40, 220, 480, 20}, 12);
    place(statusLabel, {40, 250, 480, 18}, 11);
    place(titleLabel, {40, 278, 480, 26}, 16, QFont::Bold);
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
        sheet.details_ += format("detail.file.format", fileName, reason) + "\n";
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
    overallLabel->setText(toQString(format("progress.files.format", current, total, percentOf(fraction))));
    fileCountLabel->setText(toQString(format("progress.filecount.format", current, total)));
    fileNameLabel->setText(toQString(format("progress.processing.format", fileName)));
    statusLabel->setText(toQString(text("progress.converting")));
    fileProgressBar->setIndeterminate(true);
    fileProgressLabel->setText(toQString(text("progress.frame.calculating")));
    emit batchProgressed(fraction);
}

void ProgressViewController::updateFrameProgress(std::int64_t current, std::int64_t total) {
    if (total < 1) {
        fileProgressBar->setIndeterminate(true);
        fileProgressLabel->setText(toQString(format("progress.frame.processed.format", current)));
        return;
    }
    const double fraction = fractionOf(current, total);
    fileProgressBar->setIndeterminate(false);
    fileProgressBar->setDoubleValue(fraction);
    fileProgressLabel->setText(toQString(format("progress.frame.format", current, total, percentOf(fraction))));
    if (filesTotal_ > 0)
        emit batchProgressed((static_cast<double>(filesDone_) + std::clamp(fraction, 0.0, 1.0)) /
                             static_cast<double>(filesTotal_));
}

void ProgressViewController::showSkipped(const std::string &fileName, const std::string &reason) {
    fileNameLabel->setText(toQString(fileName));
    fileProgressLabel->setText(toQString(reason));
    fileProgressBar->setIndeterminate(false);
    fileProgressBar->setDoubleValue(0);
    details_ += format("detail.file.format", fileName, reason) + "\n";
}

void ProgressViewController::updateElapsedTime() {
    if (!startTime)
        return;
    const auto elapsed =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - *startTime).count();
    const std::int64_t minutes = elapsed / 60, seconds = elapsed - minutes * 60;
    elapsedLabel->setText(toQString(format("progress.elapsed.format", minutes, seconds)));
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

void ProgressViewController::turnIntoCloseButton() {
    cancelButton->setText(buttonTitle("✓", text("button.close")));
    cancelButton->setAccessibleName(toQString(text("button.close")));
    cancelButton->setColour(closeGreen);
    cancelButton->setFocus();
}

void ProgressViewController::showResult(bool success, const std::string &message) {
    Alert alert{text(success ? "alert.conversion.success" : "alert.conversion.error"), message};
    alert.style = success ? AlertStyle::informational : AlertStyle::warning;
    alert.details = details_;
    if (!outputs_.empty() && services_.showInFolder)
        alert.sideButton = text("button.show.in.folder");
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
    const Alert question{
        text("alert.cancel.title"), text("alert.cancel.message"), {text("button.stop"), text("button.continue")}};
    services_.alerts->present(question, question_, [this](int button) {
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

void ProgressViewController::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange && titleLabel)
        fitInto(parentWidget() ? parentWidget()->size() : size());
}

void ProgressViewController::paintEvent(QPaintEvent *) {
    const double radius = sheetRadius * scale_.y;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(sheetGround);
    painter.drawRoundedRect(rect(), radius, radius);
}

} // namespace lumetwin
