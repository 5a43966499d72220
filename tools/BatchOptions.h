// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumetwin::batch {

/// A command line that means nothing; the words are for the user.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class Command { convert, inspect, help, version };

/// What a command line asks for.
struct BatchOptions {
    Command command = Command::convert;
    std::vector<std::filesystem::path> inputs;
    bool json = false;                           ///< of inspect
    std::optional<std::filesystem::path> report; ///< receives the results as JSON; "-" is standard output
    bool strict = false;                         ///< warnings count as failures for the exit status
    std::shared_ptr<ConversionSettings> settings = std::make_shared<ConversionSettings>();
    std::vector<std::string> remarks; ///< for the user, about options that change nothing
};

/// Reads the arguments that follow the program's name. Numbers and names of cases are taken only whole and within
/// their ranges. Does not touch the file system. Throws UsageError.
BatchOptions parseOptions(std::span<const char *const> arguments);

/// Hands the inputs to the settings: one folder, or files. Throws UsageError when one does not exist, when
/// folders and files are mixed, or when the output folder does not exist.
void settleInputs(BatchOptions &options);

/// The text of --help.
std::string helpText();

} // namespace lumetwin::batch
