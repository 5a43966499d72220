// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"
#include "worker/protocol/Answer.h"
#include "worker/protocol/Channel.h"
#include "worker/protocol/Request.h"

#include <atomic>
#include <thread>

namespace lumetwin::worker {

/// Receives requests and answers them. A conversion runs on its own thread, so that a request to stop is received
/// during the conversion.
class WorkerLoop {
public:
    WorkerLoop(Channel &channel, const MediaOperations &operations) : channel_(channel), operations_(operations) {}

    /// Ends the process when the other end of the channel is closed and after a conversion. Throws ProtocolError.
    int run();

private:
    void handle(const LookRequest &request, std::vector<media::Descriptor> descriptors);
    void handle(const DrawRequest &request, std::vector<media::Descriptor> descriptors);
    void handle(const ConvertRequest &request, std::vector<media::Descriptor> descriptors);
    void handle(const CancelRequest &request, std::vector<media::Descriptor> descriptors);
    [[noreturn]] void handle(const ForkRequest &request, std::vector<media::Descriptor> descriptors);
    [[noreturn]] void convert(const ConvertRequest &request, const ConversionInput &input,
                              const media::OutputFile &output);
    void answer(const Answer &answer);
    /// During a conversion, reports about once per second that it makes progress, until a request arrives.
    void giveSignsOfLife();

    Channel &channel_;
    const MediaOperations &operations_;
    std::atomic<bool> cancelRequested_ = false;
    std::thread conversion_;
    std::uint64_t lastSigns_ = 0;
};

} // namespace lumetwin::worker
