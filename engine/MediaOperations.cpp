// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/MediaOperations.h"

#include "engine/inspection/Inspection.h"
#include "engine/photo/SBSImageToSpatial.h"
#include "engine/photo/SpatialPhotoToSBS.h"
#include "engine/video/SBSVideoToSpatial.h"
#include "engine/video/SpatialVideoToSBS.h"

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
