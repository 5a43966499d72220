// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/BackgroundThreads.h"

#include <algorithm>
#include <utility>

#ifdef __linux__
#include <pthread.h>
#endif

namespace lumetwin {

namespace {

void setThreadName([[maybe_unused]] const char *name) {
#ifdef __linux__
    pthread_setname_np(pthread_self(), name);
#endif
}

} // namespace

BackgroundThreads &BackgroundThreads::shared() {
    // Never destroyed, because a thread that the program did not wait for may still use it.
    static auto *threads = new BackgroundThreads;
    return *threads;
}

void BackgroundThreads::run(const char *name, std::function<void()> work) {
    const std::lock_guard guard(lock_);
    joinEndedThreads();
    Run &run = runs_.emplace_back();
    run.thread = std::thread([this, &run, name, work = std::move(work)]() mutable {
        setThreadName(name);
        work();
        work = nullptr; // release what the work holds before the thread counts as ended
        const std::lock_guard ending(lock_);
        run.ended = true;
        threadEnded_.notify_all();
    });
}

bool BackgroundThreads::waitForAll(std::chrono::milliseconds atMost) {
    std::unique_lock guard(lock_);
    threadEnded_.wait_for(guard, atMost, [this] {
        return std::all_of(runs_.begin(), runs_.end(), [](const Run &run) { return run.ended; });
    });
    joinEndedThreads();
    return runs_.empty();
}

/// The caller holds lock_. That cannot block, because an ended thread does not need lock_ any more.
void BackgroundThreads::joinEndedThreads() {
    runs_.remove_if([](Run &run) {
        if (run.ended)
            run.thread.join();
        return run.ended;
    });
}

} // namespace lumetwin
