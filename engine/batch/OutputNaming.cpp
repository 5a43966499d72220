// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/OutputNaming.h"

#include "engine/inspection/MediaKinds.h"
#include "engine/texts/FileNames.h"

namespace lumetwin {
namespace {

std::string_view photoExtension(SBSPhotoOutputFormat format) {
    switch (format) {
    case SBSPhotoOutputFormat::jpg:
        return "jpg";
    case SBSPhotoOutputFormat::png:
        return "png";
    case SBSPhotoOutputFormat::tiff:
        return "tiff";
    case SBSPhotoOutputFormat::heic:
        return "heic";
    }
    return {};
}

std::string_view videoExtension(SBSOutputFormat format) {
    switch (format) {
    case SBSOutputFormat::mp4H264:
    case SBSOutputFormat::mp4H265:
        return "mp4";
    case SBSOutputFormat::movHEVC:
        return "mov";
    case SBSOutputFormat::mkvH264:
    case SBSOutputFormat::mkvH265:
        return "mkv";
    }
    return {};
}

std::string_view outputExtension(bool isPhoto, const ConversionSettings &settings) {
    if (settings.direction == ConversionDirection::sbsToSpatial)
        return isPhoto ? "heic" : "mov";
    if (isPhoto)
        return photoExtension(settings.sbsPhotoOutputFormat);
    return videoExtension(settings.sbsOutputFormat);
}

} // namespace

std::string outputName(const std::filesystem::path &input, const ConversionSettings &settings) {
    std::string name = std::filesystem::path(lastPathComponent(input)).stem().string();
    name += settings.direction == ConversionDirection::sbsToSpatial ? "_spatial." : "_sbs.";
    return name.append(outputExtension(isPhotoFile(input), settings));
}

} // namespace lumetwin
