// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"
#include "tests/support/TestMedia.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace lumetwin::test {

/// Interleaved 8-bit RGB.
struct Raster {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> samples;

    Raster(int w, int h) : width(w), height(h), samples(static_cast<std::size_t>(w) * h * 3) {}
    std::uint8_t *at(int x, int y) { return samples.data() + (static_cast<std::size_t>(y) * width + x) * 3; }
    const std::uint8_t *at(int x, int y) const {
        return samples.data() + (static_cast<std::size_t>(y) * width + x) * 3;
    }
    std::array<int, 3> colour(int x, int y) const { return {at(x, y)[0], at(x, y)[1], at(x, y)[2]}; }
    bool operator==(const Raster &) const = default;
};

/// A smooth picture with a few hard edges; the seed changes colours and places.
Raster drawn(int width, int height, int seed = 0);
/// Two pictures side by side.
Raster sideBySide(const Raster &left, const Raster &right);
Raster part(const Raster &picture, int x, int y, int width, int height);

void fill(Raster &picture, int x, int y, int width, int height, std::array<int, 3> colour);

/// Writes the picture with ImageMagick, with more options of its `convert` before the output.
void writeWithMagick(const Raster &picture, const std::filesystem::path &file,
                     const std::vector<std::string> &options = {});
/// What ImageMagick reads (options after the input).
Raster readWithMagick(const std::filesystem::path &file, const std::vector<std::string> &options = {});
/// What our own reader reads, converted to 8-bit RGB. Expects that the headers say the size of it.
Raster readWithOurs(const std::filesystem::path &file);
Raster rasterOf(const media::Picture &picture);
media::Picture pictureOf(const Raster &raster);

/// Peak signal-to-noise ratio over all channels, dB; 99 for equal pictures.
double psnr(const Raster &one, const Raster &other);
int largestDifference(const Raster &one, const Raster &other);

} // namespace lumetwin::test
