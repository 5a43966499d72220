// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/metadata/ExifBlock.h"

#include "media/metadata/ExifBytes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace lumetwin::media::images {

namespace {

constexpr std::size_t valueLimit = 16u << 20; // bytes of all values together, of a large file
constexpr std::uint32_t fieldLimit = 1000;    // of one directory
constexpr std::uint32_t noteLimit = 1u << 20; // a maker's note at a larger offset is moved

// Fields of the camera's directory about the photograph. The others describe how a file stores samples.
constexpr std::array<std::uint16_t, 17> cameraFields{0x010E /* description */,
                                                     0x010F /* make */,
                                                     0x0110 /* model */,
                                                     0x011A /* x resolution */,
                                                     0x011B /* y resolution */,
                                                     0x0128 /* its unit */,
                                                     0x0131 /* software */,
                                                     0x0132 /* date and time */,
                                                     0x013B /* artist */,
                                                     0x013C /* host */,
                                                     0x4746 /* rating */,
                                                     0x8298 /* copyright */,
                                                     0x9C9B /* title … */,
                                                     0x9C9C /* comment */,
                                                     0x9C9D /* author */,
                                                     0x9C9E /* keywords */,
                                                     0x9C9F /* subject */};

constexpr std::uint16_t orientation = 0x0112;
constexpr std::uint16_t chromaPositioning = 0x0213;
constexpr std::uint16_t colourSpace = 0xA001;
constexpr std::uint16_t pixelWidth = 0xA002;
constexpr std::uint16_t pixelHeight = 0xA003;
// Positions in the original picture, which are not valid in another one.
constexpr std::uint16_t subjectArea = 0x9214;
constexpr std::uint16_t subjectLocation = 0xA214;

/// Reads directories and limits the total amount of data.
class Parser {
public:
    /// The values of an intact block do not overlap, so together they are at most as large as the block.
    Parser(const ExifBlock::Source &source, std::uint64_t size, bool bigEndian)
        : source_(source), limit_(std::min<std::uint64_t>(size, valueLimit)), bigEndian_(bigEndian) {}

    std::uint32_t number(const std::uint8_t *bytes, std::size_t size) const {
        return exif::readNumber(bytes, size, bigEndian_);
    }

    ExifBlock::Directory directory(std::uint32_t offset) {
        ExifBlock::Directory fields;
        std::array<std::uint8_t, 2> size{};
        if (offset < 8 || !source_(offset, size))
            return fields;
        const std::uint32_t count = std::min(number(size.data(), 2), fieldLimit);
        for (std::uint32_t i = 0; i < count; ++i) {
            ExifBlock::Field field;
            if (readField(std::uint64_t{offset} + 2 + 12 * std::uint64_t{i}, field))
                fields.push_back(std::move(field));
        }
        return fields;
    }

private:
    bool readField(std::uint64_t offset, ExifBlock::Field &field) {
        std::array<std::uint8_t, 12> entry{};
        if (!source_(offset, entry))
            return false;
        field.tag = static_cast<std::uint16_t>(number(entry.data(), 2));
        field.type = static_cast<std::uint16_t>(number(entry.data() + 2, 2));
        field.count = number(entry.data() + 4, 4);
        const std::uint64_t size = std::uint64_t{field.count} * exif::itemSize(field.type);
        if (size == 0 || size > limit_ - taken_)
            return false;
        field.value.resize(static_cast<std::size_t>(size));
        field.place = size <= 4 ? static_cast<std::uint32_t>(offset + 8) : number(entry.data() + 8, 4);
        if (!source_(field.place, field.value))
            return false;
        taken_ += size;
        return true;
    }

