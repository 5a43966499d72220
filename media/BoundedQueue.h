// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <utility>

namespace lumetwin::media {

/// Passes items between threads in order. At most `bound` items wait.
template <typename Item> class BoundedQueue {
public:
    explicit BoundedQueue(std::size_t bound) : bound_(bound) {}

    /// Waits until there is space. Returns false, without adding the item, when the queue is closed.
    bool push(Item item) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return closed_ || items_.size() < bound_; });
        if (closed_)
            return false;
        items_.push_back(std::move(item));
        changed_.notify_all();
        return true;
    }

    /// Waits for an item. Nothing once the queue is closed and empty; where it was closed by an error, that is thrown
    /// first, once.
    std::optional<Item> pop() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return closed_ || !items_.empty(); });
        if (items_.empty()) {
            if (error_)
                std::rethrow_exception(std::exchange(error_, nullptr));
            return std::nullopt;
        }
        Item item = std::move(items_.front());
        items_.pop_front();
        changed_.notify_all();
        return item;
    }

    /// Accepts no more items. Waiting items can still be popped.
    void close() {
        const std::lock_guard lock(mutex_);
        closed_ = true;
        changed_.notify_all();
    }

    /// The same, because of an error that the taker is to know of.
    void close(std::exception_ptr error) {
        const std::lock_guard lock(mutex_);
        closed_ = true;
        error_ = std::move(error);
        changed_.notify_all();
    }

    /// Closes the queue and drops the waiting items.
    void discard() {
        std::deque<Item> dropped;
        const std::lock_guard lock(mutex_);
        closed_ = true;
        error_ = nullptr;
        dropped.swap(items_);
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Item> items_;
    std::size_t bound_;
    bool closed_ = false;
    std::exception_ptr error_;
};

} // namespace lumetwin::media
