// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/worker/Behaviours.h"

#include "engine/ConversionInput.h"
#include "engine/photo/SpatialPhotoError.h"
#include "engine/texts/ProcessorError.h"
#include "media/DecodingThreads.h"
#include "media/InputFile.h"
#include "media/MediaError.h"
#include "media/OutputFile.h"
#include "media/SignsOfLife.h"
#include "tests/worker/Attempts.h"
#include "tests/worker/OneProcessor.h"
#include "worker/protocol/Answer.h"
#include "worker/protocol/Channel.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <map>
#include <memory>
#include <new>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace lumetwin::test {
namespace {

using namespace std::chrono_literals;

constexpr int channel = 3;

struct Situation {
    std::filesystem::path inputName;
    int input = -1;
    int output = -1;
    const ConversionControl &control;
};

using Behaviour = void (*)(const Situation &);

void pauseFor(std::chrono::milliseconds time) {
    std::this_thread::sleep_for(time);
}

void copyTheInput(const Situation &now) {
    std::array<char, 256> bytes{};
    const ssize_t count = pread(now.input, bytes.data(), bytes.size(), 0);
    if (count < 0 || pwrite(now.output, bytes.data(), static_cast<std::size_t>(count), 0) != count)
        throw std::system_error(errno, std::generic_category(), "copy");
    for (std::int64_t frame = 1; frame <= 3; ++frame)
        now.control.onFrameProgress(frame, 3);
}

/// The memory is not written, so the machine does not need that much.
void allocateWithoutEnd(const Situation &) {
    constexpr std::size_t block = std::size_t{1} << 30;
    std::vector<std::unique_ptr<char[]>> blocks;
    while (true)
        blocks.emplace_back(new char[block]);
}

void loopWithoutEnd(const Situation &) {
    for (volatile bool forever = true; forever;) {
    }
}

/// Crashes after it has written half a file.
void fallOver(const Situation &now) {
    static_cast<void>(pwrite(now.output, "half a file", 11, 0));
    std::raise(SIGSEGV);
}

void fallOverWithThreads(const Situation &now) {
    if (!media::decodesWithOneThread())
        fallOver(now);
    copyTheInput(now);
}

void sendRubbish(const Situation &) {
    static_cast<void>(write(channel, "\xff\x00 rubbish", 10));
    pauseFor(1h);
}

void sendALot(const Situation &) {
    const std::vector<char> much(100'000, '\x81');
    static_cast<void>(write(channel, much.data(), much.size()));
    pauseFor(1h);
}

void sendDescriptors(const Situation &now) {
    worker::Channel own{media::Descriptor(dup(channel))};
    own.send({{"answer", "alive"}}, std::array{now.input});
    pauseFor(1h);
}

void tellWrongProgress(const Situation &now) {
    now.control.onFrameProgress(-1, 3);
    pauseFor(1h);
}

void answerTwoThings(const Situation &) {
    worker::Channel own{media::Descriptor(dup(channel))};
    own.send(worker::encode(PictureSize{1, 1}));
    pauseFor(1h);
}

void closeTheChannel(const Situation &) {
    shutdown(channel, SHUT_RDWR);
    pauseFor(1h);
}

void waitUntilCancelled(const Situation &now) {
    now.control.onFrameProgress(1, 0);
    while (!now.control.cancelled())
        pauseFor(5ms);
}

void workForLong(const Situation &now) {
    for (int piece = 0; piece < 25; ++piece) {
        media::giveSignOfLife();
        pauseFor(100ms);
    }
    copyTheInput(now);
}

/// Needs 60 ms of the processor, gives no sign meanwhile, and lets others go first.
void workBesideOthers(const Situation &now) {
    useOneProcessor();
    if (setpriority(PRIO_PROCESS, 0, 15) != 0)
        throw std::system_error(errno, std::generic_category(), "setpriority");
    timespec used{};
    while (clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used) == 0 && used.tv_sec == 0 && used.tv_nsec < 60'000'000) {
    }
    copyTheInput(now);
}

void tellEveryFrame(const Situation &now) {
    for (std::int64_t frame = 1; frame <= 20'000; ++frame)
        now.control.onFrameProgress(frame, 20'000);
}

/// Lists open descriptors other than the standard streams, the channel and the two files.
void countDescriptors(const Situation &now) {
    std::string open;
    for (int descriptor = 0; descriptor < 64; ++descriptor)
        if (fcntl(descriptor, F_GETFD) >= 0 && descriptor > channel && descriptor != now.input &&
            descriptor != now.output)
            open += " " + std::to_string(descriptor);
    throw std::runtime_error("open:" + open);
}

void tellEnvironment(const Situation &) {
    std::string all = "environment:";
    for (char **entry = environ; entry && *entry; ++entry)
        all += " " + std::string(*entry);
    throw std::runtime_error(all);
}

void tellThreads(const Situation &) {
    throw std::runtime_error("processors: " + std::to_string(std::thread::hardware_concurrency()));
}

const std::map<std::string, Behaviour> behaviours{
    {"converts", copyTheInput},
    {"allocates without end", allocateWithoutEnd},
    {"loops without end", loopWithoutEnd},
    {"falls over", fallOver},
    {"falls over with several threads", fallOverWithThreads},
    {"aborts", [](const Situation &) { std::abort(); }},
    {"is killed", [](const Situation &) { syscall(SYS_tgkill, getpid(), syscall(SYS_gettid), SIGKILL); }},
    {"ends by itself", [](const Situation &) { _exit(3); }},
    {"sends rubbish", sendRubbish},
    {"sends a lot", sendALot},
    {"sends descriptors", sendDescriptors},
    {"tells of a frame below 0", tellWrongProgress},
    {"answers what was not asked", answerTwoThings},
    {"closes the channel", closeTheChannel},
    {"waits", waitUntilCancelled},
    {"works for long", workForLong},
    {"works beside others", workBesideOthers},
    {"tells every frame", tellEveryFrame},
    {"counts descriptors", countDescriptors},
    {"tells its environment", tellEnvironment},
    {"tells the processors", tellThreads},
    {"fails in the engine", [](const Situation &) { throw processorError(words("error.no.video.track")); }},
    {"fails in a photo",
     [](const Situation &now) { throw SpatialPhotoError::cannotOpenFile(now.inputName, words("reason.damaged")); }},
    {"fails in media",
     [](const Situation &now) {
         throw media::MediaError(now.inputName, media::MediaOperation::decode, -7, media::MediaReason::endsEarly,
                                 "details");
     }},
};

Outcome attempt(const Attempt &attempt, const Surroundings &around) {
    errno = 0;
    if (attempt.act(around) >= 0)
        return {.written = true, .framesWritten = 0, .framesExpected = 0, .warnings = {}};
    throw std::system_error(errno, std::generic_category(), attempt.name);
}

Outcome convert(const ConversionSettings &, const media::InputFile &input, const media::OutputFile &output,
                const ConversionControl &control, SystemVersion) {
    const std::string name = input.path().stem().string();
    for (const Attempt &one : allAttempts())
        if (one.name == name)
            return attempt(one, {input.descriptor(), output.descriptor(), input.path(), output.path()});
    behaviours.at(name)({input.path(), input.descriptor(), output.descriptor(), control});
    if (control.cancelled())
        return {};
    return {.written = true, .framesWritten = 3, .framesExpected = 3, .warnings = {{WarningKind::soundAway, {0.5}}}};
}

/// Returns the process id as the field of view.
MediaFacts look(const media::InputFile &input) {
    const std::string name = input.path().stem().string();
    if (name == "falls over at a look")
        std::raise(SIGSEGV);
    MediaFacts facts;
    facts.isSpatial = true;
    facts.values.horizontalFOV = getpid();
    return facts;
}

/// Returns parts of the layout in the findings.
StereoFindings examine(const ConversionInput &input, const StereoLayout &layout) {
    if (input.path().stem() == "fails in media")
        throw media::MediaError(input.path(), media::MediaOperation::decode, -7, media::MediaReason::endsEarly);
    StereoFindings findings;
    findings.wasExamined = true;
    findings.seen = layout.arrangement;
    findings.looksFlat = layout.isHalf;
    findings.probablySwapped = layout.rightEyeFirst;
    findings.disparity = DisparityFigures{.nearest = -1, .middle = 0.5, .farthest = 2, .vertical = 0};
    return findings;
}

/// What a worker that was taken over tells of the pixels that it has drawn.
PreviewFacts factsOfLies(const std::string &name, const PreviewRequest &request) {
    PreviewFacts facts;
    facts.width = request.maximumWidth;
    facts.height = request.maximumHeight;
    facts.hasBothEyes = true;
    if (name == "lies about the width")
        ++facts.width;
    if (name == "lies about the height")
        facts.height = 1 << 30;
    if (name == "tells of no picture")
        facts.width = 0;
    return facts;
}

/// Waits until somebody writes "go" into the input.
void waitForTheWord(const media::InputFile &input) {
    std::array<std::uint8_t, 2> bytes{};
    while (input.readAt(0, bytes) != bytes.size() || bytes[0] != 'g')
        pauseFor(5ms);
}

/// Fills the pixels with the process id, and the second eye with the number of descriptors: 1 where the right eye has a
/// file of its own.
PreviewFacts draw(const ConversionInput &input, const PreviewRequest &request, const media::OutputFile &pixels) {
    const std::string name = input.path().stem().string();
    if (name == "falls over at a look")
        std::raise(SIGSEGV);
    if (name == "fails in media")
        throw media::MediaError(input.path(), media::MediaOperation::decode, -7, media::MediaReason::endsEarly);
    const PreviewFacts facts = factsOfLies(name, request);
    const std::size_t bytes = std::size_t{4} * static_cast<unsigned>(request.maximumWidth * request.maximumHeight);
    std::vector<std::uint8_t> eye(bytes);
    const pid_t number = getpid();
    std::memcpy(eye.data(), &number, std::min(bytes, sizeof number));
    pixels.writeAt(0, eye);
    std::ranges::fill(eye, input.rightEye ? std::uint8_t{1} : std::uint8_t{0});
    pixels.writeAt(bytes, eye);
    if (name == "cuts the pixels off")
        pixels.truncate(bytes + 1);
    if (name == "makes the pixels larger")
        pixels.truncate(1 << 30);
    if (name == "waits with a preview")
        waitForTheWord(input);
    return facts;
}

PictureSize measure(const media::InputFile &input) {
    std::array<std::uint8_t, 8> bytes{};
    return {static_cast<std::int64_t>(input.readAt(0, bytes)), 1};
}

} // namespace

MediaOperations misbehaviour() {
    return {.look = look,
            .lookClosely = look,
            .examine = examine,
            .measure = measure,
            .drawPreview = draw,
            .convertSpatialVideoToSBS = convert,
            .convertSBSVideoToSpatial = convert,
            .convertSpatialPhotoToSBS = convert,
            .convertSBSImageToSpatial = convert};
}

} // namespace lumetwin::test
