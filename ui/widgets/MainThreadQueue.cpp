// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/MainThreadQueue.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>

#include <utility>

namespace lumetwin {

namespace {

constexpr qint64 sliceMilliseconds = 8;
const QEvent::Type tasksWaitingEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

} // namespace

MainThreadQueue &MainThreadQueue::shared() {
    // Never destroyed, because threads may still post tasks while the program ends.
    static MainThreadQueue *queue = [] {
        auto *made = new MainThreadQueue;
        made->moveToThread(QCoreApplication::instance()->thread());
        return made;
    }();
    return *queue;
}

void MainThreadQueue::post(std::function<void()> task) {
    const std::lock_guard guard(lock_);
    tasks_.push_back(std::move(task));
    if (!std::exchange(scheduled_, true))
        QCoreApplication::postEvent(this, new QEvent(tasksWaitingEvent));
}

std::function<void()> MainThreadQueue::takeNextTask() {
    const std::lock_guard guard(lock_);
    if (tasks_.empty()) {
        scheduled_ = false;
        return {};
    }
    std::function<void()> task = std::move(tasks_.front());
    tasks_.pop_front();
    return task;
}

/// Runs tasks for a few milliseconds. Returns whether more may be waiting.
bool MainThreadQueue::runSlice() {
    QElapsedTimer slice;
    slice.start();
    while (slice.elapsed() < sliceMilliseconds) {
        const std::function<void()> task = takeNextTask();
        if (!task)
            return false;
        task();
    }
    return true;
}

void MainThreadQueue::drain() {
    while (runSlice()) {
    }
}

bool MainThreadQueue::event(QEvent *event) {
    if (event->type() != tasksWaitingEvent)
        return QObject::event(event);
    // The low priority lets input and painting go first.
    if (runSlice())
        QCoreApplication::postEvent(this, new QEvent(tasksWaitingEvent), Qt::LowEventPriority);
    return true;
}

} // namespace lumetwin
