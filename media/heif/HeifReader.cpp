// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/HeifReader.h"

#include "media/Abandonable.h"
#include "media/MediaError.h"
#include "media/bmff/BigEndian.h"
#include "media/bmff/BoxReader.h"
#include "media/colour/ColourProfile.h"
#include "media/heif/HeifDocument.h"
#include "media/heif/HevcDecoder.h"
#include "media/samples/Limits.h"
#include "media/samples/Rows.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace lumetwin::media::heif {

namespace {

using images::Alpha;
using images::checkSize;
using images::makeChecked;
using images::PixelLayout;
using images::planeRow;
using images::scatterRow;

struct Coding {
    std::uint32_t type;
    heif_compression_format format;
    const char *name;
};

constexpr std::array<Coding, 6> codings{{
    {bmff::fourCC("avc1"), heif_compression_AVC, "AVC"},
    {bmff::fourCC("av01"), heif_compression_AV1, "AV1"},
    {bmff::fourCC("vvc1"), heif_compression_VVC, "VVC"},
    {bmff::fourCC("evc1"), heif_compression_EVC, "EVC"},
    {bmff::fourCC("jpeg"), heif_compression_JPEG, "JPEG"},
    {bmff::fourCC("j2k1"), heif_compression_JPEG2000, "JPEG 2000"},
}};

void requireDecoder(const std::filesystem::path &file, const HeifImage &image) {
    if (image.encrypted)
        throw MediaError(file, MediaOperation::read, 0, MediaReason::encrypted);
    for (const Coding &coding : codings)
        if (coding.type == image.coding && heif_have_decoder_for_format(coding.format) == 0)
            throw MediaError(file, MediaOperation::read, 0, MediaReason::noDecoder, coding.name);
}

/// A document and the cancellation of its decoding.
struct Decoding {
    const HeifDocument &document;
    const Cancellation &cancellation;
    bool isRough = false;
};

/// libheif calls this before each tile.
int stops(void *cancellation) {
    return static_cast<const Cancellation *>(cancellation)->requested() ? 1 : 0;
}

Image decode(const Decoding &decoding, const heif_image_handle *handle, heif_colorspace space, heif_chroma chroma) {
    const DecodingOptions options(heif_decoding_options_alloc());
    options->decoder_id = decoding.isRough ? images::roughHevcDecoderName : nullptr;
    options->cancel_decoding = stops;
    options->progress_user_data = const_cast<Cancellation *>(&decoding.cancellation);
    heif_image *decoded = nullptr;
    const heif_error error = heif_decode_image(handle, &decoded, space, chroma, options.get());
    Image image(decoded);
    decoding.cancellation.check();
    require(error, decoding.document.path());
    return image;
}

ColourTags tagsOf(const heif_image *image, const heif_image_handle *handle) {
    heif_color_profile_nclx *found = nullptr;
    if (heif_image_get_nclx_color_profile(image, &found).code != heif_error_Ok)
        heif_image_handle_get_nclx_color_profile(handle, &found);
    const Colour colour(found);
    // Without tags libheif, like other readers, uses the matrix of BT.601 and full range.
    ColourTags tags{2, 2, 6, ColourRange::full, ChromaLocation::centre};
    if (!colour)
        return tags;
    tags.primaries = colour->color_primaries;
    tags.transfer = colour->transfer_characteristics;
    tags.range = colour->full_range_flag ? ColourRange::full : ColourRange::limited;
    if (colour->matrix_coefficients != heif_matrix_coefficients_unspecified)
        tags.matrix = colour->matrix_coefficients;
    return tags;
}

/// The tags of RGB samples. After its conversion libheif no longer reports those of the image, so they are read from
/// the item.
ColourTags tagsOfItem(const heif_image_handle *handle) {
    ColourTags tags{2, 2, 0, ColourRange::full, ChromaLocation::unspecified};
    heif_color_profile_nclx *found = nullptr;
    if (heif_image_handle_get_nclx_color_profile(handle, &found).code != heif_error_Ok)
        return tags;
    const Colour colour(found);
    tags.primaries = colour->color_primaries;
    tags.transfer = colour->transfer_characteristics;
    return tags;
}

std::vector<std::uint8_t> profileIn(const heif_image_handle *handle) {
    const auto type = heif_image_handle_get_color_profile_type(handle);
    if (type != heif_color_profile_type_prof && type != heif_color_profile_type_rICC)
        return {};
    std::vector<std::uint8_t> profile(heif_image_handle_get_raw_color_profile_size(handle));
    if (profile.empty() || heif_image_handle_get_raw_color_profile(handle, profile.data()).code != heif_error_Ok)
        return {};
    return profile;
}

std::vector<std::uint8_t> block(const heif_image_handle *handle, heif_item_id id) {
    std::vector<std::uint8_t> bytes(heif_image_handle_get_metadata_size(handle, id));
    if (bytes.empty() || heif_image_handle_get_metadata(handle, id, bytes.data()).code != heif_error_Ok)
        return {};
    return bytes;
}

/// Removes the offset at the beginning of an Exif item (ISO/IEC 23008-12, A.2.1).
std::vector<std::uint8_t> exifIn(const std::vector<std::uint8_t> &item) {
    if (item.size() < 4)
        return {};
    const auto offset = static_cast<std::size_t>(bmff::bigEndian(std::span(item).first(4))) + 4;
    if (offset >= item.size())
        return {};
    return {item.begin() + static_cast<std::ptrdiff_t>(offset), item.end()};
}

ImageMetadata metadataIn(const heif_image_handle *handle) {
    ImageMetadata metadata;
    metadata.iccProfile = profileIn(handle);
    std::vector<heif_item_id> ids(
        static_cast<std::size_t>(heif_image_handle_get_number_of_metadata_blocks(handle, nullptr)));
    heif_image_handle_get_list_of_metadata_block_IDs(handle, nullptr, ids.data(), static_cast<int>(ids.size()));
    for (const heif_item_id id : ids) {
        if (std::strcmp(heif_image_handle_get_metadata_type(handle, id), "Exif") == 0 && metadata.exif.empty())
            metadata.exif = exifIn(block(handle, id));
        else if (std::strcmp(heif_image_handle_get_metadata_content_type(handle, id), "application/rdf+xml") == 0 &&
                 metadata.xmp.empty()) {
            const auto bytes = block(handle, id);
            metadata.xmp.assign(bytes.begin(), bytes.end());
        }
    }
    return metadata;
}

/// The decoded samples without copying; the picture keeps them alive.
Picture planesOf(const Decoding &decoding, const heif_image_handle *handle) {
    std::shared_ptr<heif_image> image(decode(decoding, handle, heif_colorspace_undefined, heif_chroma_undefined));
    Picture picture;
    const bool grey = heif_image_get_colorspace(image.get()) == heif_colorspace_monochrome;
    const bool rgb = heif_image_get_colorspace(image.get()) == heif_colorspace_RGB;
    const heif_channel first = rgb ? heif_channel_R : heif_channel_Y;
    const heif_channel channels[3] = {first, rgb ? heif_channel_G : heif_channel_Cb,
                                      rgb ? heif_channel_B : heif_channel_Cr};
    const heif_chroma chroma = heif_image_get_chroma_format(image.get());
    const bool halfWide = chroma == heif_chroma_420 || chroma == heif_chroma_422;
    picture.width = heif_image_get_primary_width(image.get());
    picture.height = heif_image_get_primary_height(image.get());
    checkSize(decoding.document.path(), picture.width, picture.height);
    picture.format = {grey  ? ColourModel::grey
                      : rgb ? ColourModel::rgb
                            : ColourModel::yuv,
                      heif_image_get_bits_per_pixel_range(image.get(), first), halfWide ? 1 : 0,
                      chroma == heif_chroma_420 ? 1 : 0};
    picture.colour = tagsOf(image.get(), handle);
    for (int plane = 0; plane < picture.format.planeCount(); ++plane) {
        int stride = 0;
        std::uint8_t *data = heif_image_get_plane(image.get(), channels[plane], &stride);
        if (!data || heif_image_get_width(image.get(), channels[plane]) < picture.planeWidth(plane) ||
            heif_image_get_height(image.get(), channels[plane]) < picture.planeHeight(plane))
            throw MediaError(decoding.document.path(), MediaOperation::read, 0, MediaReason::unsupportedSamples);
        picture.planes[plane] = {data, stride};
    }
    picture.storage = std::move(image);
    return picture;
}

heif_chroma interleavedLayout(bool deep, bool alpha) {
    if (deep)
        return alpha ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBB_LE;
    return alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB;
}

/// Draws transparent pixels with 9 to 15 bits on black.
void scatterDeep(const std::uint16_t *row, int channels, Alpha alpha, const Picture &picture, int y) {
    const auto full = (1u << picture.format.depth) - 1;
    for (int plane = 0; plane < 3; ++plane) {
        auto *out = planeRow<std::uint16_t>(picture, plane, y);
        for (int x = 0; x < picture.width; ++x) {
            const std::uint32_t value = row[x * channels + plane];
            const std::uint32_t opacity = alpha == Alpha::straight ? row[x * channels + 3] : full;
            out[x] = static_cast<std::uint16_t>((value * opacity + full / 2) / full);
        }
    }
}

Picture rgbOf(const Decoding &decoding, const heif_image_handle *handle) {
    const int depth = heif_image_handle_get_luma_bits_per_pixel(handle);
    const bool transparent = heif_image_handle_has_alpha_channel(handle) != 0;
    const Image image = decode(decoding, handle, heif_colorspace_RGB, interleavedLayout(depth > 8, transparent));
    const int width = heif_image_get_primary_width(image.get());
    const int height = heif_image_get_primary_height(image.get());
    const ColourTags colour = tagsOfItem(handle);
    Picture picture =
        makeChecked(decoding.document.path(), width, height, {ColourModel::rgb, std::max(depth, 8), 0, 0}, colour);
    int stride = 0;
    const std::uint8_t *data = heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
    if (!data)
        throw MediaError(decoding.document.path(), MediaOperation::read, 0, MediaReason::unsupportedSamples);
    const int channels = transparent ? 4 : 3;
    const Alpha alpha = !transparent                                       ? Alpha::none
                        : heif_image_handle_is_premultiplied_alpha(handle) ? Alpha::premultiplied
                                                                           : Alpha::straight;
    for (int y = 0; y < height; ++y) {
        decoding.cancellation.check();
        const std::uint8_t *row = data + static_cast<std::ptrdiff_t>(y) * stride;
        if (depth > 8)
            scatterDeep(reinterpret_cast<const std::uint16_t *>(row), channels, alpha, picture, y);
        else
            scatterRow(row, PixelLayout{channels, alpha}, picture, 0, y, width);
    }
    return picture;
}

StillImage read(const Decoding &decoding, heif_item_id item, PhotoSamples samples) {
    const Handle handle = decoding.document.image(item);
    checkSize(decoding.document.path(), heif_image_handle_get_width(handle.get()),
              heif_image_handle_get_height(handle.get()));
    StillImage image;
    const bool asCoded = samples != PhotoSamples::rgb && heif_image_handle_has_alpha_channel(handle.get()) == 0;
    image.picture = asCoded ? planesOf(decoding, handle.get()) : rgbOf(decoding, handle.get());
    image.metadata = metadataIn(handle.get());
    if (!images::matchesChannels(image.metadata.iccProfile, image.picture.format.planeCount()))
        image.metadata.iccProfile.clear();
    return image;
}

} // namespace

