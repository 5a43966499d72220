// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// One owner type for each object of libheif that we hold, and a file that the library has opened.

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

/// Throws the library's error as a MediaError that names the file.
void require(const heif_error &error, const std::filesystem::path &file);

/// A HEIF file's bytes in memory, as the library has opened them. Any thread may ask for images, and decode them.
class HeifDocument {
public:
    /// Throws MediaError where the library does not take the file.
    explicit HeifDocument(const InputFile &file);

    const std::filesystem::path &path() const { return path_; }
    /// Throws MediaError where there is no such item.
    Handle image(heif_item_id item) const;

private:
    std::filesystem::path path_;
    std::vector<std::uint8_t> bytes_;
    Context context_;
};

} // namespace lumetwin::media::heif
