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

/// Runs a whole batch on the calling thread, which is the batch's thread.
using BatchRun = std::function<void(VideoProcessor &processor)>;

/// The sheet that runs one batch and shows its progress. It may be destroyed while the batch still runs.
class ProgressViewController : public Sheet {
    Q_OBJECT

public:
    enum class State { running, finished, cancelled };

    struct Services {
        AlertPresenter *alerts;
        MediaOperations operations = MediaOperations::inProcess();
        BatchRun run = [](VideoProcessor &batch) { batch.processAll(); };
        /// Called on the interface thread when the batch has returned, even when the sheet is gone by then.
        std::function<void()> runEnded = {};
        /// Shows the outputs in the file manager.
        std::function<void(const std::filesystem::path &folder, const std::vector<std::filesystem::path> &outputs)>
            showInFolder = {};
        /// Called on the interface thread for each file, even when the sheet is gone by then.
        std::function<void(const FileResult &result)> fileEnded = {};
    };

    ProgressViewController(std::shared_ptr<const ConversionSettings> settings, Services services,
                           QWidget *parent = nullptr);
    ~ProgressViewController() override;

    /// Builds the interface and starts the batch. Called once, when the sheet is in its window.
    void viewDidLoad();
    void fitInto(QSize room) override;

    State state() const { return state_; }
    bool isCancelled() const { return state_ == State::cancelled; }
    const std::shared_ptr<VideoProcessor> &runningProcessor() const { return processor; }

    void updateProgress(std::int64_t current, std::int64_t total, const std::string &fileName);
    void updateFrameProgress(std::int64_t current, std::int64_t total);
    void addResult(const FileResult &result);
    void showSkipped(const std::string &fileName, const std::string &reason);
    void conversionFinished(bool success, const std::string &message);
    void updateElapsedTime();
    /// While running: asks whether to stop.
    void cancelTapped();
    /// After the end: closes the sheet.
    void closeTapped();
    /// Stops the run and closes the sheet, without asking.
    void stop();

    /// The frames of each file in the order of the run, by which they count in the share of the whole batch. Unless
    /// they are set, all files count the same.
    void setFrames(std::vector<double> frames) { frames_ = std::move(frames); }

    /// When the run started. Tests change it.
    std::optional<std::chrono::steady_clock::time_point> startTime;

signals:
    /// The sheet was closed or the run stopped; the receiver removes the sheet.
    void dismissed();
    /// The finished share of the whole batch, 0 to 1, including the frames of the current file.
    void batchProgressed(double fraction);
    void batchFinished(bool success, const QString &message);
    void fileBegan(const std::string &name);
    /// 0 to 1.
    void fileProgressed(double fraction);

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
    void closeStopQuestion();
    void turnIntoCloseButton();
    void applyColours();
    void showBatchFraction(double fraction);
    std::optional<double> frameRate(std::int64_t current);
    BatchResult batchResult(bool success, const std::string &message) const;
    void showTitle(const std::string &title);
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

    std::vector<std::pair<QLabel *, QColor>> labels_; ///< and their colours, except in high contrast
    QPointer<QWidget> stopQuestionParent_;            ///< parent of the stop question while it is open
    std::int64_t filesDone_ = 0;
    std::int64_t filesTotal_ = 0;
    std::vector<double> frames_;
    double fraction_ = 0; ///< finished share of the whole batch
    /// The first frame report of the current file, for its speed.
    struct FrameReport {
        std::chrono::steady_clock::time_point time;
        std::int64_t frame = 0;
    };
    std::optional<FrameReport> firstReport_;
    std::int64_t skipped_ = 0;
    std::int64_t warned_ = 0; ///< converted files that have warnings
    std::set<std::string> skipReasons_;
    std::vector<std::filesystem::path> outputs_;
    std::string details_; ///< skipped and failed files, and warnings, one in each line
};

} // namespace lumetwin
