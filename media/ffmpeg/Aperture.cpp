// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/Aperture.h"

extern "C" {
#include <libavutil/intreadwrite.h>
}

#include <new>

namespace lumetwin::media::ffmpeg {

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

void setPixelAspect(AVStream &stream, PixelAspect aspect) {
    if (aspect == PixelAspect{})
        return;
    stream.sample_aspect_ratio = {aspect.width, aspect.height};
    stream.codecpar->sample_aspect_ratio = stream.sample_aspect_ratio;
}

} // namespace lumetwin::media::ffmpeg
