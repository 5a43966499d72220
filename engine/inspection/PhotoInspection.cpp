// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/Inspection.h"

#include "media/HeifFile.h"
#include "media/Image.h"

#include <cmath>
#include <cstdlib>
#include <numbers>

namespace lumetwin {

namespace {

/// The file's groups and images, where it is a HEIF file; read without decoding anything.
std::optional<media::HeifFile> heifOf(const std::filesystem::path &file) {
    if (media::imageKind(file) != media::ImageKind::heif)
        return std::nullopt;
    return media::readHeifFile(file);
}

std::optional<double> fieldOfView(const media::HeifImage &image) {
    const auto intrinsics = image.pixelIntrinsics();
    if (!intrinsics || !(intrinsics->focalLengthX > 0) || image.width == 0)
        return std::nullopt;
    const double width = image.width;
    return 2 * std::atan((width * 0.5) / intrinsics->focalLengthX) * 180 / std::numbers::pi;
}

/// A camera at the origin tells nothing; the pair's other one does.
std::optional<double> baseline(const media::HeifImage &image) {
    if (!image.position || (*image.position)[0] == 0)
        return std::nullopt;
    const double metres = (*image.position)[0] / 1e6;
    return std::abs(metres) * 1000;
}

} // namespace

bool isSpatialPhoto(const std::filesystem::path &file) noexcept {
    try {
        const auto heif = heifOf(file);
        return heif && !heif->stereoGroups.empty();
    } catch (const std::exception &) {
        return false;
    }
}

StereoValues photoStereoValues(const std::filesystem::path &file) noexcept {
    StereoValues values;
    try {
        const auto heif = heifOf(file);
        if (!heif)
            return values;
        for (const media::HeifImage &image : heif->images) {
            if (!values.horizontalFOV)
                values.horizontalFOV = fieldOfView(image);
            if (!values.stereoBaseline)
                values.stereoBaseline = baseline(image);
        }
        if (const auto disparity = heif->stereoDisparityAdjustment())
            values.disparity = *disparity / 100.0;
    } catch (const std::exception &) {
        return {};
    }
    return values;
}

} // namespace lumetwin
