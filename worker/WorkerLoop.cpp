// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/WorkerLoop.h"

#include "engine/ConversionInput.h"
#include "engine/texts/Texts.h"
#include "media/DecodingThreads.h"
#include "media/InputFile.h"
#include "media/OutputFile.h"
#include "media/SignsOfLife.h"
#include "worker/protocol/ProtocolError.h"

#include <unistd.h>
#include <utility>

namespace lumetwin::worker {
namespace {

void expectDescriptors(const std::vector<media::Descriptor> &descriptors, std::size_t count) {
    if (descriptors.size() != count)
        throw ProtocolError("other descriptors than asked for");
}

/// Takes over the descriptors of the input: the file, and the file of the right eye where there is one.
ConversionInput inputOf(std::vector<media::Descriptor> &descriptors, const std::filesystem::path &file,
                        const std::optional<std::filesystem::path> &rightEye) {
    ConversionInput input(media::InputFile(descriptors[0].release(), file));
    if (rightEye)
        input.rightEye.emplace(descriptors[1].release(), *rightEye);
    return input;
}

} // namespace

int WorkerLoop::run() {
    constexpr std::size_t mostDescriptors = 3;
    while (std::optional<Channel::Message> message = (giveSignsOfLife(), channel_.receive(mostDescriptors)))
        std::visit([&](const auto &request) { handle(request, std::move(message->descriptors)); },
                   decodeRequest(message->content));
    _exit(0); // does not wait for a running conversion
}

void WorkerLoop::giveSignsOfLife() {
    constexpr std::chrono::seconds interval{1};
    while (conversion_.joinable() && !channel_.wait(interval))
        if (const std::uint64_t signs = media::signsOfLife(); std::exchange(lastSigns_, signs) != signs)
            answer(SignOfLife{});
}

void WorkerLoop::answer(const Answer &answer) {
    if (!channel_.send(encode(answer)))
        _exit(0); // the parent is gone
}

void WorkerLoop::handle(const LookRequest &request, std::vector<media::Descriptor> descriptors) {
    expectDescriptors(descriptors, request.rightEye ? 2 : 1);
    setTextLocale(request.language);
    const ConversionInput input = inputOf(descriptors, request.input, request.rightEye);
    try {
        if (request.kind == LookRequest::Kind::look)
            answer(operations_.look(input));
        else if (request.kind == LookRequest::Kind::lookClosely)
            answer(operations_.lookClosely(input));
        else if (request.kind == LookRequest::Kind::examine)
            answer(operations_.examine(input, request.layout.value()));
        else
            answer(operations_.measure(input));
    } catch (...) {
        answer(Failure{std::current_exception()});
    }
}

void WorkerLoop::handle(const DrawRequest &request, std::vector<media::Descriptor> descriptors) {
    expectDescriptors(descriptors, request.rightEye ? 3 : 2);
    setTextLocale(request.language);
    const media::OutputFile pixels(descriptors.back().release(), request.input, media::OutputFile::OldContent::kept);
    const ConversionInput input = inputOf(descriptors, request.input, request.rightEye);
    try {
        answer(operations_.drawPreview(input, request.preview, pixels));
    } catch (...) {
        answer(Failure{std::current_exception()});
    }
}

void WorkerLoop::handle(const ConvertRequest &request, std::vector<media::Descriptor> descriptors) {
    expectDescriptors(descriptors, request.rightEye ? 3 : 2);
    if (conversion_.joinable())
        throw ProtocolError("a second conversion");
    setTextLocale(request.language);
    if (request.oneDecodingThread)
        media::decodeWithOneThread();
    media::OutputFile output(descriptors[1].release(), request.output);
    descriptors.erase(descriptors.begin() + 1);
    ConversionInput input = inputOf(descriptors, request.input, request.rightEye);
    input.disparityAdjustment = request.disparityAdjustment;
    conversion_ = std::thread(
        [this, request, input = std::move(input), output = std::move(output)] { convert(request, input, output); });
}

void WorkerLoop::handle(const CancelRequest &, std::vector<media::Descriptor> descriptors) {
    expectDescriptors(descriptors, 0);
    cancelRequested_ = true;
}

void WorkerLoop::handle(const ForkRequest &, std::vector<media::Descriptor>) {
    throw ProtocolError("a worker does not fork");
}

void WorkerLoop::convert(const ConvertRequest &request, const ConversionInput &input, const media::OutputFile &output) {
    const ConversionControl control{.cancelRequested = &cancelRequested_,
                                    .onFrameProgress = [this](std::int64_t frame, std::int64_t frames) {
                                        answer(Progress{frame, frames});
                                    }};
    try {
        answer(operations_.converter(request.kind)(*request.settings, input, output, control, request.system));
    } catch (...) {
        answer(Failure{std::current_exception()});
    }
    // No clean-up: the kernel frees memory and threads faster.
    _exit(0);
}

} // namespace lumetwin::worker
