// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/EarlyWork.h"

#include <system_error>
#include <utility>

namespace lumetwin {

namespace {

/// Two photos of 24 megapixels, ten of 4.8. A conversion needs up to 6 bytes for each.
constexpr std::int64_t mostPixels = 48'000'000;

} // namespace

EarlyWork::EarlyWork(int mostFiles, std::function<void(FileTask &)> perform)
    : mostFiles_(mostFiles), perform_(std::move(perform)) {}

EarlyWork::~EarlyWork() {
    for (auto &[index, job] : jobs_) {
        job->thread.join();
        job->task->discard();
    }
}

std::size_t EarlyWork::reach() const {
    // Files that are done wait for a slow one before them.
    return mostFiles_ > 1 ? 2 * static_cast<std::size_t>(mostFiles_) : 0;
}

bool EarlyWork::isDone(const Job &job) const {
    const std::scoped_lock lock(mutex_);
    return job.isDone;
}

bool EarlyWork::hasRoom(std::int64_t pixels) const {
    int files = 0;
    for (const auto &[index, job] : jobs_)
        if (!isDone(*job)) {
            ++files;
            pixels += job->pixels;
        }
    return files == 0 || (files < mostFiles_ && pixels <= mostPixels);
}

bool EarlyWork::begin(std::size_t index, std::unique_ptr<FileTask> task, std::int64_t pixels) {
    auto job = std::make_unique<Job>();
    job->task = std::move(task);
    job->pixels = pixels;
    Job &begun = *job;
    jobs_.emplace(index, std::move(job));
    try {
        begun.thread = std::thread([this, &begun] {
            perform_(*begun.task);
            const std::scoped_lock lock(mutex_);
            begun.isDone = true;
            ++ends_;
            ended_.notify_one();
        });
    } catch (const std::system_error &) {
        jobs_.erase(index);
        return false;
    }
    return true;
}

std::unique_ptr<FileTask> EarlyWork::take(std::size_t index, const std::function<void()> &meanwhile) {
    const auto found = jobs_.find(index);
    if (found == jobs_.end())
        return nullptr;
    std::size_t ends = 0;
    while (!isDone(*found->second)) {
        waitForNextEnd(ends);
        meanwhile();
    }
    found->second->thread.join();
    std::unique_ptr<FileTask> task = std::move(found->second->task);
    jobs_.erase(found);
    return task;
}

/// ends: how many ends the caller knows of.
void EarlyWork::waitForNextEnd(std::size_t &ends) {
    std::unique_lock lock(mutex_);
    ended_.wait(lock, [&] { return ends_ > ends; });
    ends = ends_;
}

} // namespace lumetwin
