// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionInput.h"
#include "engine/MediaOperations.h"
#include "worker/parent/Conversation.h"

#include <atomic>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

namespace lumetwin::worker {

/// The worker processes of a program. All are forked from one process, which is started at the first request.
/// Long-lived workers inspect files, others draw previews: as many as were needed at the same time. Each conversion has
/// its own worker, and for each that runs the next worker is started meanwhile. Can be used by several threads.
/// The functions throw the errors of MediaOperations::inProcess(); if a worker itself fails, a ProcessorError that
/// names the file.
class Workers {
public:
    explicit Workers(std::filesystem::path program, Timeouts timeouts = {});

    MediaFacts look(const media::InputFile &input);
    MediaFacts lookClosely(const ConversionInput &input);
    StereoFindings examine(const ConversionInput &input, const StereoLayout &layout);
    PictureSize measure(const media::InputFile &input);

    /// Draws a preview into the output; see MediaOperations. Does not wait for other previews or for looks.
    PreviewFacts draw(const ConversionInput &input, const PreviewRequest &request, const media::OutputFile &pixels);

    /// After a crash the conversion is repeated once, with one decoding thread.
    Outcome convert(ConversionKind kind, const ConversionSettings &settings, const ConversionInput &input,
                    const media::OutputFile &output, const ConversionControl &control, SystemVersion system);

    /// How workers are confined on this system. Throws ProcessorError.
    ConfinementReport confinement();

private:
    using Worker = std::unique_ptr<WorkerProcess>;

    /// Workers that wait for more work of a kind.
    class Idle {
    public:
        /// nullptr if none waits
        Worker take();
        void giveBack(Worker worker);
        std::size_t count();

    private:
        std::mutex mutex_;
        std::vector<Worker> workers_; // guarded by mutex_
    };

    /// The answer of an inspecting worker. After a crash, a new worker is asked once more.
    Answer lookAnswer(LookRequest::Kind kind, const ConversionInput &input,
                      const std::optional<StereoLayout> &layout = {});
    Answer inspectorAnswer(Worker inspector, const LookRequest &request, const ConversionInput &input);
    PreviewFacts tryToDraw(const DrawRequest &request, const ConversionInput &input, const media::OutputFile &pixels);
    Outcome tryToConvert(const ConvertRequest &request, const ConversionInput &input, const media::OutputFile &output,
                         const ConversionControl &control);
    /// Logs once how workers are confined, if that is less than everything.
    void logConfinement(const ConfinementReport &report, const ConversionControl &control);
    Worker started();
    /// One of those that wait, or a new one.
    Worker taken(Idle &idle);
    void startSpare();

    const std::filesystem::path program_;
    const Timeouts timeouts_;
    std::atomic<bool> isConfinementLogged_ = false;
    std::mutex originalMutex_;
    Worker original_; // guarded by originalMutex_; forks the others
    Idle inspectors_;
    Idle painters_;
    Idle spares_;
    std::atomic<std::size_t> conversions_ = 0; ///< that run
};

} // namespace lumetwin::worker
