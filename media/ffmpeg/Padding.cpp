// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/TrackEncoder.h"

extern "C" {
#include <libavutil/intreadwrite.h>
}

#include <algorithm>
#include <cstring>
#include <new>

namespace lumetwin::media::ffmpeg {

int codedSize(int size, int smallest) { return std::max(size + (size & 1), smallest); }

namespace {

void padPlane(const Picture &from, Picture &to, int plane) {
    const int width = from.planeWidth(plane);
    const int height = from.planeHeight(plane);
    const int fullWidth = to.planeWidth(plane);
    for (int row = 0; row < to.planeHeight(plane); ++row) {
        const std::uint8_t *source = from.planes[plane].data + std::min(row, height - 1) * from.planes[plane].stride;
        std::uint8_t *target = to.planes[plane].data + row * to.planes[plane].stride;
        std::memcpy(target, source, static_cast<std::size_t>(width));
        std::memset(target + width, source[width - 1], static_cast<std::size_t>(fullWidth - width));
    }
}

} // namespace

Picture padded(const Picture &picture, int width, int height, PicturePool &pool) {
    if (picture.width == width && picture.height == height)
        return picture;
    Picture larger = pool.take();
    larger.colour = picture.colour;
    for (int plane = 0; plane < picture.format.planeCount(); ++plane)
        padPlane(picture, larger, plane);
    return larger;
}

void setAperture(AVStream &stream, int width, int height) {
    AVCodecParameters &parameters = *stream.codecpar;
    if (parameters.width == width && parameters.height == height)
        return;
    AVPacketSideData *data = av_packet_side_data_new(&parameters.coded_side_data, &parameters.nb_coded_side_data,
                                                     AV_PKT_DATA_FRAME_CROPPING, 16, 0);
    if (!data)
        throw std::bad_alloc();
    AV_WL32(data->data, 0);
    AV_WL32(data->data + 4, static_cast<std::uint32_t>(parameters.height - height));
    AV_WL32(data->data + 8, 0);
    AV_WL32(data->data + 12, static_cast<std::uint32_t>(parameters.width - width));
}

} // namespace lumetwin::media::ffmpeg
