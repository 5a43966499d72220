// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "worker/confinement/Confinement.h"
#include "worker/parent/WorkerFailure.h"
#include "worker/protocol/Answer.h"
#include "worker/protocol/Channel.h"
#include "worker/protocol/Request.h"

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <span>

namespace lumetwin::worker {

/// A running process of lumetwin-worker, as the program that started it sees it. The destructor ends the process.
class WorkerProcess {
public:
    /// Executes lumetwin-worker: a process that only forks workers. Does not wait. Throws WorkerFailure.
    explicit WorkerProcess(const std::filesystem::path &program);
    /// Lets that process fork a worker and does not wait until it is ready. Throws WorkerFailure; original cannot be
    /// used after that.
    explicit WorkerProcess(WorkerProcess &original);
    ~WorkerProcess();
    WorkerProcess(const WorkerProcess &) = delete;
    WorkerProcess &operator=(const WorkerProcess &) = delete;

    /// Sends a request. If the worker has ended, next() reports it.
    void send(const Request &request, std::span<const int> descriptors = {});

    /// Returns the next answer, or nothing if none arrives within this time. Throws WorkerFailure when the worker has
    /// ended or sends an invalid answer; the worker cannot be used after that.
    std::optional<Answer> next(std::chrono::milliseconds atMost);

    pid_t number() const { return process_; }

private:
    WorkerFailure endReason();
    void end();

    std::optional<Channel> channel_;
    pid_t process_ = 0; // 0 when endProcess() or waitpid() has taken over
};

} // namespace lumetwin::worker
