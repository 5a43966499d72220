// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/parent/WorkerProcess.h"

#include "worker/parent/ProcessStart.h"
#include "worker/protocol/ProtocolError.h"

#include <array>
#include <cerrno>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <utility>

namespace lumetwin::worker {
namespace {

using Kind = WorkerFailure::Kind;

WorkerFailure failureOf(int status) {
    if (WIFSIGNALED(status))
        return {Kind::signal, WTERMSIG(status)};
    return {Kind::exited, WEXITSTATUS(status)};
}

/// The answer of a process that was asked to fork. Throws WorkerFailure.
pid_t forked(WorkerProcess &original) {
    constexpr std::chrono::minutes atMost{2};
    const std::optional<Answer> answer = original.next(atMost);
    if (!answer)
        throw WorkerFailure{Kind::timeout, static_cast<int>(std::chrono::seconds(atMost).count())};
    const auto *forked = std::get_if<Forked>(&*answer);
    if (!forked)
        throw WorkerFailure{Kind::invalidAnswer};
    if (forked->process <= 0)
        throw WorkerFailure{Kind::noStart, -forked->process};
    return forked->process;
}

} // namespace

WorkerProcess::WorkerProcess(const std::filesystem::path &program) {
    try {
        auto [ours, theirs] = Channel::makePair();
        process_ = startProcess(program, theirs.get());
        channel_.emplace(std::move(ours));
    } catch (const std::system_error &error) {
        throw WorkerFailure{Kind::noStart, error.code().value()};
    }
}

WorkerProcess::WorkerProcess(WorkerProcess &original) {
    try {
        auto [ours, theirs] = Channel::makePair();
        original.send(ForkRequest{}, std::array{theirs.get()});
        process_ = forked(original);
        channel_.emplace(std::move(ours));
    } catch (const std::system_error &error) {
        throw WorkerFailure{Kind::noStart, error.code().value()};
    }
}

WorkerProcess::~WorkerProcess() {
    end();
}

void WorkerProcess::end() {
    if (process_ != 0)
        endProcess(std::exchange(process_, 0));
}

void WorkerProcess::send(const Request &request, std::span<const int> descriptors) {
    channel_->send(encode(request), descriptors);
}

std::optional<Answer> WorkerProcess::next(std::chrono::milliseconds atMost) {
    if (!channel_->wait(atMost))
        return std::nullopt;
    try {
        const std::optional<Channel::Message> message = channel_->receive();
        if (!message)
            throw endReason();
        return decodeAnswer(message->content);
    } catch (const ProtocolError &) {
        end();
        throw WorkerFailure{Kind::invalidAnswer};
    }
}

/// A process that has closed its end of the channel normally ends at once. If it does not, it misbehaves and is killed.
WorkerFailure WorkerProcess::endReason() {
    using namespace std::chrono_literals;
    const auto deadline = std::chrono::steady_clock::now() + 2s;
    while (std::chrono::steady_clock::now() < deadline) {
        int status = 0;
        const pid_t collected = waitpid(process_, &status, WNOHANG);
        if (collected == process_) {
            process_ = 0;
            return failureOf(status);
        }
        if (collected < 0 && errno != EINTR)
            break;
        std::this_thread::sleep_for(1ms);
    }
    end();
    return {Kind::invalidAnswer};
}

} // namespace lumetwin::worker
