// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/FileLayout.h"
#include "media/heif/ItemProperties.h"
#include "media/heif/MetaBoxWriter.h"

#include "media/heif/CameraProperties.h"
#include "media/heif/ItemProperties.h"
#include "media/heif/MetaBoxWriter.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace lumetwin::media::heif {

namespace {

using bmff::box;
using bmff::FieldWriter;
using bmff::fullBox;
using bmff::uuidBox;

constexpr std::uint8_t essential = 0x80;
constexpr std::string_view exifType = "Exif";
constexpr std::string_view xmpType = "mime";
constexpr std::uint32_t largestId = 0xffff;

bool isGrid(const CodedImage &image) {
    return image.columns * image.rows > 1;
}

/// Whether the tiles of one side cover it, and none is completely outside.
bool covers(std::uint32_t count, std::uint32_t tile, std::uint32_t size) {
    const std::uint64_t covered = std::uint64_t{count} * tile;
    return size > 0 && covered >= size && covered - tile < size;
}

void check(const CodedImage &image) {
    constexpr std::uint32_t mostTiles = 256; // a byte holds their number less one
    if (image.columns < 1 || image.rows < 1 || image.columns > mostTiles || image.rows > mostTiles ||
        image.tiles.size() != std::size_t{image.columns} * image.rows)
        throw std::invalid_argument("the number of tiles is wrong");
    if (!covers(image.columns, image.tileWidth, image.width) || !covers(image.rows, image.tileHeight, image.height))
        throw std::invalid_argument("the tiles do not fit the image");
    if (image.configuration.empty())
        throw std::invalid_argument("the decoder's configuration is missing");
}

/// ISO/IEC 23008-12, 6.6.2.3.2
Bytes gridPayload(const CodedImage &image) {
    const bool large = image.width > 0xffff || image.height > 0xffff;
    const int size = large ? 4 : 2;
    return FieldWriter()
        .u8(0)
        .u8(large ? 1 : 0)
        .u8(image.rows - 1)
        .u8(image.columns - 1)
        .number(image.width, size)
        .number(image.height, size)
        .bytes();
}

Bytes sizeBox(std::uint32_t width, std::uint32_t height) {
    return fullBox("ispe", 0, FieldWriter().u32(width).u32(height));
}

Bytes depthBox(const CodedImage &image) {
    FieldWriter fields;
    fields.u8(static_cast<std::uint64_t>(image.channels));
    for (int channel = 0; channel < image.channels; ++channel)
        fields.u8(static_cast<std::uint64_t>(image.bitDepth));
    return fullBox("pixi", 0, fields);
}

/// A clean aperture that keeps the top left part of the picture (ISO/IEC 14496-12, 12.1.4; offsets are between the
/// centres).
Bytes apertureBox(const CodedImage &image) {
    const auto offset = [](std::uint32_t size, std::uint32_t coded) {
        return static_cast<std::int32_t>(std::int64_t{size} - std::int64_t{coded});
    };
    FieldWriter fields;
    fields.u32(image.width).u32(1).u32(image.height).u32(1);
    fields.i32(offset(image.width, image.tileWidth)).u32(2);
    fields.i32(offset(image.height, image.tileHeight)).u32(2);
    return box("clap", fields.bytes());
}

std::vector<Bytes> colourBoxes(const CodedImage &image) {
    std::vector<Bytes> boxes;
    if (!image.colourProfile.empty())
        boxes.push_back(box("colr", FieldWriter().text("prof").append(image.colourProfile).bytes()));
    if (image.colour) {
        const HeifColour &colour = *image.colour;
        FieldWriter fields;
        fields.text("nclx");
        for (const int codePoint : {colour.primaries, colour.transfer, colour.matrix})
            fields.u16(static_cast<std::uint64_t>(codePoint));
        boxes.push_back(box("colr", fields.u8(colour.fullRange ? 0x80 : 0).bytes()));
    }
    return boxes;
}

std::span<const std::uint8_t> bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()};
}

} // namespace

FileLayout::Item &FileLayout::addItem(std::string_view type) {
    if (nextId_ > largestId)
        throw std::invalid_argument("there are too many tiles");
    Item item;
    item.id = nextId_++;
    item.type = type;
    return written_.items.emplace_back(std::move(item));
}

std::uint8_t FileLayout::addProperty(Bytes box) {
    written_.properties.push_back(std::move(box));
    return static_cast<std::uint8_t>(
        written_.properties.size()); // fits into a byte: two images have at most a few dozen
}

/// Adds the properties that a decoder needs: the essential colours, then the configuration.
std::vector<std::uint8_t> FileLayout::addCoding(const CodedImage &image) {
    std::vector<std::uint8_t> indexes;
    for (Bytes &colour : colourBoxes(image))
        indexes.push_back(addProperty(std::move(colour)) | essential);
    indexes.push_back(addProperty(box("hvcC", image.configuration)) | essential);
    return indexes;
}

std::vector<std::uint32_t> FileLayout::addTiles(const CodedImage &image, const std::vector<std::uint8_t> &properties) {
    std::vector<std::uint32_t> ids;
    for (const std::vector<Bytes> &slices : image.tiles) {
        Item &item = addItem("hvc1");
        item.hidden = isGrid(image);
        item.properties = properties;
        for (const Bytes &slice : slices)
            item.pieces.push_back({FieldWriter().u32(slice.size()).bytes(), slice});
        ids.push_back(item.id);
    }
    return ids;
}

