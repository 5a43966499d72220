// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ColourConversion.h"

#include "media/zimg/Zimg.h"

#include <algorithm>
#include <stdexcept>

namespace lumetwin::media {

namespace {

constexpr int bt601 = 6;       // ITU-T H.273, table 4
constexpr int unspecified = 2; // ITU-T H.273, tables 2 to 4

zimg_chroma_location_e locationOf(ChromaLocation location) {
    switch (location) {
    case ChromaLocation::left:
        return ZIMG_CHROMA_LEFT;
    case ChromaLocation::topLeft:
        return ZIMG_CHROMA_TOP_LEFT;
    default:
        return ZIMG_CHROMA_CENTER;
    }
}

zimg_image_format formatOf(const Picture &picture) {
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    const bool rgb = picture.format.model == ColourModel::rgb;
    const bool grey = picture.format.model == ColourModel::grey;
    format.width = static_cast<unsigned>(picture.width);
    format.height = static_cast<unsigned>(picture.height);
    format.pixel_type = picture.format.depth > 8 ? ZIMG_PIXEL_WORD : ZIMG_PIXEL_BYTE;
    format.depth = static_cast<unsigned>(picture.format.depth);
    format.color_family = rgb ? ZIMG_COLOR_RGB : grey ? ZIMG_COLOR_GREY : ZIMG_COLOR_YUV;
    format.subsample_w = rgb || grey ? 0 : static_cast<unsigned>(picture.format.chromaShiftX);
    format.subsample_h = rgb || grey ? 0 : static_cast<unsigned>(picture.format.chromaShiftY);
    const int matrix = picture.colour.matrix == unspecified ? bt601 : picture.colour.matrix;
    format.matrix_coefficients = rgb ? ZIMG_MATRIX_RGB : static_cast<zimg_matrix_coefficients_e>(matrix);
    format.pixel_range = rgb || picture.colour.range != ColourRange::limited ? ZIMG_RANGE_FULL : ZIMG_RANGE_LIMITED;
    format.chroma_location = locationOf(picture.colour.chromaLocation);
    return format;
}

zimg::Planes planesOf(const Picture &picture) {
    return {picture.planes[0].data, picture.planes[1].data, picture.planes[2].data};
}

zimg::Strides stridesOf(const Picture &picture) {
    return {picture.planes[0].stride, picture.planes[1].stride, picture.planes[2].stride};
}

bool aligned(const Picture &picture) {
    for (int plane = 0; plane < picture.format.planeCount(); ++plane)
        if (reinterpret_cast<std::uintptr_t>(picture.planes[plane].data) % zimg::alignment != 0 ||
            picture.planes[plane].stride % static_cast<std::ptrdiff_t>(zimg::alignment) != 0)
            return false;
    return true;
}

/// The picture with aligned rows, and grey as colour. Subsampled planes of odd sizes are extended by repeating their
/// edges, because the library needs even sizes.
Picture prepared(Picture picture, PictureFormat format, int width, int height) {
    if (picture.format.model == ColourModel::grey && format.model != ColourModel::grey)
        picture.planes = {picture.planes[0], picture.planes[0], picture.planes[0]};
    picture.format = format;
    if (aligned(picture) && picture.width == width && picture.height == height)
        return picture;
    Picture copy = makePicture(width, height, format, picture.colour);
    copyExtended(picture, copy);
    return copy;
}

int evenSize(int size, int shift) {
    return (size + (1 << shift) - 1) >> shift << shift;
}

} // namespace

Picture convertColour(const Picture &picture, PictureFormat format, const ColourTags &colour,
                      const Cancellation &cancellation) {
    if (format.model == ColourModel::grey && picture.format.model != ColourModel::grey)
        throw std::logic_error("colour is not reduced to grey");
    PictureFormat from = picture.format;
    if (from.model == ColourModel::grey && format.model != ColourModel::grey)
        from = {ColourModel::rgb, from.depth, 0, 0};
    const auto shift = [&](int PictureFormat::*axis) {
        return std::max(from.model == ColourModel::yuv ? from.*axis : 0,
                        format.model == ColourModel::yuv ? format.*axis : 0);
    };
    const int width = evenSize(picture.width, shift(&PictureFormat::chromaShiftX));
    const int height = evenSize(picture.height, shift(&PictureFormat::chromaShiftY));
    cancellation.check();
    const Picture source = prepared(picture, from, width, height);
    Picture target = makePicture(width, height, format, colour);
    zimg_graph_builder_params parameters;
    zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
    parameters.dither_type = format.depth < picture.format.depth ? ZIMG_DITHER_ORDERED : ZIMG_DITHER_NONE;
    const zimg::Graph graph = zimg::buildGraph(formatOf(source), formatOf(target), parameters);
    zimg::AlignedBytes working;
    working.reserve(zimg::workingSize(graph));
    zimg::process(graph, planesOf(source), stridesOf(source), planesOf(target), stridesOf(target), working,
                  cancellation);
    return width == picture.width && height == picture.height ? target
                                                              : cropped(target, 0, 0, picture.width, picture.height);
}

} // namespace lumetwin::media
