// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionControl.h"
#include "worker/parent/SilentTime.h"
#include "worker/parent/WorkerProcess.h"

#include <chrono>
#include <functional>
#include <optional>

namespace lumetwin::worker {

/// How long a program waits for its worker.
struct Timeouts {
    std::chrono::milliseconds answer = std::chrono::minutes(2); ///< of silence (see SilentTime) while it should work
    std::chrono::milliseconds stop = std::chrono::seconds(1);   ///< from the request to stop until it has stopped
};

/// Waits for the answer to a request that was sent to a worker. Meanwhile it reports progress to the control and sends
/// the user's request to stop to the worker.
class Conversation {
public:
    Conversation(WorkerProcess &worker, const ConversionControl &control, const Timeouts &timeouts)
        : worker_(worker), control_(control), timeouts_(timeouts), silence_(worker.number()) {}

    /// Returns what was asked for (such as MediaFacts or an Outcome), or Failure. When the user stops the conversion
    /// and the worker does not stop in time, returns an Outcome that says that nothing was written. Throws
    /// WorkerFailure.
    Answer finalAnswer();

    /// Called when the worker is ready, unless it is empty.
    std::function<void(const ConfinementReport &)> onReady;

private:
    using Clock = std::chrono::steady_clock;

    void stopWhereAsked();
    bool isOverdue() const;
    void waitFor(std::chrono::milliseconds waited);
    bool isFinal(const Answer &answer);
    void note(const Progress &progress);
    void reportProgress();

    WorkerProcess &worker_;
    const ConversionControl &control_;
    const Timeouts &timeouts_;
    SilentTime silence_;
    std::optional<Clock::time_point> stopping_;
    std::optional<Progress> pending_;
    Clock::time_point lastReport_;
};

} // namespace lumetwin::worker
