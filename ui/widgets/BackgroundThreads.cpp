// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/BackgroundThreads.h"

#include <algorithm>
#include <utility>

#ifdef __linux__
#include <pthread.h>
#endif

namespace lumetwin {

namespace {

void nameThisThread([[maybe_unused]] const char *name) {
#ifdef __linux__
    pthread_setname_np(pthread_self(), name);
#endif
}

} // namespace

BackgroundThreads &BackgroundThreads::shared() {
    // Never destroyed: a thread that the program could not wait for may still end.
    static auto *threads = new BackgroundThreads;
    return *threads;
}

void BackgroundThreads::run(const char *name, std::function<void()> work) {
    const std::lock_guard guard(lock_);
    joinEnded();
    Run &run = runs_.emplace_back();
    run.thread = std::thread([this, &run, name, work = std::move(work)]() mutable {
        nameThisThread(name);
        work();
        work = nullptr; // what the work holds goes before the thread counts as ended
        const std::lock_guard ending(lock_);
        run.ended = true;
        oneEnded_.notify_all();
    });
}

bool BackgroundThreads::waitForAll(std::chrono::milliseconds atMost) {
    std::unique_lock guard(lock_);
    oneEnded_.wait_for(guard, atMost, [this] {
        return std::all_of(runs_.begin(), runs_.end(), [](const Run &run) { return run.ended; });
    });
    joinEnded();
    return runs_.empty();
}

/// With lock_ held: an ended thread needs it no more.
void BackgroundThreads::joinEnded() {
    runs_.remove_if([](Run &run) {
        if (run.ended)
            run.thread.join();
        return run.ended;
    });
}

} // namespace lumetwin
