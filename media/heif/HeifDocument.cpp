// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/HeifDocument.h"

#include "media/Image.h"
#include "media/MediaError.h"
#include "media/bmff/BoxReader.h"
#include "media/heif/HevcDecoder.h"

#include <cstring>

namespace lumetwin::media::heif {

namespace {

constexpr std::uint64_t largestFile = std::uint64_t{1} << 31; // bytes

MediaReason reasonOf(const heif_error &error) {
    switch (error.code) {
    case heif_error_Memory_allocation_error:
        return error.subcode == heif_suberror_Security_limit_exceeded ? MediaReason::imageTooLarge
                                                                      : MediaReason::noMemory;
    case heif_error_Unsupported_filetype:
    case heif_error_Unsupported_feature:
        return MediaReason::unsupported;
    case heif_error_Invalid_input:
    case heif_error_Decoder_plugin_error:
        return error.subcode == heif_suberror_End_of_data ? MediaReason::endsEarly : MediaReason::damaged;
    default:
        return MediaReason::other;
    }
}

/// libheif refuses files because of their groups, which it does not need here. So change the group box to free space.
void hideGroups(std::vector<std::uint8_t> &bytes) {
    constexpr std::uint64_t fullBoxHeader = 4;
    try {
        const auto source = bmff::fromMemory(bytes);
        int count = 0;
        bmff::BoxWalk file(*source, 0, bytes.size(), count);
        for (bmff::Box outer; file.next(outer);) {
            if (outer.type != bmff::fourCC("meta") || outer.payloadSize() < fullBoxHeader)
                continue;
            bmff::BoxWalk meta(*source, outer.begin + fullBoxHeader, outer.end, count);
            for (bmff::Box inner; meta.next(inner);)
                if (inner.type == bmff::fourCC("grpl"))
                    std::memcpy(bytes.data() + inner.begin - 4, "free", 4);
        }
    } catch (const bmff::FormatError &) {
        // Ignore this here: libheif reports the error.
    }
}

std::vector<std::uint8_t> contentOf(const InputFile &file) {
    const std::uint64_t size = file.size();
    if (size > largestFile)
        throw MediaError(file.path(), MediaOperation::read, 0, MediaReason::fileTooLarge);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    bytes.resize(file.readAt(0, bytes));
    return bytes;
}

void setLimits(heif_context *context) {
    heif_security_limits *limits = heif_context_get_security_limits(context);
    limits->max_image_size_pixels = static_cast<std::uint64_t>(maximumPixels);
    limits->max_memory_block_size = std::uint64_t{4} << 30;
}

} // namespace

void require(const heif_error &error, const std::filesystem::path &file) {
    if (error.code != heif_error_Ok)
        throw MediaError(file, MediaOperation::read, error.code * 10000 + error.subcode, reasonOf(error),
                         error.message);
}

HeifDocument::HeifDocument(const InputFile &file)
    : path_(file.path()), bytes_(contentOf(file)), context_(heif_context_alloc()) {
    static const heif_error ready = heif_register_decoder_plugin(images::hevcDecoder());
    static const heif_error roughReady = heif_register_decoder_plugin(images::roughHevcDecoder());
    require(ready, path_);
    require(roughReady, path_);
    hideGroups(bytes_);
    setLimits(context_.get());
    require(heif_context_read_from_memory_without_copy(context_.get(), bytes_.data(), bytes_.size(), nullptr), path_);
}

Handle HeifDocument::image(heif_item_id item) const {
    heif_image_handle *handle = nullptr;
    require(heif_context_get_image_handle(context_.get(), item, &handle), path_);
    return Handle(handle);
}

} // namespace lumetwin::media::heif
