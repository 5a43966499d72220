// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace lumetwin {

/// The threads that run batches and long checks, beside the interface thread. The program waits for them before it
/// ends, so that a stopped batch can remove its partial files.
class BackgroundThreads {
public:
    static BackgroundThreads &shared();

    /// Runs the work on a new thread. name: at most 15 bytes; system monitors show it.
    void run(const char *name, std::function<void()> work);

    /// Waits until all threads have ended, but not longer than atMost. Returns whether all have ended.
    bool waitForAll(std::chrono::milliseconds atMost);

private:
    struct Run {
        std::thread thread;
        bool ended = false;
    };

    void joinEndedThreads();

    std::mutex lock_;
    std::condition_variable threadEnded_;
    std::list<Run> runs_; // guarded by lock_
};

} // namespace lumetwin
