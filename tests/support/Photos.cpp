// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Photos.h"

#include "media/ColourConversion.h"
#include "tests/support/Paths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace lumetwin::test {

namespace {

std::uint8_t limited(double value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0));
}

std::string sizeOf(const Raster &picture) {
    return std::to_string(picture.width) + "x" + std::to_string(picture.height);
}

} // namespace

Raster drawn(int width, int height, int seed) {
    Raster picture(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            std::uint8_t *pixel = picture.at(x, y);
            pixel[0] = limited(127 + 110 * std::sin(x * 0.021 + seed));
            pixel[1] = limited(127 + 110 * std::sin(y * 0.017 + seed * 0.7));
            pixel[2] = limited(127 + 110 * std::sin((x + y) * 0.011 + seed * 1.3));
        }
    for (int box = 0; box < 3; ++box) {
        const int level = (seed * 53 + box * 90) % 256;
        fill(picture, width * (1 + box * 3 + seed % 2) / 12, height * (2 + box * 2) / 10, width / 10, height / 10,
             {level, 255 - level, (level * 2) % 256});
    }
    return picture;
}

Raster sideBySide(const Raster &left, const Raster &right) {
    Raster both(left.width + right.width, left.height);
    for (int y = 0; y < left.height; ++y) {
        std::copy_n(left.at(0, y), left.width * 3, both.at(0, y));
        std::copy_n(right.at(0, y), right.width * 3, both.at(left.width, y));
    }
    return both;
}

Raster part(const Raster &picture, int x, int y, int width, int height) {
    Raster piece(width, height);
    for (int row = 0; row < height; ++row)
        std::copy_n(picture.at(x, y + row), width * 3, piece.at(0, row));
    return piece;
}

void fill(Raster &picture, int x, int y, int width, int height, std::array<int, 3> colour) {
    for (int row = y; row < y + height; ++row)
        for (int column = x; column < x + width; ++column)
            for (std::size_t channel = 0; channel < 3; ++channel)
                picture.at(column, row)[channel] = static_cast<std::uint8_t>(colour[channel]);
}

void writeWithMagick(const Raster &picture, const std::filesystem::path &file,
                     const std::vector<std::string> &options) {
    const TemporaryFolder folder;
    const std::filesystem::path raw = folder.path() / "raw.rgb";
    writeFile(raw, picture.samples);
    std::vector<std::string> command{"convert", "-size", sizeOf(picture), "-depth", "8", "rgb:" + raw.string()};
    command.insert(command.end(), options.begin(), options.end());
    command.push_back(file.string());
    output(command);
}

Raster readWithMagick(const std::filesystem::path &file, const std::vector<std::string> &options) {
    std::vector<std::string> command{"convert", file.string()};
    command.insert(command.end(), options.begin(), options.end());
    const TemporaryFolder folder;
    const std::filesystem::path raw = folder.path() / "raw.rgb";
    command.insert(command.end(), {"-depth", "8", "-write", "rgb:" + raw.string(), "-format", "%w %h", "info:"});
    const std::string size = output(command);
    const std::size_t space = size.find(' ');
    Raster picture(std::stoi(size.substr(0, space)), std::stoi(size.substr(space)));
    std::vector<std::uint8_t> samples = readFile(raw);
    if (samples.size() != picture.samples.size())
        throw std::runtime_error("unexpected size of " + file.string());
    picture.samples = std::move(samples);
    return picture;
}

Raster rasterOf(const media::Picture &picture) {
    const media::Picture rgb =
        media::convertColour(picture, {media::ColourModel::rgb, 8, 0, 0}, {1, 13, 0, media::ColourRange::full, {}});
    Raster raster(rgb.width, rgb.height);
    for (int y = 0; y < rgb.height; ++y)
        for (int x = 0; x < rgb.width; ++x)
            for (int plane = 0; plane < 3; ++plane)
                raster.at(x, y)[plane] = rgb.planes[static_cast<std::size_t>(plane)]
                                             .data[y * rgb.planes[static_cast<std::size_t>(plane)].stride + x];
    return raster;
}

media::Picture pictureOf(const Raster &raster) {
    media::Picture picture = media::makePicture(raster.width, raster.height, {media::ColourModel::rgb, 8, 0, 0},
                                                {1, 13, 0, media::ColourRange::full, {}});
    for (int y = 0; y < raster.height; ++y)
        for (int x = 0; x < raster.width; ++x)
            for (std::size_t plane = 0; plane < 3; ++plane)
                picture.planes[plane].data[y * picture.planes[plane].stride + x] = raster.at(x, y)[plane];
    return picture;
}

Raster readWithOurs(const std::filesystem::path &file) {
    const media::Picture picture = media::readImage(file).picture;
    const media::PixelSize stated = media::ImageFile(media::InputFile(file)).size();
    EXPECT_EQ(stated.width, picture.width) << file;
    EXPECT_EQ(stated.height, picture.height) << file;
    return rasterOf(picture);
}

double psnr(const Raster &one, const Raster &other) {
    EXPECT_EQ(one.width, other.width);
    EXPECT_EQ(one.height, other.height);
    if (one.samples.size() != other.samples.size())
        return 0;
    double sum = 0;
    for (std::size_t i = 0; i < one.samples.size(); ++i) {
        const double difference = static_cast<double>(one.samples[i]) - other.samples[i];
        sum += difference * difference;
    }
    return sum == 0 ? 99 : 10 * std::log10(255.0 * 255.0 * static_cast<double>(one.samples.size()) / sum);
}

int largestDifference(const Raster &one, const Raster &other) {
    EXPECT_EQ(one.samples.size(), other.samples.size());
    int largest = 0;
    for (std::size_t i = 0; i < std::min(one.samples.size(), other.samples.size()); ++i)
        largest = std::max(largest, std::abs(one.samples[i] - other.samples[i]));
    return largest;
}

} // namespace lumetwin::test
