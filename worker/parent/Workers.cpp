// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/parent/Workers.h"

#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"
#include "media/InputFile.h"
#include "media/OutputFile.h"

#include <optional>
#include <utility>
#include <vector>

namespace lumetwin::worker {
namespace {

using Kind = WorkerFailure::Kind;

/// The answer as the expected type. Throws the error of a Failure.
template <typename Wanted> Wanted expected(Answer answer) {
    if (const auto *failure = std::get_if<Failure>(&answer))
        std::rethrow_exception(failure->error);
    if (auto *wanted = std::get_if<Wanted>(&answer))
        return std::move(*wanted);
    throw WorkerFailure{Kind::invalidAnswer};
}

std::optional<std::filesystem::path> pathOf(const std::optional<media::InputFile> &file) {
    return file ? std::optional(file->path()) : std::nullopt;
}

/// Counts itself while it lives.
class Counted {
public:
    explicit Counted(std::atomic<std::size_t> &count) : count_(count) { ++count_; }
    ~Counted() { --count_; }
    Counted(const Counted &) = delete;
    Counted &operator=(const Counted &) = delete;

private:
    std::atomic<std::size_t> &count_;
};

/// Runs a task and turns a WorkerFailure into an error that names the file.
template <typename Work> auto namingFile(const media::InputFile &file, const Work &work) {
    try {
        return work();
    } catch (const WorkerFailure &failure) {
        throw ProcessorError(words(failure, file.path()));
    }
}

} // namespace

Workers::Workers(std::filesystem::path program, Timeouts timeouts)
    : program_(std::move(program)), timeouts_(timeouts) {}

MediaFacts Workers::look(const media::InputFile &input) {
    return namingFile(input, [&] { return expected<MediaFacts>(lookAnswer(LookRequest::Kind::look, input)); });
}

MediaFacts Workers::lookClosely(const ConversionInput &input) {
    return namingFile(input, [&] { return expected<MediaFacts>(lookAnswer(LookRequest::Kind::lookClosely, input)); });
}

StereoFindings Workers::examine(const ConversionInput &input, const StereoLayout &layout) {
    return namingFile(input,
                      [&] { return expected<StereoFindings>(lookAnswer(LookRequest::Kind::examine, input, layout)); });
}

PictureSize Workers::measure(const media::InputFile &input) {
    return namingFile(input, [&] { return expected<PictureSize>(lookAnswer(LookRequest::Kind::measure, input)); });
}

Answer Workers::lookAnswer(LookRequest::Kind kind, const ConversionInput &input,
                           const std::optional<StereoLayout> &layout) {
    const LookRequest request{.kind = kind,
                              .input = input.path(),
                              .language = std::string(textLanguage()),
                              .rightEye = pathOf(input.rightEye),
                              .layout = layout};
    try {
        return inspectorAnswer(taken(inspectors_), request, input);
    } catch (const WorkerFailure &failure) {
        if (!failure.isCrash())
            throw;
        return inspectorAnswer(started(), request, input); // an earlier file may have caused the crash
    }
}

Answer Workers::inspectorAnswer(Worker inspector, const LookRequest &request, const ConversionInput &input) {
    std::vector<int> descriptors{input.descriptor()};
    if (input.rightEye)
        descriptors.push_back(input.rightEye->descriptor());
    inspector->send(request, descriptors);
    Answer answer = Conversation(*inspector, {}, timeouts_).finalAnswer();
    inspectors_.giveBack(std::move(inspector));
    return answer;
}

PreviewFacts Workers::draw(const ConversionInput &input, const PreviewRequest &request,
                           const media::OutputFile &pixels) {
    const DrawRequest toDraw{.preview = request,
                             .input = input.path(),
                             .language = std::string(textLanguage()),
                             .rightEye = pathOf(input.rightEye)};
    return namingFile(input, [&] {
        try {
            return tryToDraw(toDraw, input, pixels);
        } catch (const WorkerFailure &failure) {
            if (!failure.isCrash())
                throw;
            return tryToDraw(toDraw, input, pixels); // an earlier file may have caused the crash
        }
    });
}

PreviewFacts Workers::tryToDraw(const DrawRequest &request, const ConversionInput &input,
                                const media::OutputFile &pixels) {
    Worker painter = taken(painters_);
    std::vector<int> descriptors{input.descriptor()};
    if (input.rightEye)
        descriptors.push_back(input.rightEye->descriptor());
    descriptors.push_back(pixels.descriptor());
    painter->send(request, descriptors);
    Answer answer = Conversation(*painter, {}, timeouts_).finalAnswer();
    if (std::holds_alternative<PreviewFacts>(answer) || std::holds_alternative<Failure>(answer))
        painters_.giveBack(std::move(painter));
    return expected<PreviewFacts>(std::move(answer));
}

Workers::Worker Workers::Idle::take() {
    const std::scoped_lock lock(mutex_);
    if (workers_.empty())
        return nullptr;
    Worker worker = std::move(workers_.back());
    workers_.pop_back();
    return worker;
}

void Workers::Idle::giveBack(Worker worker) {
    const std::scoped_lock lock(mutex_);
    workers_.push_back(std::move(worker));
}

std::size_t Workers::Idle::count() {
    const std::scoped_lock lock(mutex_);
    return workers_.size();
}

Workers::Worker Workers::taken(Idle &idle) {
    Worker worker = idle.take();
    return worker ? std::move(worker) : started();
}

Outcome Workers::convert(ConversionKind kind, const ConversionSettings &settings, const ConversionInput &input,
                         const media::OutputFile &output, const ConversionControl &control, SystemVersion system) {
    ConvertRequest request{.kind = kind,
                           .settings = {std::shared_ptr<void>(), &settings}, // not owned; it outlives the call
                           .system = system,
                           .input = input.path(),
                           .output = output.path(),
                           .language = std::string(textLanguage()),
                           .rightEye = pathOf(input.rightEye),
                           .disparityAdjustment = input.disparityAdjustment};
    return namingFile(input, [&] {
        try {
            return tryToConvert(request, input, output, control);
        } catch (const WorkerFailure &failure) {
            if (!failure.isCrash() || control.cancelled())
                throw;
            const Words what = words(failure);
            if (control.onLog)
                control.onLog("tried once more, with one decoding thread: " + what.english);
            output.truncate(0);
            request.oneDecodingThread = true;
            Outcome outcome = tryToConvert(request, input, output, control);
            outcome.warnings.push_back({WarningKind::triedAgain, {what.shown}});
            return outcome;
        }
    });
}

Outcome Workers::tryToConvert(const ConvertRequest &request, const ConversionInput &input,
                              const media::OutputFile &output, const ConversionControl &control) {
    const Counted running(conversions_);
    const Worker worker = taken(spares_);
    std::vector<int> descriptors{input.descriptor(), output.descriptor()};
    if (input.rightEye)
        descriptors.push_back(input.rightEye->descriptor());
    worker->send(request, descriptors);
    startSpare();
    Conversation conversation(*worker, control, timeouts_);
    conversation.onReady = [&](const ConfinementReport &report) { logConfinement(report, control); };
    return expected<Outcome>(conversation.finalAnswer());
}

void Workers::logConfinement(const ConfinementReport &report, const ConversionControl &control) {
    if (!report.isFull() && control.onLog && !isConfinementLogged_.exchange(true))
        control.onLog("files are worked on in a process that is confined only by: " + describe(report));
}

ConfinementReport Workers::confinement() {
    try {
        const Worker worker = started();
        std::optional<Answer> answer = worker->next(timeouts_.answer);
        return answer ? expected<Ready>(std::move(*answer)).confinement : ConfinementReport{};
    } catch (const WorkerFailure &failure) {
        throw ProcessorError(words(failure));
    }
}

Workers::Worker Workers::started() {
    if (program_.empty())
        throw ProcessorError(lumetwin::words("error.worker.missing"));
    const std::scoped_lock lock(originalMutex_);
    if (original_) {
        try {
            return std::make_unique<WorkerProcess>(*original_);
        } catch (const WorkerFailure &) { // for example, killed because memory ran out
            original_.reset();
        }
    }
    original_ = std::make_unique<WorkerProcess>(program_);
    return std::make_unique<WorkerProcess>(*original_);
}

/// Starts the next worker early. If that fails, the next conversion tries it again.
void Workers::startSpare() {
    try {
        if (spares_.count() < conversions_)
            spares_.giveBack(started());
    } catch (const WorkerFailure &) {
        return;
    }
}

} // namespace lumetwin::worker
