// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/photo/SpatialPhotos.h"

#include <cmath>
#include <numbers>
#include <stdexcept>

namespace lumetwin::test {

namespace {

std::uint32_t numberAt(const std::vector<std::uint8_t> &bytes, std::size_t place) {
    return std::uint32_t{bytes.at(place)} << 24 | std::uint32_t{bytes.at(place + 1)} << 16 |
           std::uint32_t{bytes.at(place + 2)} << 8 | bytes.at(place + 3);
}

void putNumber(std::vector<std::uint8_t> &bytes, std::size_t place, std::uint32_t number) {
    for (std::size_t i = 0; i < 4; ++i)
        bytes.at(place + i) = static_cast<std::uint8_t>(number >> (24 - 8 * i));
}

constexpr std::size_t idsInGroup = 20; // size, type, version and flags, group id, count

} // namespace

media::SpatialPhotoFacts factsFor(int width, int height, double fieldOfView) {
    const double focal = width / 2.0 / std::tan(fieldOfView / 360 * std::numbers::pi);
    return {focal, {width / 2.0, height / 2.0}, {64000, 0, 0}, 200};
}

void writeSpatialPhoto(const std::filesystem::path &file, const Raster &left, const Raster &right) {
    media::writeSpatialPhoto(file, pictureOf(left), pictureOf(right), factsFor(left.width, left.height), {});
}

std::vector<Raster> decodedByJudge(const std::filesystem::path &file) {
    const TemporaryFolder folder;
    output({stackProgram("heif-dec"), file.string(), (folder.path() / "image.png").string()});
    std::vector<Raster> images;
    if (std::filesystem::exists(folder.path() / "image.png"))
        images.push_back(readWithMagick(folder.path() / "image.png"));
    for (int index = 1; std::filesystem::exists(folder.path() / ("image-" + std::to_string(index) + ".png")); ++index)
        images.push_back(readWithMagick(folder.path() / ("image-" + std::to_string(index) + ".png")));
    return images;
}

std::string heifInfo(const std::filesystem::path &file) {
    return output({stackProgram("heif-info"), "-d", file.string()}) +
           output({stackProgram("heif-info"), file.string()});
}

std::vector<std::uint32_t> stereoGroup(const std::filesystem::path &file) {
    const std::vector<std::uint8_t> bytes = readFile(file);
    const std::size_t place = placeOfBox(bytes, "ster");
    std::vector<std::uint32_t> ids;
    for (std::uint32_t i = 0; i < numberAt(bytes, place + 16); ++i)
        ids.push_back(numberAt(bytes, place + idsInGroup + 4 * i));
    return ids;
}

void setStereoGroup(const std::filesystem::path &file, const std::vector<std::uint32_t> &ids) {
    std::vector<std::uint8_t> bytes = readFile(file);
    const std::size_t place = placeOfBox(bytes, "ster");
    const std::size_t room = (numberAt(bytes, place) - idsInGroup) / 4;
    if (ids.size() > room) { // another box of the list lends its place: the group moves to the file's end of the list
        throw std::runtime_error("no room for so many ids");
    }
    putNumber(bytes, place + 16, static_cast<std::uint32_t>(ids.size()));
    for (std::size_t i = 0; i < ids.size(); ++i)
        putNumber(bytes, place + idsInGroup + 4 * i, ids[i]);
    writeFile(file, bytes);
}

} // namespace lumetwin::test
