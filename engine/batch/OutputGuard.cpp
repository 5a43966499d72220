// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/OutputGuard.h"

#include "engine/texts/FileNames.h"
#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"

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

/// The path of a file that may not exist: the folder is resolved, the name is not.
std::filesystem::path placeOf(const std::filesystem::path &file) {
    std::error_code ignored;
    return std::filesystem::weakly_canonical(std::filesystem::absolute(file, ignored).parent_path(), ignored) /
           file.filename();
}

} // namespace

OutputGuard::OutputGuard(const std::vector<std::filesystem::path> &inputs, std::function<bool(std::size_t)> isConverted)
    : inputs_(inputs), isConverted_(std::move(isConverted)) {
    for (std::size_t index = 0; index < inputs_.size(); ++index) {
        indexesByPlace_.emplace(placeOf(inputs_[index]), index);
        if (const auto identity = identityOf(inputs_[index]))
            indexesByIdentity_.emplace(*identity, index);
    }
}

void OutputGuard::refuse(const std::filesystem::path &input, std::size_t found) const {
    if (inputs_[found] == input || isConverted_(found))
        throw processorError(
            formatted("error.output.is.input.format", lastPathComponent(input), lastPathComponent(inputs_[found])));
}

void OutputGuard::check(const std::filesystem::path &input, const std::filesystem::path &output) const {
    std::error_code ignored;
    const std::filesystem::file_status kind = std::filesystem::status(input, ignored);
    if (is_directory(kind))
        throw processorError(formatted("error.input.is.folder.format", lastPathComponent(input)));
    if (exists(kind) && !is_regular_file(kind)) // reading a pipe could wait for ever
        throw processorError(formatted("error.input.is.no.file.format", lastPathComponent(input)));
    const auto [first, last] = indexesByPlace_.equal_range(placeOf(output));
    for (auto entry = first; entry != last; ++entry)
        refuse(input, entry->second);
    if (const auto identity = identityOf(output)) {
        const auto [begin, end] = indexesByIdentity_.equal_range(*identity);
        for (auto entry = begin; entry != end; ++entry)
            refuse(input, entry->second);
    }
}

} // namespace lumetwin
