// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/OutputGuard.h"

#include "engine/FileNames.h"
#include "engine/ProcessorError.h"
#include "engine/Texts.h"

#include <optional>
#include <sys/stat.h>
#include <system_error>

namespace lumetwin {
namespace {

std::optional<std::pair<std::uint64_t, std::uint64_t>> identityOf(const std::filesystem::path &file) {
    struct stat facts {};
    if (stat(file.c_str(), &facts) != 0)
        return std::nullopt;
    return std::pair<std::uint64_t, std::uint64_t>(facts.st_dev, facts.st_ino);
}

/// Where a file lies, whether it exists or not: its folder resolved, its name as it is.
std::filesystem::path placeOf(const std::filesystem::path &file) {
    std::error_code ignored;
    return std::filesystem::weakly_canonical(std::filesystem::absolute(file, ignored).parent_path(), ignored) /
           file.filename();
}

} // namespace

OutputGuard::OutputGuard(const std::vector<std::filesystem::path> &inputs) {
    for (const std::filesystem::path &input : inputs) {
        const std::string name = lastPathComponent(input);
        namesByPlace_.emplace(placeOf(input), name);
        if (const auto identity = identityOf(input))
            namesByIdentity_.emplace(*identity, name);
    }
}

void OutputGuard::check(const std::filesystem::path &input, const std::filesystem::path &output) const {
    std::error_code ignored;
    const std::filesystem::file_status kind = std::filesystem::status(input, ignored);
    if (is_directory(kind))
        throw processorError(formatted("error.input.is.folder.format", lastPathComponent(input)));
    if (exists(kind) && !is_regular_file(kind)) // a pipe that nobody writes to would be waited for without end
        throw processorError(formatted("error.input.is.no.file.format", lastPathComponent(input)));
    if (!std::filesystem::is_directory(output.parent_path(), ignored))
        throw processorError(formatted("error.output.folder.missing.format", lastPathComponent(output.parent_path())));
    const auto place = namesByPlace_.find(placeOf(output));
    if (place != namesByPlace_.end())
        throw processorError(formatted("error.output.is.input.format", lastPathComponent(input), place->second));
    const auto identity = identityOf(output);
    const auto found = identity ? namesByIdentity_.find(*identity) : namesByIdentity_.end();
    if (found != namesByIdentity_.end())
        throw processorError(formatted("error.output.is.input.format", lastPathComponent(input), found->second));
}

} // namespace lumetwin
