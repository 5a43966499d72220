// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/protocol/SettingsCoding.h"

#include "worker/protocol/Reading.h"

namespace lumetwin::worker {

using Json = nlohmann::json;

Json encodeSettings(const ConversionSettings &settings) {
    return {{"direction", numberOf(settings.direction)},
            {"horizontalFOV", settings.horizontalFOV},
            {"disparityAdjustment", settings.disparityAdjustment},
            {"stereoBaseline", settings.stereoBaseline},
            {"automaticDisparity", settings.automaticDisparity},
            {"stereoValuesSource", numberOf(settings.stereoValuesSource)},
            {"inputLayout", numberOf(settings.inputLayout)},
            {"checkStereo", settings.checkStereo},
            {"sbsOutputFormat", numberOf(settings.sbsOutputFormat)},
            {"sbsPhotoOutputFormat", numberOf(settings.sbsPhotoOutputFormat)},
            {"compressionQuality", settings.compressionQuality},
            {"halfWidth", settings.halfWidth},
            {"swapLeftRight", settings.swapLeftRight},
            {"enableResize", settings.enableResize},
            {"resizeWidth", settings.resizeWidth},
            {"resizeHeight", settings.resizeHeight},
            {"resizeMode", numberOf(settings.resizeMode)},
            {"copyAudio", settings.copyAudio},
            {"keepTiming", settings.keepTiming},
            {"bitDepth", numberOf(settings.bitDepth)}};
}

std::shared_ptr<ConversionSettings> decodeSettings(const Json &content) {
    auto settings = std::make_shared<ConversionSettings>();
    settings->direction = caseOf(field(content, "direction"), allConversionDirections.back());
    settings->horizontalFOV = number(field(content, "horizontalFOV"));
    settings->disparityAdjustment = number(field(content, "disparityAdjustment"));
    settings->stereoBaseline = number(field(content, "stereoBaseline"));
    settings->automaticDisparity = boolean(field(content, "automaticDisparity"));
    settings->stereoValuesSource = caseOf(field(content, "stereoValuesSource"), allStereoValuesSources.back());
    settings->inputLayout = caseOf(field(content, "inputLayout"), allInputLayouts.back());
    settings->checkStereo = boolean(field(content, "checkStereo"));
    settings->sbsOutputFormat = caseOf(field(content, "sbsOutputFormat"), allSBSOutputFormats.back());
    settings->sbsPhotoOutputFormat = caseOf(field(content, "sbsPhotoOutputFormat"), allSBSPhotoOutputFormats.back());
    settings->compressionQuality = number(field(content, "compressionQuality"));
    settings->halfWidth = boolean(field(content, "halfWidth"));
    settings->swapLeftRight = boolean(field(content, "swapLeftRight"));
    settings->enableResize = boolean(field(content, "enableResize"));
    settings->resizeWidth = integer(field(content, "resizeWidth"));
    settings->resizeHeight = integer(field(content, "resizeHeight"));
    settings->resizeMode = caseOf(field(content, "resizeMode"), allResizeModes.back());
    settings->copyAudio = boolean(field(content, "copyAudio"));
    settings->keepTiming = boolean(field(content, "keepTiming"));
    settings->bitDepth = caseOf(field(content, "bitDepth"), allBitDepths.back());
    return settings;
}

} // namespace lumetwin::worker
