// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/BatchOptions.h"

#include "engine/inspection/MediaKinds.h"
#include "tools/Completion.h"
#include "tools/OptionTable.h"

#include <algorithm>
#include <system_error>

namespace lumetwin::batch {
namespace {

using Arguments = std::span<const char *const>;

std::string_view removeFirst(Arguments &arguments) {
    const std::string_view first = arguments.front();
    arguments = arguments.subspan(1);
    return first;
}

/// Splits the arguments of both commands into options and inputs. "--" ends the options. "-" alone is an input.
template <typename OnOption>
void forEachArgument(Arguments arguments, BatchOptions &options, const OnOption &onOption) {
    bool optionsEnded = false;
    while (!arguments.empty()) {
        const std::string_view argument = removeFirst(arguments);
        if (optionsEnded || !argument.starts_with('-') || argument == "-")
            options.inputs.emplace_back(argument);
        else if (argument == "--")
            optionsEnded = true;
        else
            onOption(argument, arguments);
    }
}

void applyOption(std::string_view argument, Arguments &rest, BatchOptions &options) {
    const std::size_t equalsSign = argument.find('=');
    const std::string name(argument.substr(0, equalsSign));
    const Option *option = findOption(name);
    if (!option)
        throw UsageError("unknown option " + name);
    if (option->argument.empty()) {
        if (equalsSign != std::string_view::npos)
            throw UsageError(name + " takes no value");
        return option->apply(options, {}, name);
    }
    if (equalsSign == std::string_view::npos && rest.empty())
        throw UsageError(name + " needs a value: " + std::string(option->argument));
    const std::string_view value =
        equalsSign == std::string_view::npos ? removeFirst(rest) : argument.substr(equalsSign + 1);
    option->apply(options, value, name);
}

std::int64_t nextMultipleOf16(std::int64_t size) {
    return (size + 15) / 16 * 16;
}

/// The same rule as in the window: encoders need even sizes.
void checkResize(const ConversionSettings &settings) {
    if (!settings.enableResize || (settings.resizeWidth % 2 == 0 && settings.resizeHeight % 2 == 0))
        return;
    throw UsageError("--resize-width and --resize-height must be even; the next multiples of 16 are " +
                     std::to_string(nextMultipleOf16(settings.resizeWidth)) + " and " +
                     std::to_string(nextMultipleOf16(settings.resizeHeight)));
}

void parseConversion(Arguments arguments, BatchOptions &options) {
    std::string resizeOption;
    forEachArgument(arguments, options, [&](std::string_view argument, Arguments &rest) {
        applyOption(argument, rest, options);
        if (argument.starts_with("--resize-"))
            resizeOption = argument.substr(0, argument.find('='));
    });
    if (options.inputs.empty())
        throw UsageError("no input: name files, or one folder");
    if (!options.settings->outputFolderURL)
        throw UsageError("no output folder: name one with --output");
    checkResize(*options.settings);
    if (!options.settings->enableResize && !resizeOption.empty())
        options.notices.push_back(resizeOption + " changes nothing without --enable-resize");
}

void parseInspection(Arguments arguments, BatchOptions &options) {
    options.command = Command::inspect;
    forEachArgument(arguments, options, [&](std::string_view argument, Arguments &) {
        if (argument == "--json")
            options.json = true;
        else if (argument == "--in-process")
            options.inProcess = true;
        else
            throw UsageError("unknown option " + std::string(argument) + " of inspect");
    });
    if (options.inputs.empty())
        throw UsageError("no file to inspect");
}

void parseCompletion(Arguments arguments, BatchOptions &options) {
    options.command = Command::completion;
    if (arguments.size() != 1 || std::ranges::find(shellNames, std::string_view(arguments.front())) == shellNames.end())
        throw UsageError("completion needs the name of a shell: bash, zsh or fish");
    options.shell = arguments.front();
}

bool containsOption(Arguments arguments, std::string_view option, std::string_view shortOption) {
    for (const std::string_view argument : arguments) {
        if (argument == "--")
            return false;
        if (argument == option || argument == shortOption)
            return true;
    }
    return false;
}

std::string displayPath(const std::filesystem::path &file) {
    return file.string();
}

void setInputFiles(BatchOptions &options) {
    for (const std::filesystem::path &file : options.inputs) {
        if (std::filesystem::is_directory(file) && !isMediaFile(file))
            throw UsageError("inputs are files or one folder: " + displayPath(file) + " is a folder");
        if (!isMediaFile(file))
            options.notices.push_back(displayPath(file) + " is left out: its kind of file is not known");
    }
    if (options.settings->recursive)
        options.notices.emplace_back("--recursive changes nothing without an input folder");
    options.settings->inputFiles = options.inputs;
}

} // namespace

BatchOptions parseOptions(Arguments arguments) {
    BatchOptions options;
    if (containsOption(arguments, "--help", "-h"))
        options.command = Command::help;
    else if (containsOption(arguments, "--version", "--version"))
        options.command = Command::version;
    else if (!arguments.empty() && std::string_view(arguments.front()) == "inspect")
        parseInspection(arguments.subspan(1), options);
    else if (!arguments.empty() && std::string_view(arguments.front()) == "completion")
        parseCompletion(arguments.subspan(1), options);
    else
        parseConversion(arguments, options);
    return options;
}

void setInputs(BatchOptions &options) {
    std::error_code error;
    for (const std::filesystem::path &input : options.inputs)
        if (!std::filesystem::exists(input, error))
            throw UsageError(displayPath(input) + ": " + (error ? error.message() : "No such file or directory"));
    if (!std::filesystem::is_directory(*options.settings->outputFolderURL, error))
        throw UsageError("the output folder does not exist: " + displayPath(*options.settings->outputFolderURL));
    if (options.inputs.size() == 1 && std::filesystem::is_directory(options.inputs.front()))
        options.settings->inputFolderURL = options.inputs.front();
    else
        setInputFiles(options);
}

} // namespace lumetwin::batch
