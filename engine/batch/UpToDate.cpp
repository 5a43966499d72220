// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/UpToDate.h"

#include <exception>

namespace lumetwin {

bool isUpToDate(const std::filesystem::path &input, const std::filesystem::path &output,
                const MediaOperations &operations) noexcept {
    try {
        return std::filesystem::is_regular_file(output) &&
               std::filesystem::last_write_time(output) > std::filesystem::last_write_time(input) &&
               operations.lookAtFile(output).isReadable;
    } catch (const std::exception &) {
        return false;
    }
}

} // namespace lumetwin
