// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/form/FormServices.h"

#include <QObject>
#include <QPointer>

#include <memory>

class QWidget;

namespace lumetwin {

class ConversionSettings;
class ProgressViewController;
class SheetOverlay;

/// Presents batches on a content, one at a time: covers the content with the progress sheet and follows the batch to
/// the end of its thread, which may come after the sheet has gone. A batch that still runs when this goes is stopped.
class BatchPresentation : public QObject {
    Q_OBJECT

public:
    enum class State {
        idle,
        presented, ///< the sheet covers the content
        stopping,  ///< the sheet has gone, but the batch's thread still reads the settings
    };

    /// Both outlive this.
    BatchPresentation(QWidget *content, const FormServices &services);
    ~BatchPresentation() override;

    /// Starts a batch, while idle.
    void present(const std::shared_ptr<const ConversionSettings> &settings);

    State state() const;
    /// The sheet of the current run; none between runs.
    ProgressViewController *sheet() const { return sheet_; }
    /// Whether a batch runs that has not been stopped.
    bool isConverting() const;

signals:
    void batchStarted();
    /// 0 to 1.
    void batchProgressed(double fraction);
    void batchFinished(bool success, const QString &message);
    /// The run is over or stopped: nothing shows it any more, or the sheet shows its end.
    void batchEnded();
    void stateChanged();

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
