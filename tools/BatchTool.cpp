// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Commands.h"

#include "engine/texts/FileNames.h"
#include "engine/video/OutputDepth.h"
#include "tools/Completion.h"
#include "worker/ConfinedOperations.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>

namespace lumetwin::batch {
namespace {

/// Opens /dev/null for each standard stream that the caller closed. Otherwise the next opened file would get its
/// number, and our messages would be written into that file.
void keepStandardStreamsOpen() {
    for (int descriptor = 0; descriptor <= 2; ++descriptor)
        if (fcntl(descriptor, F_GETFD) < 0 && errno == EBADF)
            open("/dev/null", O_RDWR); // open() returns the lowest free number, which is this one
}

/// The exit status of a command that only prints: it has failed when its output could not be written.
int statusAfterFlush(int status) {
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
        return status;
    fmt::print(stderr, "lumetwin-batch: the output cannot be written: {}\n", std::generic_category().message(errno));
    return someFailed;
}

int printVersion(Console &console) {
    console.print("lumetwin-batch " LUMETWIN_VERSION);
    try {
        console.print("Files are worked on in a process that is confined by: " + worker::confinementDescription());
    } catch (const std::exception &error) {
        console.print(std::string("Files cannot be worked on: ") + error.what());
    }
    console.print(fmt::format("Spatial video is written with up to {} bits per sample.", deepestSpatialVideo()));
    return statusAfterFlush(allSucceeded);
}

MediaOperations operationsFor(const BatchOptions &options, const std::function<MediaOperations()> &usual) {
    return options.inProcess ? MediaOperations::inProcess() : usual();
}

int run(BatchOptions options, const std::function<MediaOperations()> &operations) {
    // With a report on standard output, nothing else is written there.
    Console console(options.report == "-" ? stderr : stdout);
    switch (options.command) {
    case Command::help:
        std::fputs(helpText().c_str(), stdout);
        return statusAfterFlush(allSucceeded);
    case Command::version:
        return printVersion(console);
    case Command::inspect:
        return statusAfterFlush(inspectCommand(options, console, operationsFor(options, operations)));
    case Command::completion:
        std::fputs(completionScript(options.shell).c_str(), stdout);
        return statusAfterFlush(allSucceeded);
    case Command::convert:
        break;
    }
    return convertCommand(options, console, operationsFor(options, operations));
}

} // namespace

int runBatchTool(int count, const char *const *arguments, const std::function<MediaOperations()> &operations) {
    keepStandardStreamsOpen();
    try {
        const auto given = static_cast<std::size_t>(count > 0 ? count - 1 : 0);
        return run(parseOptions({arguments + 1, given}), operations);
    } catch (const UsageError &error) {
        fmt::print(stderr, "lumetwin-batch: {}\nTry 'lumetwin-batch --help'.\n", printable(error.what()));
        return wrongUsage;
    } catch (const std::exception &error) { // no thread, no memory: nothing can be begun
        fmt::print(stderr, "lumetwin-batch: {}\n", printable(error.what()));
        return someFailed;
    }
}

} // namespace lumetwin::batch
