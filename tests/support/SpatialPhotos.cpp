// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/SpatialPhotos.h"

#include "tests/media/bmff/BoxBuilder.h"
#include "tests/support/BoxEdits.h"
#include "tests/support/Paths.h"

#include <cmath>
#include <numbers>
#include <stdexcept>
#include <string_view>

namespace lumetwin::test {

using namespace std::string_literals;

namespace {

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

namespace {

/// Where the types of a photo's coded items stand, in `infe` (ISO/IEC 14496-12, 8.11.6): id, protection, type.
std::vector<std::size_t> placesOfTypes(const std::vector<std::uint8_t> &bytes) {
    const std::string_view all(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    std::vector<std::size_t> places;
    for (std::size_t at = all.find("infe"); at != all.npos; at = all.find("infe", at + 4))
        if (all.substr(at + 12, 4) == "hvc1")
            places.push_back(at + 12);
    return places;
}

} // namespace

void writeImageSequence(const std::filesystem::path &file) {
    writeFile(file, joined({box("ftyp", letters("msf1\0\0\0\0msf1hevc"s)), box("moov", Bytes(16, 0)),
                            box("mdat", Bytes(16, 0))}));
}

void setCoding(const std::filesystem::path &file, const std::string &type) {
    for (const std::size_t place : placesOfTypes(readFile(file)))
        overwrite(file, place, letters(type));
}

void encryptItems(const std::filesystem::path &file) {
    for (const std::size_t place : placesOfTypes(readFile(file)))
        overwrite(file, place - 2, {0, 1});
}

} // namespace lumetwin::test
