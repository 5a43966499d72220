// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/HeifWriter.h"

#include "media/heif/FileLayout.h"

#include <stdexcept>

namespace lumetwin::media::heif {

namespace {

void write(const OutputFile &file, const FileLayout &layout) {
    const Bytes header = layout.header();
    std::uint64_t position = 0;
    const auto write = [&](std::span<const std::uint8_t> bytes) {
        file.writeAt(position, bytes);
        position += bytes.size();
    };
    write(header);
    layout.data(write);
}

} // namespace

void writeHeif(const OutputFile &file, const CodedImage &image) {
    FileLayout layout;
    const std::uint32_t item = layout.addImage(image);
    layout.addExif(image, item);
    layout.addXmp(image, item);
    write(file, layout);
}

void writeStereoHeif(const OutputFile &file, const CodedImage &left, const CodedImage &right,
                     std::int64_t disparityAdjustment) {
    if (!left.camera || !right.camera)
        throw std::invalid_argument("an eye has no camera");
    FileLayout layout;
    const std::uint32_t leftItem = layout.addImage(left);
    const std::uint32_t rightItem = layout.addImage(right);
    layout.addStereoGroup(leftItem, rightItem, disparityAdjustment);
    layout.addExif(left, leftItem);
    layout.addExif(right, rightItem);
    layout.addXmp(left, leftItem);
    layout.addXmp(right, rightItem);
    write(file, layout);
}

} // namespace lumetwin::media::heif
