// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/HeifFile.h"

#include "media/MediaError.h"
#include "media/heif/ImageList.h"

#include <algorithm>

namespace lumetwin::media {

namespace {

double half(double number) {
    return number / 2;
}

} // namespace

PixelIntrinsics CameraIntrinsics::inPixels(double width, double height) const {
    PixelIntrinsics pixels;
    pixels.focalLengthX = focalLengthX * width;
    pixels.focalLengthY = focalLengthY ? *focalLengthY * height : pixels.focalLengthX;
    pixels.principalPointX = principalPointX * width;
    pixels.principalPointY = principalPointY * height;
    pixels.skew = skew;
    return pixels;
}

std::optional<PixelIntrinsics> HeifImage::pixelIntrinsics() const {
    if (!intrinsics)
        return std::nullopt;
    PixelIntrinsics pixels = intrinsics->inPixels(codedWidth, codedHeight);
    const auto crop = std::ranges::find(transforms, HeifTransform::Kind::crop, &HeifTransform::kind);
    const bool cropsFirst = std::none_of(transforms.begin(), crop, [](const HeifTransform &step) {
        return step.kind == HeifTransform::Kind::rotate || step.kind == HeifTransform::Kind::mirror;
    });
    if (crop != transforms.end() && cropsFirst && crop->aperture[5] > 0 && crop->aperture[7] > 0) {
        const auto offset = [&](std::size_t index) {
            return static_cast<double>(crop->aperture[index]) / static_cast<double>(crop->aperture[index + 1]);
        };
        pixels.principalPointX -= half(static_cast<double>(codedWidth) - width) + offset(4);
        pixels.principalPointY -= half(static_cast<double>(codedHeight) - height) + offset(6);
    }
    return pixels;
}

std::optional<EyePair<std::size_t>> HeifFile::stereoEyes() const {
    if (stereoGroups.empty() || images.size() < 2)
        return std::nullopt;
    const HeifStereoGroup &group = stereoGroups.front();
    const auto pair = [](std::size_t left, std::size_t right) { return EyePair<std::size_t>{left, right}; };
    return group.left && group.right ? pair(*group.left, *group.right) : pair(0, 1);
}

std::optional<std::int32_t> HeifFile::stereoDisparityAdjustment() const {
    const auto eyes = stereoEyes();
    if (!eyes)
        return std::nullopt;
    const auto left = images[eyes->left].disparityAdjustment;
    return left ? left : images[eyes->right].disparityAdjustment;
}

HeifFile readHeifFile(const InputFile &file) {
    try {
        return heif::readHeif(*bmff::openFile(file));
    } catch (const bmff::FormatError &error) {
        throw MediaError(file.path(), MediaOperation::read, 0, error.reason(), error.details());
    }
}

} // namespace lumetwin::media
