// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace lumetwin::batch {

/// The command line is wrong. what() is a message for the user.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class Command { convert, inspect, completion, help, version };

/// The parsed command line.
struct BatchOptions {
    Command command = Command::convert;
    std::vector<std::filesystem::path> inputs;
    bool json = false;                           ///< only for inspect
    std::string_view shell;                      ///< only for completion; one of shellNames
    std::optional<std::filesystem::path> report; ///< receives the results as JSON; "-" is standard output
    bool strict = false;                         ///< warnings count as failures for the exit status
    bool inProcess = false;                      ///< files are worked on in this process, not in a confined one
    std::shared_ptr<ConversionSettings> settings = std::make_shared<ConversionSettings>();
    std::vector<std::string> notices; ///< messages for the user about inputs and options that have no effect
};

/// Parses the arguments after the program's name. Numbers and names must match completely, and numbers must lie in
/// their ranges. Does not access the file system. Throws UsageError.
BatchOptions parseOptions(std::span<const char *const> arguments);

/// Stores the inputs in the settings: one folder, or files. Throws UsageError when an input or the output folder does
/// not exist, or when folders and files are mixed.
void setInputs(BatchOptions &options);

/// The text of --help.
std::string helpText();

} // namespace lumetwin::batch
