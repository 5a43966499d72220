// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/metadata/ExifInTiff.h"

#include "media/MediaError.h"
#include "media/metadata/ExifBytes.h"

#include <array>

namespace lumetwin::media::images {

namespace {

using WritableBytes = std::span<std::uint8_t>;

template <typename File> bool readAll(const File &file, std::uint64_t position, WritableBytes bytes) {
    return file.readAt(position, bytes) == bytes.size();
}

/// The offset of the value of a field of the first directory; 0 when there is none.
std::uint64_t placeOfField(const OutputFile &file, std::uint16_t tag) {
    std::array<std::uint8_t, 8> header{};
    std::array<std::uint8_t, 2> size{};
    if (!readAll(file, 0, header))
        return 0;
    const std::uint64_t directory = exif::readNumber(header.data() + 4, 4, false);
    if (!readAll(file, directory, size))
        return 0;
    for (std::uint64_t i = 0; i < exif::readNumber(size.data(), 2, false); ++i) {
        std::array<std::uint8_t, 12> entry{};
        const std::uint64_t place = directory + 2 + 12 * i;
        if (!readAll(file, place, entry))
            return 0;
        if (exif::readNumber(entry.data(), 2, false) == tag)
            return place;
    }
    return 0;
}

/// Appends a directory to the file and writes its offset into the field for it, as a 32-bit number.
void append(const OutputFile &file, std::uint16_t tag,
            const std::function<std::vector<std::uint8_t>(std::uint32_t)> &directory) {
    const std::uint64_t field = placeOfField(file, tag);
    const std::uint64_t end = file.size();
    if (field == 0 || end > 0xF0000000)
        throw MediaError(file.path(), MediaOperation::write, 0, MediaReason::photographNotAdded);
    const auto place = static_cast<std::uint32_t>((end + 1) / 2 * 2);
    if (place != end)
        file.writeAt(end, std::array<std::uint8_t, 1>{});
    file.writeAt(place, directory(place));
    std::array<std::uint8_t, 10> entry{};
    exif::writeNumber(entry.data(), 2, false, exif::longNumber);
    exif::writeNumber(entry.data() + 2, 4, false, 1);
    exif::writeNumber(entry.data() + 6, 4, false, place);
    file.writeAt(field + 2, entry);
}

} // namespace

std::vector<std::uint8_t> exifOfTiffFile(const InputFile &file) {
    const ExifBlock block = ExifBlock::parse(
        [&file](std::uint64_t offset, std::span<std::uint8_t> bytes) { return readAll(file, offset, bytes); },
        file.size());
    return block.empty() ? std::vector<std::uint8_t>{} : block.bytes();
}

void addSubdirectories(const OutputFile &file, const ExifBlock &exif) {
    if (exif.hasPhotograph())
        append(file, exif::photographDirectory, [&exif](std::uint32_t place) { return exif.photographBytes(place); });
    if (exif.hasPosition())
        append(file, exif::positionDirectory, [&exif](std::uint32_t place) { return exif.positionBytes(place); });
}

} // namespace lumetwin::media::images
