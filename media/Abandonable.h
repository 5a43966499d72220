// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Cancellation.h"
#include "media/LingeringThreads.h"

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <type_traits>
#include <utility>

namespace lumetwin::media {

/// Runs work that cannot be stopped, such as a call of a library, on a new thread and returns its result. When
/// cancelled, it throws Cancelled at once, while the thread continues until the library returns. So the work must own
/// everything that it uses. It gets a Cancellation that stays valid.
template <typename Work>
std::invoke_result_t<Work, const Cancellation &> abandonable(const Cancellation &cancellation, Work work) {
    using Result = std::invoke_result_t<Work, const Cancellation &>;
    constexpr std::chrono::milliseconds interval{20};
    const auto abandoned = std::make_shared<std::atomic<bool>>(false);
    std::packaged_task<Result()> task([abandoned, work = std::move(work)]() mutable {
        return work(Cancellation([abandoned] { return abandoned->load(); }));
    });
    std::future<Result> result = task.get_future();
    std::thread worker(std::move(task));
    while (result.wait_for(interval) != std::future_status::ready)
        if (cancellation.requested()) {
            *abandoned = true;
            lingering::leave(std::move(worker));
            throw Cancelled{};
        }
    worker.join();
    return result.get();
}

} // namespace lumetwin::media
