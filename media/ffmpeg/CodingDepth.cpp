// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/CodingDepth.h"

#include "media/ffmpeg/Ffmpeg.h"
#include "media/x265/StereoEncoder.h"

namespace lumetwin::media {

namespace {

bool takes(const char *encoder, AVPixelFormat wanted) {
    const AVCodec *codec = avcodec_find_encoder_by_name(encoder);
    const void *formats = nullptr;
    int count = 0;
    if (!codec || avcodec_get_supported_config(nullptr, codec, AV_CODEC_CONFIG_PIX_FORMAT, 0, &formats, &count) < 0)
        return false;
    for (int index = 0; index < count; ++index)
        if (static_cast<const AVPixelFormat *>(formats)[index] == wanted)
            return true;
    return false;
}

} // namespace

int deepestSpatialVideo() {
    static const int depth = x265::codesTwoViews(10) ? 10 : 8;
    return depth;
}

int deepestVideo(VideoCodec codec) {
    return codec == VideoCodec::hevc && takes("libx265", AV_PIX_FMT_YUV420P10) ? 10 : 8;
}

} // namespace lumetwin::media
