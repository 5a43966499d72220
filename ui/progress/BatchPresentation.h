// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/FileResult.h"
#include "ui/form/FormServices.h"

#include <QObject>
#include <QPointer>

#include <memory>
#include <string>

class QWidget;

namespace lumetwin {

class ConversionSettings;
class ProgressViewController;
class SheetOverlay;

/// Presents batches on a content widget, one at a time. It covers the content with the progress sheet, and waits for
/// the end of the batch's thread, which may come after the sheet was closed. The destructor stops a batch that still
/// runs.
class BatchPresentation : public QObject {
    Q_OBJECT

public:
    enum class State {
        idle,
        presented, ///< the sheet covers the content
        stopping,  ///< the sheet is closed, but the batch's thread still reads the settings
    };

    /// Both arguments must outlive this object.
    BatchPresentation(QWidget *content, const FormServices &services);
    ~BatchPresentation() override;

    /// Starts a batch. Allowed only in state idle.
    void present(const std::shared_ptr<const ConversionSettings> &settings);

    State state() const;
    /// The sheet of the current run; null between runs.
    ProgressViewController *sheet() const { return sheet_; }
    /// Whether a batch is running and has not been stopped.
    bool isConverting() const;

signals:
    void batchStarted();
    /// 0 to 1.
    void batchProgressed(double fraction);
    void batchFinished(bool success, const QString &message);
    /// The run has finished or was stopped. In the first case the sheet still shows the result.
    void batchEnded();
    void stateChanged();
    void fileBegan(const std::string &name);
    /// 0 to 1.
    void fileProgressed(double fraction);
    /// Also for the files of a run that was stopped.
    void fileEnded(const FileResult &result);
    /// The thread of the batch has ended.
    void threadLeft();

private:
    ProgressViewController *makeSheet(const std::shared_ptr<const ConversionSettings> &settings);
    void dismissSheet();
    void threadEnded();

    QWidget *content_;
    const FormServices &services_;
    ProgressViewController *sheet_ = nullptr;
    QPointer<SheetOverlay> overlay_;
    bool threadRuns_ = false;
};

} // namespace lumetwin
