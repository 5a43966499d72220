// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/MediaOperations.h"

#include "engine/Inspection.h"
#include "engine/SBSImageToSpatial.h"
#include "engine/SBSVideoToSpatial.h"
#include "engine/SpatialPhotoToSBS.h"
#include "engine/SpatialVideoToSBS.h"

namespace lumetwin {

MediaOperations MediaOperations::standard() {
    return {.isSpatialVideo = lumetwin::isSpatialVideo,
            .isSpatialPhoto = lumetwin::isSpatialPhoto,
            .convertSpatialVideoToSBS = lumetwin::convertSpatialVideoToSBS,
            .convertSBSVideoToSpatial = lumetwin::convertSBSVideoToSpatial,
            .convertSpatialPhotoToSBS = lumetwin::convertSpatialPhotoToSBS,
            .convertSBSImageToSpatial = lumetwin::convertSBSImageToSpatial};
}

} // namespace lumetwin
