// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/images/Limits.h"

#include "media/ImageFile.h"
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
        throw MediaError(file, "Cannot read", 0, "the image is empty");
    if (width > maximumSide || height > maximumSide || width * height > maximumPixels)
        throw MediaError(file, "Cannot read", 0, "the image is too large (" + sizeText(width, height) + ")");
}

Picture makeChecked(const std::filesystem::path &file, int width, int height, PictureFormat format, ColourTags colour) {
    checkSize(file, width, height);
    try {
        return makePicture(width, height, format, colour);
    } catch (const std::bad_alloc &) {
        throw MediaError(file, "Cannot read", 0, "not enough memory for " + sizeText(width, height));
    } catch (const std::length_error &error) {
        throw MediaError(file, "Cannot read", 0, error.what());
    }
}

} // namespace lumetwin::media::images
