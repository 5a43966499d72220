// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/heif/HeifWriter.h"
#include "media/heif/WrittenItems.h"

#include <functional>
#include <span>
#include <string_view>

namespace lumetwin::media::heif {

/// Collects a file's items and their properties, and serialises everything before the media data. The added images must
/// outlive the layout, because their bytes are not copied.
class FileLayout {
public:
    /// Adds an image with its tiles and returns its item id. Throws std::invalid_argument when the image is
    /// inconsistent.
    std::uint32_t addImage(const CodedImage &image);
    /// Adds a stereo group of a left and a right image, with its disparity adjustment.
    void addStereoGroup(std::uint32_t left, std::uint32_t right, std::int64_t disparityAdjustment);
    /// Adds the metadata of an image, if it has any.
    void addExif(const CodedImage &image, std::uint32_t item);
    void addXmp(const CodedImage &image, std::uint32_t item);

    /// `ftyp`, `meta` and the header of `mdat`. The first image is the primary one. Throws std::invalid_argument for
    /// files beyond 4 GiB.
    Bytes header() const;
    /// Calls `take` with the parts of the media data, in order.
    void data(const std::function<void(std::span<const std::uint8_t>)> &take) const;

private:
    using Item = WrittenItems::Item;
    using Piece = WrittenItems::Piece;

    Item &addItem(std::string_view type);
    std::vector<std::uint32_t> addTiles(const CodedImage &image, const std::vector<std::uint8_t> &properties);
    void addMetadataItem(std::string_view type, std::uint32_t image, Piece piece);
    std::uint8_t addProperty(Bytes box);
    std::vector<std::uint8_t> addCoding(const CodedImage &image);
    void addCamera(std::vector<std::uint8_t> &properties, const CodedImage &image);

    std::uint32_t nextId_ = 1;
    WrittenItems written_;
    Bytes intrinsics_; ///< the last written `cmin`, which the second eye may share
    std::uint8_t intrinsicsIndex_ = 0;
};

} // namespace lumetwin::media::heif
