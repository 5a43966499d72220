// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/batch/VideoProcessor.h"
#include "ui/progress/ProgressTexts.h"
#include "ui/progress/Sheet.h"
#include "ui/widgets/Points.h"

#include <QColor>
#include <QPointer>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

class QLabel;
class QTimer;

namespace lumetwin {

class AlertPresenter;
class BarIndicator;
class ColouredButton;
class ElidedLabel;

/// Runs a whole batch on the calling thread, which is the batch's own.
using BatchRun = std::function<void(VideoProcessor &processor)>;

/// The sheet that runs one batch and shows its progress. It may go away while the batch still runs.
class ProgressViewController : public Sheet {
    Q_OBJECT

public:
    enum class State { running, finished, cancelled };

    struct Services {
        AlertPresenter *alerts;
        MediaOperations operations = MediaOperations::inProcess();
        BatchRun run = [](VideoProcessor &batch) { batch.processAll(); };
        /// On the interface thread, when the batch has returned, also when the sheet is gone by then.
        std::function<void()> runEnded = {};
        /// Shows the outputs in the file manager.
        std::function<void(const std::filesystem::path &folder, const std::vector<std::filesystem::path> &outputs)>
            showInFolder = {};
    };

    ProgressViewController(std::shared_ptr<const ConversionSettings> settings, Services services,
                           QWidget *parent = nullptr);
    ~ProgressViewController() override;

    /// Builds the interface and starts the batch; once, when the sheet has its window.
    void viewDidLoad();
    void fitInto(QSize room) override;

    State state() const { return state_; }
    bool isCancelled() const { return state_ == State::cancelled; }
    const std::shared_ptr<VideoProcessor> &runningProcessor() const { return processor; }

    void updateProgress(std::int64_t current, std::int64_t total, const std::string &fileName);
    void updateFrameProgress(std::int64_t current, std::int64_t total);
    void noteResult(const FileResult &result);
    void showSkipped(const std::string &fileName, const std::string &reason);
    void conversionFinished(bool success, const std::string &message);
    void updateElapsedTime();
    /// While running: asks whether to stop.
    void cancelTapped();
    /// After the end: puts the sheet away.
    void closeTapped();
    /// Stops the run and puts the sheet away, without asking.
    void stop();

    /// When the run started; moved by tests.
    std::optional<std::chrono::steady_clock::time_point> startTime;

signals:
    /// The sheet wants to go: closed or stopped.
    void dismissed();
    /// How much of the whole batch is done, 0 to 1, frames of the current file included.
    void batchProgressed(double fraction);
    void batchFinished(bool success, const QString &message);

protected:
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void loadView();
    void buildInterface();
    ElidedLabel *addLabel(const char *name, const std::string &text, const QColor &colour);
    void layoutWidgets();
    void startProcessing();
    void connectProcessor();
    void confirmCancel();
    void endQuestion();
    void turnIntoCloseButton();
    void applyColours();
    void showBatchFraction(double fraction);
    std::optional<double> frameRate(std::int64_t current);
    BatchEnd batchEnd(bool success, const std::string &message) const;
    void showEnd(const std::string &title);
    void showResult(const Alert &alert);
    void buttonPressed();

    std::shared_ptr<const ConversionSettings> settings;
    std::shared_ptr<VideoProcessor> processor;
    Services services_;
    State state_ = State::running;
    PointScale scale_ = PointScale::current();
    QLabel *titleLabel = nullptr;
    BarIndicator *fileProgressBar = nullptr;
    QLabel *fileProgressLabel = nullptr;
    BarIndicator *overallProgress = nullptr;
    QLabel *overallLabel = nullptr;
    ElidedLabel *fileNameLabel = nullptr;
    QLabel *fileCountLabel = nullptr;
    QLabel *statusLabel = nullptr;
    ColouredButton *cancelButton = nullptr;
    QLabel *elapsedLabel = nullptr;
    QTimer *timerUpdateTimer = nullptr;

    std::vector<std::pair<QLabel *, QColor>> labels_; ///< with their usual colours
    QPointer<QWidget> question_;                      ///< stands for the stop confirmation while that is open
    std::int64_t filesDone_ = 0;
    std::int64_t filesTotal_ = 0;
    double fraction_ = 0; ///< of the whole batch
    /// Where the speed of the current file is counted from.
    struct FrameReport {
        std::chrono::steady_clock::time_point time;
        std::int64_t frame = 0;
    };
    std::optional<FrameReport> firstReport_;
    std::int64_t skipped_ = 0;
    std::int64_t warned_ = 0; ///< converted files that have warnings
    std::set<std::string> skipReasons_;
    std::vector<std::filesystem::path> outputs_;
    std::string details_; ///< what was skipped or failed, and warnings, one a line
};

} // namespace lumetwin
