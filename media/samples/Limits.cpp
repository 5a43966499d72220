// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/samples/Limits.h"

#include "media/Image.h"
#include "media/MediaError.h"

#include <new>
#include <stdexcept>

namespace lumetwin::media::images {

namespace {

constexpr std::int64_t maximumSide = 65535;

std::string sizeText(std::int64_t width, std::int64_t height) {
    return std::to_string(width) + " x " + std::to_string(height) + " pixels";
}

} // namespace

void checkSize(const std::filesystem::path &file, std::int64_t width, std::int64_t height) {
    if (width < 1 || height < 1)
        throw MediaError(file, MediaOperation::read, 0, MediaReason::emptyImage);
    if (width > maximumSide || height > maximumSide || width * height > maximumPixels)
        throw MediaError(file, MediaOperation::read, 0, MediaReason::imageTooLarge, sizeText(width, height));
}

Picture makeChecked(const std::filesystem::path &file, int width, int height, PictureFormat format, ColourTags colour) {
    checkSize(file, width, height);
    try {
        return makePicture(width, height, format, colour);
    } catch (const std::bad_alloc &) {
        throw MediaError(file, MediaOperation::read, 0, MediaReason::noMemory, sizeText(width, height));
    } catch (const std::length_error &) {
        throw MediaError(file, MediaOperation::read, 0, MediaReason::imageTooLarge, sizeText(width, height));
    }
}

} // namespace lumetwin::media::images
