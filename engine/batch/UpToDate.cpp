// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/UpToDate.h"

#include "engine/inspection/MediaKinds.h"
#include "media/Image.h"
#include "media/StereoMovieFacts.h"

#include <system_error>

namespace lumetwin {
namespace {

bool canBeRead(const std::filesystem::path &output) {
    const media::InputFile file(output);
    return isPhotoFile(output) ? media::imageKind(file).has_value()
                               : media::readStereoMovieFacts(file).hasSampleDescription;
}

} // namespace

bool isUpToDate(const std::filesystem::path &input, const std::filesystem::path &output) noexcept {
    try {
        return std::filesystem::is_regular_file(output) &&
               std::filesystem::last_write_time(output) > std::filesystem::last_write_time(input) && canBeRead(output);
    } catch (const std::exception &) {
        return false;
    }
}

} // namespace lumetwin
