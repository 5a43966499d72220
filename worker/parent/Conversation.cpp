// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/parent/Conversation.h"

#include <algorithm>
#include <utility>

namespace lumetwin::worker {
namespace {

using namespace std::chrono_literals;

/// How often a request to stop is checked.
constexpr std::chrono::milliseconds interval = 20ms;
/// Progress is reported at most this often, so a worker cannot flood the window with it.
constexpr std::chrono::milliseconds progressInterval = 5ms;

} // namespace

Answer Conversation::finalAnswer() {
    while (true) {
        stopWhereAsked();
        if (isOverdue())
            return Outcome{};
        try {
            std::optional<Answer> answer = worker_.next(interval);
            if (!answer)
                waitFor(interval);
            else if (isFinal(*answer))
                return std::move(*answer);
        } catch (const WorkerFailure &) {
            if (stopping_)
                return Outcome{}; // the conversion was stopped, so its failure does not matter
            throw;
        }
    }
}

void Conversation::stopWhereAsked() {
    if (stopping_ || !control_.cancelled())
        return;
    worker_.send(CancelRequest{});
    stopping_ = Clock::now();
}

bool Conversation::isOverdue() const {
    return stopping_ && Clock::now() - *stopping_ > timeouts_.stop;
}

/// Adds up waiting times instead of comparing clock times: time in which this program was suspended does not count.
void Conversation::waitFor(std::chrono::milliseconds waited) {
    if (pending_)
        reportProgress();
    if (silence_.add(waited) > timeouts_.answer)
        throw WorkerFailure{WorkerFailure::Kind::timeout,
                            static_cast<int>(std::chrono::ceil<std::chrono::seconds>(timeouts_.answer).count())};
}

bool Conversation::isFinal(const Answer &answer) {
    silence_.reset();
    if (const auto *ready = std::get_if<Ready>(&answer)) {
        if (ready->version != LUMETWIN_VERSION)
            throw WorkerFailure{WorkerFailure::Kind::invalidAnswer};
        if (onReady)
            onReady(ready->confinement);
        return false;
    }
    if (const auto *progress = std::get_if<Progress>(&answer)) {
        note(*progress);
        return false;
    }
    if (std::holds_alternative<SignOfLife>(answer))
        return false;
    if (pending_)
        reportProgress();
    return true;
}

void Conversation::note(const Progress &progress) {
    pending_ = progress;
    if (Clock::now() - lastReport_ >= progressInterval)
        reportProgress();
}

void Conversation::reportProgress() {
    const Progress progress = *std::exchange(pending_, std::nullopt);
    lastReport_ = Clock::now();
    if (control_.onFrameProgress)
        control_.onFrameProgress(progress.frame, progress.frames);
}

} // namespace lumetwin::worker
