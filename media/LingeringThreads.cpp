// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/LingeringThreads.h"

#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

namespace lumetwin::media::lingering {

namespace {

class Threads {
public:
    ~Threads() {
        for (std::thread &thread : threads_)
            thread.join();
    }

    void add(std::thread thread) {
        const std::scoped_lock lock(mutex_);
        ++running_;
        // Another thread waits for it, so that any() knows when it has ended.
        threads_.emplace_back([this, thread = std::move(thread)]() mutable {
            thread.join();
            --running_;
        });
    }

    bool anyRuns() const { return running_ > 0; }

private:
    std::mutex mutex_;
    std::vector<std::thread> threads_;
    std::atomic<int> running_ = 0;
};

Threads &threads() {
    static Threads all;
    return all;
}

} // namespace

void leave(std::thread thread) {
    threads().add(std::move(thread));
}

bool any() {
    return threads().anyRuns();
}

} // namespace lumetwin::media::lingering