    const ExifBlock::Source &source_;
    std::uint64_t limit_;
    bool bigEndian_;
    std::uint64_t taken_ = 0;
};

const ExifBlock::Field *find(const ExifBlock::Directory &directory, std::uint16_t tag) {
    const auto found = std::find_if(directory.begin(), directory.end(),
                                    [tag](const ExifBlock::Field &field) { return field.tag == tag; });
    return found == directory.end() ? nullptr : &*found;
}

void drop(ExifBlock::Directory &directory, std::uint16_t tag) {
    std::erase_if(directory, [tag](const ExifBlock::Field &field) { return field.tag == tag; });
}

void order(ExifBlock::Directory &directory) {
    std::stable_sort(directory.begin(), directory.end(),
                     [](const ExifBlock::Field &one, const ExifBlock::Field &other) { return one.tag < other.tag; });
    const auto repeated =
        std::unique(directory.begin(), directory.end(),
                    [](const ExifBlock::Field &one, const ExifBlock::Field &other) { return one.tag == other.tag; });
    directory.erase(repeated, directory.end());
}

bool isCameraField(const ExifBlock::Field &field) {
    return std::find(cameraFields.begin(), cameraFields.end(), field.tag) != cameraFields.end();
}

/// Whether a maker's note uses offsets relative to its own beginning, so that it can be moved.
bool isRelocatable(const std::vector<std::uint8_t> &note) {
    using namespace std::string_view_literals;
    constexpr std::array beginnings{"Apple iOS\0"sv, "Nikon\0\x02"sv, "FUJIFILM"sv,
                                    "OLYMPUS\0"sv,   "OM SYSTEM\0"sv, "PENTAX \0"sv};
    const std::string_view text(reinterpret_cast<const char *>(note.data()), note.size());
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [text](std::string_view beginning) { return text.starts_with(beginning); });
}

} // namespace

ExifBlock ExifBlock::parse(std::span<const std::uint8_t> block) {
    const Source source = [block](std::uint64_t offset, std::span<std::uint8_t> bytes) {
        if (offset > block.size() || bytes.size() > block.size() - offset)
            return false;
        std::memcpy(bytes.data(), block.data() + offset, bytes.size());
        return true;
    };
    return parse(source, block.size());
}

ExifBlock ExifBlock::parse(const Source &source, std::uint64_t size) {
    ExifBlock block;
    std::array<std::uint8_t, 8> header{};
    if (!source(0, header))
        return block;
    block.bigEndian_ = header[0] == 'M';
    Parser parser(source, size, block.bigEndian_);
    if (header[0] != header[1] || (header[0] != 'M' && header[0] != 'I') || parser.number(header.data() + 2, 2) != 42)
        return block;
    const auto follow = [&](const Directory &directory, std::uint16_t tag) {
        const Field *field = find(directory, tag);
        return field && field->value.size() == 4 ? parser.directory(parser.number(field->value.data(), 4))
                                                 : Directory{};
    };
    block.camera_ = parser.directory(parser.number(header.data() + 4, 4));
    block.photograph_ = follow(block.camera_, exif::photographDirectory);
    block.position_ = follow(block.camera_, exif::positionDirectory);
    block.interoperability_ = follow(block.photograph_, exif::interoperabilityDirectory);
    std::erase_if(block.camera_, [](const Field &field) { return !isCameraField(field); });
    for (const std::uint16_t tag : {exif::interoperabilityDirectory, subjectArea, subjectLocation})
        drop(block.photograph_, tag);
    for (Directory *directory : {&block.camera_, &block.photograph_, &block.position_, &block.interoperability_})
        order(*directory);
    return block;
}

bool ExifBlock::empty() const {
    return camera_.empty() && photograph_.empty() && position_.empty();
}

std::string ExifBlock::imageText(std::uint16_t tag) const {
    const Field *field = find(camera_, tag);
    if (!field || field->type != exif::ascii)
        return {};
    std::string text(field->value.begin(), field->value.end());
    return text.substr(0, text.find('\0'));
}

ExifBlock::Field ExifBlock::number(std::uint16_t tag, std::uint16_t type, std::uint32_t value) const {
    Field field{tag, type, 1, std::vector<std::uint8_t>(exif::itemSize(type)), 0};
    exif::writeNumber(field.value.data(), field.value.size(), bigEndian_, value);
    return field;
}

void ExifBlock::set(Directory &directory, Field field) {
    drop(directory, field.tag);
    directory.push_back(std::move(field));
    order(directory);
}

