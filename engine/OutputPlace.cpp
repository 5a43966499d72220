// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/OutputPlace.h"

#include "engine/FileNames.h"
#include "engine/ProcessorError.h"
#include "engine/Texts.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <sys/statvfs.h>
#include <unistd.h>

namespace lumetwin {
namespace {

using Path = std::filesystem::path;

// Encoders keep to a rate only roughly, and a file system that is filled to its last byte helps nobody.
constexpr double margin = 1.1;
constexpr double headroom = 16.0 * 1024 * 1024; // bytes

bool isTaken(const Path &file) {
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::symlink_status(file, ignored));
}

[[noreturn]] void refuseFolder(const Path &folder, const std::error_code &error) {
    throw processorError(
        formatted("error.output.folder.not.writable.format", lastPathComponent(folder), error.message()));
}

void requireWritableFolder(const Path &folder) {
    if (::access(folder.c_str(), W_OK | X_OK) != 0)
        refuseFolder(folder, std::error_code(errno, std::generic_category()));
}

double freeBytes(const Path &folder) {
    struct statvfs facts {};
    if (::statvfs(folder.c_str(), &facts) != 0)
        return -1;
    return static_cast<double>(facts.f_bavail) * static_cast<double>(facts.f_frsize);
}

} // namespace

std::optional<Path> settledOutput(const Path &output, OnExisting onExisting) {
    if (onExisting == OnExisting::replace || !isTaken(output))
        return output;
    if (onExisting == OnExisting::skip)
        return std::nullopt;
    for (int number = 2;; ++number) {
        Path numbered = output;
        numbered.replace_filename(output.stem().string() + " " + std::to_string(number) + output.extension().string());
        if (!isTaken(numbered))
            return numbered;
    }
}

void preparePlace(const Path &output, const Path &outputFolder) {
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

void requireSpace(const Path &output, double estimatedBytes) {
    const double available = freeBytes(output.parent_path());
    const double needed = estimatedBytes * margin + headroom;
    constexpr double mebibyte = 1024.0 * 1024;
    if (available >= 0 && available < needed)
        throw processorError(formatted("error.output.no.space.format", lastPathComponent(output), needed / mebibyte,
                                       available / mebibyte));
}

} // namespace lumetwin
