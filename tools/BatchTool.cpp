// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Commands.h"

#include "engine/FileNames.h"

#include <fmt/format.h>

#include <cstdio>

namespace lumetwin::batch {
namespace {

int run(BatchOptions options, const std::function<MediaOperations()> &operations) {
    Console console;
    switch (options.command) {
    case Command::help:
        std::fputs(helpText().c_str(), stdout);
        return allWell;
    case Command::version:
        console.print("lumetwin-batch " LUMETWIN_VERSION);
        return allWell;
    case Command::inspect:
        return inspectCommand(options, console);
    case Command::convert:
        break;
    }
    return convertCommand(options, console, operations());
}

} // namespace

int runBatchTool(int count, const char *const *arguments, const std::function<MediaOperations()> &operations) {
    try {
        const auto given = static_cast<std::size_t>(count > 0 ? count - 1 : 0);
        return run(parseOptions({arguments + 1, given}), operations);
    } catch (const UsageError &error) {
        fmt::print(stderr, "lumetwin-batch: {}\nTry 'lumetwin-batch --help'.\n", printable(error.what()));
        return wrongUsage;
    }
}

} // namespace lumetwin::batch
