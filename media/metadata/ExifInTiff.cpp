// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/MediaError.h"
#include "media/metadata/ExifBlock.h"
#include "media/metadata/ExifBytes.h"

#include <array>
#include <fstream>

namespace lumetwin::media::images {

namespace {

[[noreturn]] void fail(const std::filesystem::path &file) {
    throw MediaError(file, MediaOperation::write, 0, MediaReason::photographNotAdded);
}

using Bytes = std::span<std::uint8_t>;

bool readAt(std::istream &stream, std::uint64_t offset, Bytes bytes) {
    stream.clear();
    stream.seekg(static_cast<std::streamoff>(offset));
    stream.read(reinterpret_cast<char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return stream.gcount() == static_cast<std::streamsize>(bytes.size());
}

/// Where the value of a field of the first directory stands; 0 where there is none.
std::uint64_t placeOfField(std::istream &stream, std::uint16_t tag) {
    std::array<std::uint8_t, 8> header{};
    std::array<std::uint8_t, 2> size{};
    if (!readAt(stream, 0, header))
        return 0;
    const std::uint64_t directory = exif::readNumber(header.data() + 4, 4, false);
    if (!readAt(stream, directory, size))
        return 0;
    for (std::uint64_t i = 0; i < exif::readNumber(size.data(), 2, false); ++i) {
        std::array<std::uint8_t, 12> entry{};
        const std::uint64_t place = directory + 2 + 12 * i;
        if (!readAt(stream, place, entry))
            return 0;
        if (exif::readNumber(entry.data(), 2, false) == tag)
            return place;
    }
    return 0;
}

/// Writes a directory at the file's end and its place into the field that leads to it, as a 32-bit number.
void append(std::fstream &stream, const std::filesystem::path &file, std::uint16_t tag,
            const std::function<std::vector<std::uint8_t>(std::uint32_t)> &directory) {
    const std::uint64_t field = placeOfField(stream, tag);
    stream.clear();
    stream.seekp(0, std::ios::end);
    const std::streamoff end = stream.tellp();
    if (field == 0 || end < 0 || end > 0xF0000000)
        fail(file);
    const auto place = static_cast<std::uint32_t>((end + 1) / 2 * 2);
    if (place != end)
        stream.put(0);
    const std::vector<std::uint8_t> bytes = directory(place);
    stream.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    std::array<std::uint8_t, 10> entry{};
    exif::writeNumber(entry.data(), 2, false, exif::longNumber);
    exif::writeNumber(entry.data() + 2, 4, false, 1);
    exif::writeNumber(entry.data() + 6, 4, false, place);
    stream.seekp(static_cast<std::streamoff>(field + 2));
    stream.write(reinterpret_cast<const char *>(entry.data()), entry.size());
    if (!stream.flush())
        fail(file);
}

} // namespace

std::vector<std::uint8_t> exifOfTiffFile(const std::filesystem::path &file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        return {};
    const ExifBlock block = ExifBlock::parse(
        [&stream](std::uint64_t offset, std::span<std::uint8_t> bytes) { return readAt(stream, offset, bytes); });
    return block.empty() ? std::vector<std::uint8_t>{} : block.bytes();
}

void addSubdirectories(const std::filesystem::path &file, const ExifBlock &exif) {
    if (!exif.hasPhotograph() && !exif.hasPosition())
        return;
    std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
    if (!stream)
        fail(file);
    if (exif.hasPhotograph())
        append(stream, file, exif::photographDirectory,
               [&exif](std::uint32_t place) { return exif.photographBytes(place); });
    if (exif.hasPosition())
        append(stream, file, exif::positionDirectory,
               [&exif](std::uint32_t place) { return exif.positionBytes(place); });
}

} // namespace lumetwin::media::images
