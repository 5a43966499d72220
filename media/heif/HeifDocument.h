// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Owner types for libheif's objects, and a file opened by libheif.

#include "media/InputFile.h"

#include <libheif/heif.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace lumetwin::media::heif {

struct HeifDeleter {
    void operator()(heif_context *context) const { heif_context_free(context); }
    void operator()(heif_image_handle *handle) const { heif_image_handle_release(handle); }
    void operator()(heif_image *image) const { heif_image_release(image); }
    void operator()(heif_decoding_options *options) const { heif_decoding_options_free(options); }
    void operator()(heif_color_profile_nclx *colour) const { heif_nclx_color_profile_free(colour); }
};
using Context = std::unique_ptr<heif_context, HeifDeleter>;
using Handle = std::unique_ptr<heif_image_handle, HeifDeleter>;
using Image = std::unique_ptr<heif_image, HeifDeleter>;
using DecodingOptions = std::unique_ptr<heif_decoding_options, HeifDeleter>;
using Colour = std::unique_ptr<heif_color_profile_nclx, HeifDeleter>;

/// Throws MediaError, which names the file, when the library reports an error.
void require(const heif_error &error, const std::filesystem::path &file);

/// A HEIF file in memory, opened by libheif. Images may be requested and decoded on any thread.
class HeifDocument {
public:
    /// Throws MediaError when libheif refuses the file.
    explicit HeifDocument(const InputFile &file);

    const std::filesystem::path &path() const { return path_; }
    /// Throws MediaError when there is no such item.
    Handle image(heif_item_id item) const;

private:
    std::filesystem::path path_;
    std::vector<std::uint8_t> bytes_;
    Context context_;
};

} // namespace lumetwin::media::heif