void ExifBlock::describePicture(int width, int height) {
    set(camera_, number(orientation, exif::shortNumber, 1));
    set(camera_, number(chromaPositioning, exif::shortNumber, 1));
    if (photograph_.empty())
        return;
    set(photograph_, number(pixelWidth, exif::longNumber, static_cast<std::uint32_t>(width)));
    set(photograph_, number(pixelHeight, exif::longNumber, static_cast<std::uint32_t>(height)));
}

void ExifBlock::describeSRGB() {
    if (find(photograph_, colourSpace))
        set(photograph_, number(colourSpace, exif::shortNumber, 1));
    interoperability_.clear(); // it may specify another colour space
}

void ExifBlock::dropMakerNote() {
    drop(photograph_, exif::makerNote);
}

std::vector<std::uint8_t> ExifBlock::bytes() const {
    constexpr std::uint32_t headerSize = 8;
    ExifLayout layout(bigEndian_, 0, headerSize);
    const Field *note = find(photograph_, exif::makerNote);
    if (note && note->value.size() > 4 && note->place >= headerSize && note->place <= noteLimit)
        layout.reserveRange(note->place, static_cast<std::uint32_t>(note->value.size()));
    Directory camera = camera_;
    Directory photograph = photograph_;
    const auto point = [this](Directory &from, std::uint16_t tag, const Directory &to) {
        if (!to.empty()) {
            from.push_back(number(tag, exif::longNumber, 0));
            order(from);
        }
    };
    point(photograph, exif::interoperabilityDirectory, interoperability_);
    point(camera, exif::photographDirectory, photograph);
    point(camera, exif::positionDirectory, position_);
    const std::uint32_t first = layout.add(camera);
    const auto place = [&layout](const Directory &from, std::uint32_t fromPlace, std::uint16_t tag,
                                 const Directory &directory) {
        const Field *field = find(from, tag);
        if (!field)
            return std::uint32_t{0};
        const std::uint32_t offset = layout.add(directory);
        layout.patch(fromPlace, static_cast<std::size_t>(field - from.data()), offset);
        return offset;
    };
    const std::uint32_t second = place(camera, first, exif::photographDirectory, photograph);
    place(photograph, second, exif::interoperabilityDirectory, interoperability_);
    place(camera, first, exif::positionDirectory, position_);
    const char order = bigEndian_ ? 'M' : 'I';
    std::uint8_t *header = layout.at(0);
    header[0] = header[1] = static_cast<std::uint8_t>(order);
    exif::writeNumber(header + 2, 2, bigEndian_, 42);
    exif::writeNumber(header + 4, 4, bigEndian_, first);
    return layout.take();
}

ExifBlock::Directory ExifBlock::littleEndian(const Directory &directory) const {
    Directory fields = directory;
    for (Field &field : fields) {
        const std::size_t size = exif::numberSize(field.type);
        if (bigEndian_ && size > 1)
            for (std::size_t at = 0; at + size <= field.value.size(); at += size)
                std::reverse(field.value.begin() + static_cast<std::ptrdiff_t>(at),
                             field.value.begin() + static_cast<std::ptrdiff_t>(at + size));
    }
    return fields;
}

std::vector<std::uint8_t> ExifBlock::photographBytes(std::uint32_t place) const {
    Directory fields = littleEndian(photograph_);
    const Field *note = find(fields, exif::makerNote);
    if (note && !isRelocatable(note->value))
        drop(fields, exif::makerNote);
    ExifLayout layout(false, place, 0);
    if (interoperability_.empty()) {
        layout.add(fields);
        return layout.take();
    }
    fields.push_back({exif::interoperabilityDirectory, exif::longNumber, 1, std::vector<std::uint8_t>(4), 0});
    order(fields);
    const std::uint32_t first = layout.add(fields);
    const std::uint32_t inner = layout.add(littleEndian(interoperability_));
    layout.patch(first, static_cast<std::size_t>(find(fields, exif::interoperabilityDirectory) - fields.data()), inner);
    return layout.take();
}

std::vector<std::uint8_t> ExifBlock::positionBytes(std::uint32_t place) const {
    ExifLayout layout(false, place, 0);
    layout.add(littleEndian(position_));
    return layout.take();
}

} // namespace lumetwin::media::images
