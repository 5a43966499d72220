// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/heif/HeifWriter.h"
#include "media/heif/WrittenItems.h"

#include <functional>
#include <span>
#include <string_view>

namespace lumetwin::media::heif {

/// Collects a file's items and their properties, and serialises what stands before the media data. The images that are
/// added have to outlive the layout: their bytes are not copied.
class FileLayout {
public:
    /// Adds an image with its tiles; returns its item's number. Throws std::invalid_argument when the image contradicts
    /// itself.
    std::uint32_t addImage(const CodedImage &image);
    /// Says that two images are a left and a right eye, and how far to move them.
    void addStereoGroup(std::uint32_t left, std::uint32_t right, std::int64_t disparityAdjustment);
    /// Add what describes an image, where it has that.
    void addExif(const CodedImage &image, std::uint32_t item);
    void addXmp(const CodedImage &image, std::uint32_t item);

    /// `ftyp`, `meta` and the header of `mdat`. The first image is the primary one. Throws std::invalid_argument for
    /// files beyond 4 GiB.
    Bytes header() const;
    /// Hands over the media data, part by part, in order.
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
    Bytes intrinsics_; ///< the `cmin` written last, which a second eye may share
    std::uint8_t intrinsicsIndex_ = 0;
};

} // namespace lumetwin::media::heif
