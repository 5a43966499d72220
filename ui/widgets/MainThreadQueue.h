// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include <deque>
#include <functional>
#include <mutex>

namespace lumetwin {

/// Runs tasks from any thread on the interface thread, in the order in which they were posted. It stops after some
/// milliseconds and continues later, so that many tasks do not block drawing and input.
class MainThreadQueue : public QObject {
    Q_OBJECT

public:
    /// The program's queue. A QCoreApplication must exist.
    static MainThreadQueue &shared();

    /// May be called on any thread. The task must hold weak references to the objects that it uses, because they may be
    /// gone when it runs.
    void post(std::function<void()> task);

    /// Runs all waiting tasks. Call it on the interface thread.
    void drain();

protected:
    bool event(QEvent *event) override;

private:
    std::function<void()> takeNextTask();
    bool runSlice();

    std::mutex lock_;
    std::deque<std::function<void()>> tasks_; // guarded by lock_
    bool scheduled_ = false;                  // guarded by lock_
};

} // namespace lumetwin
