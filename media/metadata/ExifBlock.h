// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace lumetwin::media::images {

/// What an Exif block (CIPA DC-008, a TIFF structure) tells of a photograph: the camera's, the photograph's, the
/// position's and the interoperability directories. Thumbnails and fields that describe how samples are stored are left
/// out; values stay in the block's byte order.
class ExifBlock {
public:
    /// One field; `value` holds count items of the type.
    struct Field {
        std::uint16_t tag = 0;
        std::uint16_t type = 0;
        std::uint32_t count = 0;
        std::vector<std::uint8_t> value;
        std::uint32_t place = 0; ///< where the value lay in the block it was read from
    };
    using Directory = std::vector<Field>;
    /// Fills the span with bytes from the offset on; false where there are none.
    using Source = std::function<bool(std::uint64_t offset, std::span<std::uint8_t> bytes)>;

    /// What can be read of a block; damaged parts are left out, nothing is thrown for them.
    static ExifBlock parse(std::span<const std::uint8_t> block);
    static ExifBlock parse(const Source &source);

    bool empty() const;
    bool hasPhotograph() const { return !photograph_.empty(); }
    bool hasPosition() const { return !position_.empty(); }
    /// A text field of the camera's directory, empty where there is none.
    std::string imageText(std::uint16_t tag) const;

    /// Says of the picture what is true: upright, of this size, thumbnails gone.
    void describePicture(int width, int height);
    /// The colour space field, where there is one: sRGB.
    void describeSRGB();
    void dropMakerNote();

    /// The block with its TIFF header. A maker's note stays at the offset where it was, because many refer to that.
    std::vector<std::uint8_t> bytes() const;
    /// The directory of the photograph (with its interoperability directory), or of the position, as bytes that are to
    /// lie at `place` of a little-endian file. Maker's notes that refer to their place are left out.
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
