// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/photo/SpatialPhotoError.h"
#include "engine/photo/SpatialPhotoToSBS.h"
#include "engine/texts/ProcessorError.h"
#include "tests/support/Paths.h"
#include "tests/support/SpatialPhotos.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>

namespace lumetwin::test {

using Colour = std::array<int, 3>;

inline constexpr Colour red{220, 30, 30};
inline constexpr Colour blue{30, 40, 210};
inline constexpr Colour black{0, 0, 0};

inline Raster solid(int width, int height, Colour colour) {
    Raster picture(width, height);
    fill(picture, 0, 0, width, height, colour);
    return picture;
}

/// Converts spatial photos from "in.heic" in a temporary folder.
class SpatialToSBS : public testing::Test {
protected:
    std::filesystem::path file(const std::string &name) const { return folder_.path() / name; }

    /// A photo whose left eye is red and whose right eye is blue.
    void writeMarkers(int width, int height) {
        writeSpatialPhoto(file("in.heic"), solid(width, height, red), solid(width, height, blue));
    }

    Raster convert(const std::string &output = "out.png") {
        convertSpatialPhotoToSBS(settings_, file("in.heic"), file(output));
        return readWithMagick(file(output));
    }

    /// The message of the error; empty when the conversion succeeds.
    std::string failure(const std::string &output = "out.png") {
        try {
            convertSpatialPhotoToSBS(settings_, file("in.heic"), file(output));
            return {};
        } catch (const SpatialPhotoError &error) {
            return error.what();
        } catch (const ProcessorError &error) {
            return error.what();
        }
    }

    TemporaryFolder folder_;
    ConversionSettings settings_;
};

inline void expectNear(const Raster &picture, int x, int y, Colour colour, int tolerance = 4) {
    for (std::size_t channel = 0; channel < 3; ++channel)
        EXPECT_NEAR(picture.at(x, y)[channel], colour[channel], tolerance) << "at " << x << ", " << y;
}

} // namespace lumetwin::test
