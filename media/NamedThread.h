// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <future>
#include <thread>
#include <utility>

#include <pthread.h>

namespace lumetwin::media {

/// A thread of a name, of which 15 characters are kept. Its destructor waits for its end.
class NamedThread {
public:
    NamedThread() = default;
    template <typename Work> NamedThread(const char *name, Work work) {
        std::packaged_task<void()> task([name, work = std::move(work)]() mutable {
            pthread_setname_np(pthread_self(), name);
            work();
        });
        end_ = task.get_future();
        thread_ = std::thread(std::move(task));
    }
    NamedThread(NamedThread &&) = default;
    NamedThread &operator=(NamedThread &&) = default; ///< of one that does not run
    ~NamedThread() {
        if (thread_.joinable())
            thread_.join();
    }

    /// Whether it was started, and nobody has waited for its end yet.
    bool runs() const { return thread_.joinable(); }

    bool endsWithin(std::chrono::milliseconds time) const { return end_.wait_for(time) == std::future_status::ready; }

    /// Waits for the end. Throws what the work threw.
    void wait() {
        thread_.join();
        end_.get();
    }

    /// The thread, for who waits for it instead. What its work holds goes when it ends.
    std::thread release() {
        end_ = {}; // which holds the work, too
        return std::move(thread_);
    }

private:
    std::thread thread_;
    std::future<void> end_;
};

} // namespace lumetwin::media
