// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionInput.h"
#include "engine/MediaOperations.h"
#include "tests/support/Photos.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>
#include <vector>

namespace lumetwin::test {

/// The raster of a preview's picture.
inline Raster rasterOf(const PreviewPicture &picture) {
    Raster raster(picture.width, picture.height);
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const std::uint8_t *pixel = picture.row(y) + static_cast<std::ptrdiff_t>(x) * 4;
            std::reverse_copy(pixel, pixel + 3, raster.at(x, y));
        }
    return raster;
}

/// The pixels of a raster.
inline PreviewPicture previewOf(const Raster &raster) {
    std::vector<std::uint8_t> pixels;
    for (int y = 0; y < raster.height; ++y)
        for (int x = 0; x < raster.width; ++x) {
            const std::uint8_t *from = raster.at(x, y);
            pixels.insert(pixels.end(), {from[2], from[1], from[0], 255});
        }
    return {raster.width, raster.height, std::make_shared<const std::vector<std::uint8_t>>(std::move(pixels))};
}

inline Raster plain(int width, int height, std::array<int, 3> colour) {
    Raster raster(width, height);
    fill(raster, 0, 0, width, height, colour);
    return raster;
}

/// The mean of the green samples in the middle of a picture.
inline double middleOf(const PreviewPicture &picture) {
    double sum = 0;
    int count = 0;
    for (int y = picture.height / 4; y < std::max(picture.height * 3 / 4, picture.height / 4 + 1); ++y)
        for (int x = picture.width / 4; x < std::max(picture.width * 3 / 4, picture.width / 4 + 1); ++x, ++count)
            sum += picture.row(y)[static_cast<std::ptrdiff_t>(x) * 4 + 1];
    return sum / count;
}

class PreviewTest : public testing::Test {
protected:
    std::filesystem::path file(const std::string &name) const { return folder_.path() / name; }

    const MediaOperations &operations() const { return operations_; }
    StereoPreview preview(const ConversionInput &input) const { return operations_.preview(input, request); }
    StereoPreview preview(const std::string &name) const { return operations_.preview(file(name), request); }

    PreviewRequest request{
        .layout = {}, .position = 0, .detail = PreviewDetail::exact, .maximumWidth = 4000, .maximumHeight = 4000};

private:
    TemporaryFolder folder_;
    MediaOperations operations_ = MediaOperations::inProcess();
};

} // namespace lumetwin::test