HeifReader::HeifReader(const InputFile &file) : file_(file), headers_(readHeifFile(file)) {}

StereoPhotoFacts HeifReader::stereoFacts() const {
    StereoPhotoFacts facts;
    facts.hasStereoGroup = !headers_.stereoGroups.empty();
    if (const auto eyes = headers_.stereoEyes()) {
        facts.hasBothEyes = true;
        facts.width = headers_.images[eyes->left].width;
        facts.height = headers_.images[eyes->left].height;
    }
    facts.disparityAdjustment = headers_.stereoDisparityAdjustment();
    for (const HeifImage &image : headers_.images) {
        const auto intrinsics = image.pixelIntrinsics();
        if (!facts.lens && intrinsics && intrinsics->focalLengthX > 0 && image.width > 0)
            facts.lens = {intrinsics->focalLengthX, static_cast<double>(image.width)};
        // A camera at the origin has no baseline; use the other camera of the pair.
        if (!facts.cameraPosition && image.position && (*image.position)[0] != 0)
            facts.cameraPosition = (*image.position)[0];
    }
    return facts;
}

std::shared_ptr<const HeifDocument> HeifReader::document() const {
    const std::scoped_lock lock(loading_);
    if (!document_)
        document_ = std::make_shared<const HeifDocument>(file_);
    return document_;
}

