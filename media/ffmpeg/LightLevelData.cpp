// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/LightLevelData.h"

extern "C" {
#include <libavutil/mastering_display_metadata.h>
#include <libavutil/mem.h>
}

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace lumetwin::media::ffmpeg {

namespace {

constexpr int chromaticityUnits = 50'000; // of 1
constexpr int luminanceUnits = 10'000;    // of 1 cd/m²

/// A value from a file in whole units; 0 when it is not a number.
template <typename Integer> Integer inUnits(AVRational value, int units) {
    const double scaled = value.den ? av_q2d(value) * units : 0;
    constexpr double most = std::numeric_limits<Integer>::max();
    return static_cast<Integer>(std::clamp(std::round(scaled), 0.0, most));
}

MasteringDisplay::Point point(const AVRational (&place)[2]) {
    return {inUnits<std::uint16_t>(place[0], chromaticityUnits), inUnits<std::uint16_t>(place[1], chromaticityUnits)};
}

std::optional<MasteringDisplay> masteringDisplay(const AVMasteringDisplayMetadata &data) {
    if (!data.has_primaries || !data.has_luminance)
        return std::nullopt; // neither streams nor files can say only one of them
    return MasteringDisplay{point(data.display_primaries[0]),
                            point(data.display_primaries[1]),
                            point(data.display_primaries[2]),
                            point(data.white_point),
                            inUnits<std::uint32_t>(data.max_luminance, luminanceUnits),
                            inUnits<std::uint32_t>(data.min_luminance, luminanceUnits)};
}

ContentLight contentLight(const AVContentLightMetadata &data) {
    constexpr unsigned most = std::numeric_limits<std::uint16_t>::max();
    return {static_cast<std::uint16_t>(std::min(data.MaxCLL, most)),
            static_cast<std::uint16_t>(std::min(data.MaxFALL, most))};
}

LightLevels lightLevels(const AVMasteringDisplayMetadata *mastering, const AVContentLightMetadata *content) {
    LightLevels levels;
    if (mastering)
        levels.mastering = masteringDisplay(*mastering);
    if (content && (content->MaxCLL > 0 || content->MaxFALL > 0))
        levels.content = contentLight(*content);
    return levels;
}

template <typename Data> const Data *of(const AVCodecParameters &parameters, AVPacketSideDataType type) {
    const AVPacketSideData *data =
        av_packet_side_data_get(parameters.coded_side_data, parameters.nb_coded_side_data, type);
    return data && data->size >= sizeof(Data) ? reinterpret_cast<const Data *>(data->data) : nullptr;
}

template <typename Data> const Data *of(const AVFrame &frame, AVFrameSideDataType type) {
    const AVFrameSideData *data = av_frame_get_side_data(&frame, type);
    return data && data->size >= sizeof(Data) ? reinterpret_cast<const Data *>(data->data) : nullptr;
}

template <typename Data>
void attachData(AVCodecParameters &parameters, AVPacketSideDataType type, Data *data, std::size_t size) {
    if (!data ||
        !av_packet_side_data_add(&parameters.coded_side_data, &parameters.nb_coded_side_data, type, data, size, 0)) {
        av_free(data);
        throw std::bad_alloc();
    }
}

} // namespace

LightLevels lightLevels(const AVCodecParameters &parameters) {
    LightLevels levels = lightLevels(of<AVMasteringDisplayMetadata>(parameters, AV_PKT_DATA_MASTERING_DISPLAY_METADATA),
                                     of<AVContentLightMetadata>(parameters, AV_PKT_DATA_CONTENT_LIGHT_LEVEL));
    levels.changing = of<char>(parameters, AV_PKT_DATA_DOVI_CONF) != nullptr;
    return levels;
}

LightLevels lightLevels(const AVFrame &frame) {
    LightLevels levels = lightLevels(of<AVMasteringDisplayMetadata>(frame, AV_FRAME_DATA_MASTERING_DISPLAY_METADATA),
                                     of<AVContentLightMetadata>(frame, AV_FRAME_DATA_CONTENT_LIGHT_LEVEL));
    for (const AVFrameSideDataType type :
         {AV_FRAME_DATA_DYNAMIC_HDR_PLUS, AV_FRAME_DATA_DOVI_RPU_BUFFER, AV_FRAME_DATA_DOVI_METADATA})
        levels.changing = levels.changing || of<char>(frame, type) != nullptr;
    return levels;
}

void setLightLevels(AVCodecParameters &parameters, const LightLevels &levels) {
    std::size_t size = 0;
    if (const auto &mastering = levels.mastering) {
        AVMasteringDisplayMetadata *data = av_mastering_display_metadata_alloc_size(&size);
        const auto set = [](AVRational(&place)[2], const MasteringDisplay::Point &value) {
            place[0] = {value.x, chromaticityUnits};
            place[1] = {value.y, chromaticityUnits};
        };
        if (data) {
            set(data->display_primaries[0], mastering->red);
            set(data->display_primaries[1], mastering->green);
            set(data->display_primaries[2], mastering->blue);
            set(data->white_point, mastering->white);
            data->max_luminance = {static_cast<int>(std::min<std::uint32_t>(mastering->highest, INT32_MAX)),
                                   luminanceUnits};
            data->min_luminance = {static_cast<int>(std::min<std::uint32_t>(mastering->lowest, INT32_MAX)),
                                   luminanceUnits};
            data->has_primaries = data->has_luminance = 1;
        }
        attachData(parameters, AV_PKT_DATA_MASTERING_DISPLAY_METADATA, data, size);
    }
    if (levels.content) {
        AVContentLightMetadata *data = av_content_light_metadata_alloc(&size);
        if (data) {
            data->MaxCLL = levels.content->highest;
            data->MaxFALL = levels.content->average;
        }
        attachData(parameters, AV_PKT_DATA_CONTENT_LIGHT_LEVEL, data, size);
    }
}

} // namespace lumetwin::media::ffmpeg
