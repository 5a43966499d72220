// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/OutputPlace.h"

#include "engine/texts/FileNames.h"
#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"

#include <cerrno>
#include <limits>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace lumetwin {
namespace {

using Path = std::filesystem::path;

bool isTaken(const Path &file) {
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::symlink_status(file, ignored));
}

/// The output path itself for number 1, otherwise with the number, such as "trip_sbs 2.mp4".
Path numbered(const Path &output, int number) {
    if (number == 1)
        return output;
    return output.parent_path() / (output.stem().string() + " " + std::to_string(number) + output.extension().string());
}

[[noreturn]] void refuseFolder(const Path &folder, const std::error_code &error) {
    throw processorError(
        formatted("error.output.folder.not.writable.format", lastPathComponent(folder), error.message()));
}

void requireWritableFolder(const Path &folder) {
    if (::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0)
        refuseFolder(folder, std::error_code(errno, std::generic_category()));
}

} // namespace

std::optional<Path> chooseOutputPath(const Path &output, OnExisting onExisting) {
    if (onExisting == OnExisting::replace || !isTaken(output))
        return output;
    if (onExisting == OnExisting::skip)
        return std::nullopt;
    int number = 2;
    while (isTaken(numbered(output, number)))
        ++number;
    return numbered(output, number);
}

std::vector<Path> existingOutputPaths(const Path &output, OnExisting onExisting) {
    std::vector<Path> places;
    const int most = onExisting == OnExisting::keepBoth ? std::numeric_limits<int>::max() : 1;
    for (int number = 1; number <= most && isTaken(numbered(output, number)); ++number)
        places.push_back(numbered(output, number));
    return places;
}

void prepareOutputPath(const Path &output, const Path &outputFolder) {
    std::error_code error;
    if (!std::filesystem::is_directory(outputFolder, error))
        throw processorError(formatted("error.output.folder.missing.format", lastPathComponent(outputFolder)));
    const Path folder = output.parent_path();
    if (std::filesystem::create_directories(folder, error); error)
        refuseFolder(folder, error);
    requireWritableFolder(folder);
    if (std::filesystem::is_directory(output, error))
        throw processorError(formatted("error.output.is.folder.format", lastPathComponent(output)));
}

} // namespace lumetwin
