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

int statusOf(const VideoProcessor &processor, bool success, bool strict) {
    if (processor.cancelRequested)
        return interrupted;
    if (!success || (strict && totalsOf(processor.results()).withWarnings > 0))
        return someFailed;
    return allWell;
}

/// The exit status, in which a report that did not arrive counts.
int deliver(ReportFile &file, const RunFacts &facts, Console &console) {
    try {
        file.complete(runDocument(facts));
        return facts.exitStatus;
    } catch (const std::system_error &error) {
        console.printError("lumetwin-batch: the report cannot be written: " + error.code().message());
        return facts.exitStatus == allWell ? someFailed : facts.exitStatus;
    }
}

} // namespace

int convertCommand(BatchOptions &options, Console &console, MediaOperations operations) {
    settleInputs(options);
    std::signal(SIGXFSZ, SIG_IGN); // a limit for the size of files becomes an error of the file
    const auto reportFile = options.report ? std::make_unique<ReportFile>(*options.report) : nullptr;
    for (const std::string &remark : options.remarks)
        console.printError("lumetwin-batch: " + remark);
    const auto started = std::chrono::system_clock::now();
    VideoProcessor processor(options.settings, SystemVersion::current(), std::move(operations));
    RunDisplay display(processor, console);
    const Interruption interruption(processor.cancelRequested);
    std::thread run([&] { processor.processAll(); });
    display.watch();
    run.join();
    display.conclude();
    const int status = statusOf(processor, display.success(), options.strict);
    if (!reportFile)
        return status;
    return deliver(*reportFile,
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
