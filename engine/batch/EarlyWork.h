// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/batch/FileTask.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

namespace lumetwin {

/// Files that are worked on before their turn, each on its own thread, within limits for their number and their pixels.
/// Everything but `perform` is called on one thread.
class EarlyWork {
public:
    /// perform: must not throw. mostFiles: worked on at the same time; 1 or less for no early work.
    EarlyWork(int mostFiles, std::function<void(FileTask &)> perform);
    /// Waits for the threads, and discards what nobody has taken.
    ~EarlyWork();
    EarlyWork(const EarlyWork &) = delete;
    EarlyWork &operator=(const EarlyWork &) = delete;

    /// The first file of which the caller has not decided yet whether it is begun early.
    std::size_t nextToConsider = 0;
    /// The files that may be begun while a file has its turn: those from it on, this many.
    std::size_t reach() const;
    /// Whether a file with this number of pixels may be begun beside those that are worked on. One alone always may.
    bool hasRoom(std::int64_t pixels) const;
    /// Begins a file. Returns false when there is no thread for it.
    bool begin(std::size_t index, std::unique_ptr<FileTask> task, std::int64_t pixels);
    /// Waits until the file is done, and calls `meanwhile` whenever another one is. Then returns its task, or nullptr
    /// when the file was not begun early.
    std::unique_ptr<FileTask> take(std::size_t index, const std::function<void()> &meanwhile);

private:
    struct Job {
        std::unique_ptr<FileTask> task;
        std::int64_t pixels = 0;
        bool isDone = false; // guarded by mutex_
        std::thread thread;
    };

    void waitForNextEnd(std::size_t &ends);
    bool isDone(const Job &job) const;

    int mostFiles_;
    std::function<void(FileTask &)> perform_;
    mutable std::mutex mutex_;
    std::condition_variable ended_;
    std::size_t ends_ = 0; // guarded by mutex_; how many tasks are done
    std::map<std::size_t, std::unique_ptr<Job>> jobs_;
};

} // namespace lumetwin
