// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/preview/PreviewPixels.h"

#include "engine/stereo/EyeExtraction.h"
#include "media/ColourConversion.h"
#include "media/Compositor.h"
#include "media/SRGB.h"

#include <utility>

namespace lumetwin {

namespace {

constexpr media::PictureFormat rgbSamples{media::ColourModel::rgb, 8, 0, 0};
constexpr media::ColourTags rgbColour{1, 13, 0, media::ColourRange::full, media::ChromaLocation::unspecified};

/// The eye in 8 bits, with chroma for each pixel.
media::Picture reduced(const SourceEye &eye, const PreviewSize &size) {
    const media::PictureFormat format{eye.picture.format.model, 8, 0, 0};
    media::Picture canvas = media::makePicture(size.width, size.height, format, eye.picture.colour);
    media::Compositor::fillBlack(canvas);
    if (eye.part.width <= 0 || eye.part.height <= 0)
        return canvas;
    const media::Rect target{0, 0, static_cast<double>(size.width), static_cast<double>(size.height)};
    const media::Placement shown = withinPicture({eye.part, target, target}, eye.picture.width, eye.picture.height);
    if (shown.source.width > 0 && shown.source.height > 0)
        media::Compositor().place(eye.picture, shown, canvas);
    return canvas;
}

} // namespace

std::vector<std::uint8_t> previewPixels(const SourceEye &eye, const PreviewSize &size,
                                        const std::filesystem::path &file) {
    media::Picture picture = media::inSRGB(reduced(eye, size), eye.iccProfile, file);
    if (picture.format.model != media::ColourModel::rgb)
        picture = media::convertColour(picture, rgbSamples, rgbColour);
    return interleaved(picture);
}

std::vector<std::uint8_t> interleaved(const media::Picture &rgb) {
    constexpr std::uint8_t opaque = 255;
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(rgb.width) * rgb.height * 4);
    std::uint8_t *out = pixels.data();
    for (int y = 0; y < rgb.height; ++y) {
        const std::uint8_t *red = rgb.planes[0].data + y * rgb.planes[0].stride;
        const std::uint8_t *green = rgb.planes[1].data + y * rgb.planes[1].stride;
        const std::uint8_t *blue = rgb.planes[2].data + y * rgb.planes[2].stride;
        for (int x = 0; x < rgb.width; ++x, out += 4) {
            out[0] = blue[x];
            out[1] = green[x];
            out[2] = red[x];
            out[3] = opaque;
        }
    }
    return pixels;
}

media::Picture emptyPlanes(int width, int height) {
    return media::makePicture(width, height, rgbSamples, rgbColour);
}

media::Picture planesOf(const PreviewPicture &picture) {
    media::Picture planes = emptyPlanes(picture.width, picture.height);
    for (int y = 0; y < picture.height; ++y) {
        const std::uint8_t *in = picture.row(y);
        std::uint8_t *red = planes.planes[0].data + y * planes.planes[0].stride;
        std::uint8_t *green = planes.planes[1].data + y * planes.planes[1].stride;
        std::uint8_t *blue = planes.planes[2].data + y * planes.planes[2].stride;
        for (int x = 0; x < picture.width; ++x, in += 4) {
            blue[x] = in[0];
            green[x] = in[1];
            red[x] = in[2];
        }
    }
    return planes;
}

} // namespace lumetwin
