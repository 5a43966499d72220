// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include <deque>
#include <functional>
#include <mutex>

namespace lumetwin {

/// Brings work from any thread to the interface thread, in the order in which it was posted. It runs in slices of a
/// few milliseconds, so that a flood of work does not keep the window from drawing and answering.
class MainThreadQueue : public QObject {
    Q_OBJECT

public:
    /// The queue of the program, which must have its application object.
    static MainThreadQueue &shared();

    /// From any thread. The task must hold what it touches weakly.
    void post(std::function<void()> task);

    /// Runs what is waiting, on the interface thread.
    void drain();

protected:
    bool event(QEvent *event) override;

private:
    std::function<void()> next();
    bool runSlice();

    std::mutex lock_;
    std::deque<std::function<void()>> tasks_; // guarded by lock_
    bool scheduled_ = false;                  // guarded by lock_
};

} // namespace lumetwin
