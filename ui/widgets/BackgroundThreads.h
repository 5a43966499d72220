// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace lumetwin {

/// The threads on which batches and longer checks run, beside the interface thread. The program waits for them before
/// it ends, so that a stopped batch can clean up behind itself.
class BackgroundThreads {
public:
    static BackgroundThreads &shared();

    /// Runs the work on a thread of its own. name: at most 15 bytes, shown by system monitors.
    void run(const char *name, std::function<void()> work);

    /// Waits until everything has ended, or for the given time. Returns whether everything has ended.
    bool waitForAll(std::chrono::milliseconds atMost);

private:
    struct Run {
        std::thread thread;
        bool ended = false;
    };

    void joinEnded();

    std::mutex lock_;
    std::condition_variable oneEnded_;
    std::list<Run> runs_; // guarded by lock_
};

} // namespace lumetwin