void FileLayout::addCamera(std::vector<std::uint8_t> &properties, const CodedImage &image) {
    if (!image.camera)
        return;
    const Camera &camera = *image.camera;
    properties.push_back(addProperty(uuidBox(extrinsicsUuid, extrinsicsPayload(camera.position))));
    // The numbers are relative to the size in `ispe`.
    const double width = isGrid(image) ? image.width : image.tileWidth;
    const double height = isGrid(image) ? image.height : image.tileHeight;
    const auto fixed = fixedIntrinsics(camera.focalLength / width, camera.principalPoint[0] / width,
                                       camera.principalPoint[1] / height);
    if (!fixed)
        return;
    Bytes payload = intrinsicsPayload(*fixed);
    if (payload != intrinsics_) {
        intrinsicsIndex_ = addProperty(uuidBox(intrinsicsUuid, payload));
        intrinsics_ = std::move(payload);
    }
    properties.push_back(intrinsicsIndex_);
}

std::uint32_t FileLayout::addImage(const CodedImage &image) {
    check(image);
    const std::vector<std::uint8_t> coding = addCoding(image);
    const std::uint8_t tileSize = addProperty(sizeBox(image.tileWidth, image.tileHeight));
    std::vector<std::uint8_t> tileProperties{static_cast<std::uint8_t>(tileSize | essential)};
    tileProperties.insert(tileProperties.end(), coding.begin(), coding.end());
    const std::vector<std::uint32_t> tiles = addTiles(image, tileProperties);
    std::vector<std::uint8_t> own;
    if (isGrid(image)) {
        Item &grid = addItem("grid");
        grid.inMeta = true;
        grid.pieces.push_back({gridPayload(image), {}});
        own.assign(coding.begin(), coding.end() - 1);
        own.push_back(addProperty(sizeBox(image.width, image.height)));
        written_.references.push_back({"dimg", grid.id, tiles});
    } else {
        own = tileProperties;
    }
    own.push_back(addProperty(depthBox(image)));
    addCamera(own, image);
    if (!isGrid(image) && (image.width != image.tileWidth || image.height != image.tileHeight))
        own.push_back(addProperty(apertureBox(image)) | essential);
    written_.items.back().properties = std::move(own);
    if (written_.primary == 0)
        written_.primary = written_.items.back().id;
    return written_.items.back().id;
}

void FileLayout::addStereoGroup(std::uint32_t left, std::uint32_t right, std::int64_t disparityAdjustment) {
    const std::uint8_t disparity = addProperty(uuidBox(disparityUuid, disparityPayload(disparityAdjustment)));
    for (Item &item : written_.items)
        if (item.id == left || item.id == right) {
            // Properties that change the picture (the aperture) must come after those that describe it.
            const auto last = std::ranges::find_if(item.properties, [&](std::uint8_t index) {
                const Bytes &bytes = written_.properties[(index & ~essential) - 1u];
                return std::equal(bytes.begin() + 4, bytes.begin() + 8, "clap");
            });
            item.properties.insert(last, disparity);
        }
    // A group's id must differ from all item ids.
    written_.groups = box("grpl", fullBox("ster", 0, FieldWriter().u32(nextId_++).u32(2).u32(left).u32(right)));
}

void FileLayout::addMetadataItem(std::string_view type, std::uint32_t image, Piece piece) {
    Item &item = addItem(type);
    item.hidden = true;
    item.isMetadata = true;
    if (type == xmpType)
        item.contentType = "application/rdf+xml";
    item.pieces.push_back(std::move(piece));
    written_.references.push_back({"cdsc", item.id, {image}});
}

void FileLayout::addExif(const CodedImage &image, std::uint32_t item) {
    // ISO/IEC 23008-12, A.2.1: the offset of the TIFF header from after this number.
    static const Bytes head = FieldWriter().u32(6).text("Exif").u16(0).bytes();
    if (!image.exif.empty())
        addMetadataItem(exifType, item, {head, image.exif});
}

void FileLayout::addXmp(const CodedImage &image, std::uint32_t item) {
    if (!image.xmp.empty())
        addMetadataItem(xmpType, item, {{}, bytesOf(image.xmp)});
}

void FileLayout::data(const std::function<void(std::span<const std::uint8_t>)> &take) const {
    for (const Item *item : written_.inDataOrder())
        for (const Piece &piece : item->pieces) {
            take(piece.head);
            take(piece.body);
        }
}

Bytes FileLayout::header() const {
    Bytes bytes = box("ftyp", FieldWriter().text("heic").u32(0).text("heic").text("mif1").bytes());
    std::uint64_t dataSize = 8;
    for (const Item *item : written_.inDataOrder())
        dataSize += item->size();
    // The size of `meta` does not depend on the position of the data.
    const std::uint64_t dataBegin = bytes.size() + metaBox(written_, 0).size() + 8;
    if (dataBegin + dataSize > std::numeric_limits<std::uint32_t>::max())
        throw std::invalid_argument("the file would be beyond 4 GiB");
    const Bytes description = metaBox(written_, dataBegin);
    bytes.insert(bytes.end(), description.begin(), description.end());
    const Bytes dataHeader = FieldWriter().u32(dataSize).text("mdat").bytes();
    bytes.insert(bytes.end(), dataHeader.begin(), dataHeader.end());
    return bytes;
}

} // namespace lumetwin::media::heif
