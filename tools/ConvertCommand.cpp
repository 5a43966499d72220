// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Commands.h"

#include "engine/batch/VideoProcessor.h"
#include "tools/Interruption.h"
#include "tools/ReportFile.h"
#include "tools/RunDisplay.h"
#include "tools/RunDocument.h"
#include "tools/RunTotals.h"

#include <chrono>
#include <csignal>
#include <memory>
#include <system_error>
#include <thread>

namespace lumetwin::batch {
namespace {

int exitStatus(const VideoProcessor &processor, bool success, bool strict) {
    if (processor.cancelRequested)
        return interrupted;
    if (!success || (strict && totalsOf(processor.results()).withWarnings > 0))
        return someFailed;
    return allSucceeded;
}

/// Writes the report. Returns the exit status of the run, or someFailed if only the report failed.
int writeReport(ReportFile &file, const RunFacts &facts, Console &console) {
    try {
        file.complete(runDocument(facts));
        return facts.exitStatus;
    } catch (const std::system_error &error) {
        console.printError("lumetwin-batch: the report cannot be written: " + error.code().message());
        return facts.exitStatus == allSucceeded ? someFailed : facts.exitStatus;
    }
}

} // namespace

int convertCommand(BatchOptions &options, Console &console, MediaOperations operations) {
    setInputs(options);
    std::signal(SIGXFSZ, SIG_IGN); // a file size limit becomes a write error of that file
    const auto reportFile = options.report ? std::make_unique<ReportFile>(*options.report) : nullptr;
    for (const std::string &notice : options.notices)
        console.printError("lumetwin-batch: " + notice);
    const auto started = std::chrono::system_clock::now();
    VideoProcessor processor(options.settings, SystemVersion::current(), std::move(operations));
    RunDisplay display(processor, console);
    const Interruption interruption(processor.cancelRequested);
    std::thread run([&] { processor.processAll(); });
    display.showProgressUntilEnd();
    run.join();
    display.printSummary();
    const int status = exitStatus(processor, display.success(), options.strict);
    if (!reportFile)
        return status;
    return writeReport(*reportFile,
                       {.settings = *options.settings,
                        .results = processor.results(),
                        .started = started,
                        .finished = std::chrono::system_clock::now(),
                        .stopped = processor.cancelRequested,
                        .message = display.message(),
                        .exitStatus = status},
                       console);
}

} // namespace lumetwin::batch
