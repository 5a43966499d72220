// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/photo/PhotoNotes.h"

#include "media/StandardRange.h"

#include <cstdint>

namespace lumetwin {

std::vector<Warning> photoNotes(const media::ImageFile &input, int depth, int outputDepth) {
    std::vector<Warning> notes;
    if (depth > outputDepth)
        notes.push_back({WarningKind::depthReduced, {std::int64_t{depth}, std::int64_t{outputDepth}}});
    const media::PhotoExtras extras = input.extras();
    if (extras.gainMap)
        notes.push_back({WarningKind::gainMapLeft, {}});
    if (extras.depthMap)
        notes.push_back({WarningKind::depthMapLeft, {}});
    if (extras.film)
        notes.push_back({WarningKind::motionFilmLeft, {}});
    return notes;
}

bool isHighDynamicRange(const media::StillImage &image) {
    return image.metadata.iccProfile.empty() && image.picture.format.model != media::ColourModel::grey &&
           media::isHighDynamicRange(image.picture.colour);
}

} // namespace lumetwin
