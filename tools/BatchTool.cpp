// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Commands.h"

#include "engine/texts/FileNames.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>

namespace lumetwin::batch {
namespace {

/// Where a caller closed a standard stream, the next file would get its number, and our lines would go into that file.
void keepStandardStreamsOpen() {
    for (int descriptor = 0; descriptor <= 2; ++descriptor)
        if (fcntl(descriptor, F_GETFD) < 0 && errno == EBADF)
            open("/dev/null", O_RDWR); // gets the lowest free number, which is this one
}

/// The status of a command that does nothing but tell: it has failed when what it told did not arrive.
int told(int status) {
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
        return status;
    fmt::print(stderr, "lumetwin-batch: the output cannot be written: {}\n", std::generic_category().message(errno));
    return someFailed;
}

int run(BatchOptions options, const std::function<MediaOperations()> &operations) {
    // Whoever reads the report from standard output reads nothing else there.
    Console console(options.report == "-" ? stderr : stdout);
    switch (options.command) {
    case Command::help:
        std::fputs(helpText().c_str(), stdout);
        return told(allWell);
    case Command::version:
        console.print("lumetwin-batch " LUMETWIN_VERSION);
        return told(allWell);
    case Command::inspect:
        return told(inspectCommand(options, console, operations()));
    case Command::convert:
        break;
    }
    return convertCommand(options, console, operations());
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
    }
}

} // namespace lumetwin::batch
