// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace lumetwin::media::images {

/// The contents of an Exif block (CIPA DC-008, a TIFF structure): the directories of the camera, the photograph, the
/// position and interoperability. Thumbnails and fields about sample storage are left out. Values keep the block's byte
/// order.
class ExifBlock {
public:
    /// One field. `value` has `count` items of the type.
    struct Field {
        std::uint16_t tag = 0;
        std::uint16_t type = 0;
        std::uint32_t count = 0;
        std::vector<std::uint8_t> value;
        std::uint32_t place = 0; ///< offset of the value in the original block
    };
    using Directory = std::vector<Field>;
    /// Reads bytes from the offset. Returns false when they do not exist.
    using Source = std::function<bool(std::uint64_t offset, std::span<std::uint8_t> bytes)>;

    /// Parses a block. Damaged parts are left out without an exception, and so are values beyond the size of the
    /// block: a small block cannot become a large one.
    static ExifBlock parse(std::span<const std::uint8_t> block);
    static ExifBlock parse(const Source &source, std::uint64_t size);

    bool empty() const;
    bool hasPhotograph() const { return !photograph_.empty(); }
    bool hasPosition() const { return !position_.empty(); }
    /// A text field of the camera's directory; empty when missing.
    std::string imageText(std::uint16_t tag) const;

    /// Sets the facts about the picture: upright, this size, no thumbnails.
    void describePicture(int width, int height);
    /// Sets the colour space field to sRGB, if there is one.
    void describeSRGB();
    void dropMakerNote();

    /// The block with its TIFF header. A maker's note keeps its offset, because many notes contain absolute offsets.
    std::vector<std::uint8_t> bytes() const;
    /// The directory of the photograph (with its interoperability directory), or of the position, as bytes for the
    /// offset `place` of a little-endian file. Maker's notes with absolute offsets are left out.
    std::vector<std::uint8_t> photographBytes(std::uint32_t place) const;
    std::vector<std::uint8_t> positionBytes(std::uint32_t place) const;

private:
    void set(Directory &directory, Field field);
    Field number(std::uint16_t tag, std::uint16_t type, std::uint32_t value) const;
    Directory littleEndian(const Directory &directory) const;

    bool bigEndian_ = false;
    Directory camera_;
    Directory photograph_;
    Directory position_;
    Directory interoperability_;
};

} // namespace lumetwin::media::images