StillImage HeifReader::read(std::size_t image, PhotoSamples samples, const Cancellation &cancellation) const {
    cancellation.check();
    const HeifImage &wanted = headers_.images.at(image);
    requireDecoder(file_.path(), wanted);
    // Decoding a picture that is coded in one piece cannot be stopped, so its thread may run a little longer.
    return abandonable(cancellation, [document = document(), item = wanted.item, samples](const Cancellation &asked) {
        return heif::read({*document, asked, samples == PhotoSamples::rough}, item, samples);
    });
}

const HeifImage &HeifReader::first() const {
    if (headers_.images.empty())
        throw MediaError(file_.path(), MediaOperation::read, 0,
                         headers_.hasMovie ? MediaReason::imageSequence : MediaReason::noImage);
    return headers_.images.front();
}

StillImage HeifReader::readFirst(const Cancellation &cancellation) const {
    first();
    return read(0, PhotoSamples::coded, cancellation);
}

PixelSize HeifReader::firstSize() const {
    const HeifImage &image = first();
    requireDecoder(file_.path(), image);
    if (image.shownWidth == 0 || image.shownHeight == 0) {
        const Picture picture = readFirst({}).picture;
        return {picture.width, picture.height};
    }
    checkSize(file_.path(), image.shownWidth, image.shownHeight);
    return {static_cast<int>(image.shownWidth), static_cast<int>(image.shownHeight)};
}

} // namespace lumetwin::media::heif
