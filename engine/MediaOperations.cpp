// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/MediaOperations.h"

#include "engine/inspection/Inspection.h"
#include "engine/photo/SBSImageToSpatial.h"
#include "engine/photo/SpatialPhotoToSBS.h"
#include "engine/video/SBSVideoToSpatial.h"
#include "engine/video/SpatialVideoToSBS.h"
#include "media/InputFile.h"

#include <stdexcept>

namespace lumetwin {

const MediaOperations::Converter &MediaOperations::converter(ConversionKind kind) const {
    switch (kind) {
    case ConversionKind::spatialVideoToSBS:
        return convertSpatialVideoToSBS;
    case ConversionKind::sbsVideoToSpatial:
        return convertSBSVideoToSpatial;
    case ConversionKind::spatialPhotoToSBS:
        return convertSpatialPhotoToSBS;
    case ConversionKind::sbsImageToSpatial:
        return convertSBSImageToSpatial;
    }
    throw std::logic_error("an unknown conversion");
}

MediaFacts MediaOperations::lookAtFile(const std::filesystem::path &file) const {
    return look(media::InputFile(file));
}

std::pair<MediaFacts, std::optional<PictureSize>>
MediaOperations::inspectFile(const std::filesystem::path &file) const {
    const media::InputFile opened(file);
    MediaFacts facts = look(opened);
    std::optional<PictureSize> size;
    if (!facts.isSpatial)
        size = measure(opened);
    return {std::move(facts), size};
}

MediaOperations MediaOperations::inProcess() {
    return {.look = lumetwin::lookAt,
            .measure = lumetwin::pictureSize,
            .convertSpatialVideoToSBS = lumetwin::convertSpatialVideoToSBS,
            .convertSBSVideoToSpatial = lumetwin::convertSBSVideoToSpatial,
            .convertSpatialPhotoToSBS = lumetwin::convertSpatialPhotoToSBS,
            .convertSBSImageToSpatial = lumetwin::convertSBSImageToSpatial};
}

} // namespace lumetwin
