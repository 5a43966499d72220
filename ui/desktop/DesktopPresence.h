// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/desktop/SleepInhibitor.h"

#include <QObject>
#include <QPointer>
#include <QString>

class QWidget;

namespace lumetwin {

/// Reports a run to the desktop: progress on the launcher, a notification at the end when the window is not in front,
/// and a lock against sleep. When a service is missing, nothing happens.
class DesktopPresence : public QObject {
    Q_OBJECT

public:
    /// desktopId: the name of the desktop entry, without ".desktop".
    DesktopPresence(QWidget *window, const QString &desktopId);
    ~DesktopPresence() override;

    void batchStarted();
    /// 0 to 1.
    void batchProgressed(double fraction);
    void batchFinished(bool success, const QString &message);
    /// The run has finished or was stopped.
    void batchEnded();

private:
    void updateLauncher(bool visible, double fraction);
    bool isInFront() const;

    QPointer<QWidget> window_;
    QString desktopId_;
    SleepInhibitor inhibitor_;
    int shownPercent_ = -1;
};

} // namespace lumetwin
