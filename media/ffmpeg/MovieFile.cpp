// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/MovieFileState.h"
#include "media/ffmpeg/Pictures.h"

extern "C" {
#include <libavutil/intreadwrite.h>
}

#include <cmath>

namespace lumetwin::media {

namespace ffmpeg {

Cropping cropping(const AVCodecParameters &parameters) {
    const AVPacketSideData *data =
        av_packet_side_data_get(parameters.coded_side_data, parameters.nb_coded_side_data, AV_PKT_DATA_FRAME_CROPPING);
    if (!data || data->size < 16)
        return {};
    const auto number = [&](std::size_t index) { return static_cast<int>(AV_RL32(data->data + 4 * index)); };
    return {number(0), number(1), number(2), number(3)};
}

} // namespace ffmpeg

namespace {

const AVStream *firstStream(const AVFormatContext &input, AVMediaType type) {
    for (unsigned index = 0; index < input.nb_streams; ++index) {
        const AVStream *stream = input.streams[index];
        // A cover picture is no video track.
        if (stream->codecpar->codec_type == type && !(stream->disposition & AV_DISPOSITION_ATTACHED_PIC))
            return stream;
    }
    return nullptr;
}

double seconds(std::int64_t time, AVRational base) {
    return time == AV_NOPTS_VALUE ? 0 : static_cast<double>(time) * av_q2d(base);
}

float nominalFrameRate(const AVStream &stream) {
    const AVRational rate = stream.avg_frame_rate;
    return rate.num > 0 && rate.den > 0 ? static_cast<float>(av_q2d(rate)) : 0;
}

/// What the container says, else the stream. Shapes beyond 4 : 1 are a mistake of whoever wrote them.
PixelAspect pixelAspect(const AVStream &stream) {
    const AVRational ratio =
        stream.sample_aspect_ratio.num ? stream.sample_aspect_ratio : stream.codecpar->sample_aspect_ratio;
    constexpr std::int64_t most = 4;
    const bool believable =
        ratio.num > 0 && ratio.den > 0 && ratio.num <= most * ratio.den && ratio.den <= most * ratio.num;
    return believable ? PixelAspect{ratio.num, ratio.den} : PixelAspect{};
}

void addTags(const AVDictionary *dictionary, MovieTags &tags) {
    const AVDictionaryEntry *entry = nullptr;
    while ((entry = av_dict_iterate(dictionary, entry)))
        tags.try_emplace(entry->key, entry->value);
}

std::optional<VideoTrack> readVideoTrack(const AVFormatContext &input) {
    const AVStream *stream = firstStream(input, AVMEDIA_TYPE_VIDEO);
    if (!stream)
        return std::nullopt;
    const AVCodecParameters &parameters = *stream->codecpar;
    const ffmpeg::Cropping cropping = ffmpeg::cropping(parameters);
    VideoTrack track;
    track.index = stream->index;
    track.naturalWidth = parameters.width - cropping.left - cropping.right;
    track.naturalHeight = parameters.height - cropping.top - cropping.bottom;
    track.pixelAspect = pixelAspect(*stream);
    track.nominalFrameRate = nominalFrameRate(*stream);
    track.frameCount = stream->nb_frames;
    track.startTime = seconds(stream->start_time, stream->time_base);
    track.format = ffmpeg::planarFormat(static_cast<AVPixelFormat>(parameters.format)).value_or(yuv420);
    track.colour = ffmpeg::colourTags(parameters);
    return track;
}

std::optional<AudioTrack> readAudioTrack(const AVFormatContext &input) {
    const AVStream *stream = firstStream(input, AVMEDIA_TYPE_AUDIO);
    if (!stream)
        return std::nullopt;
    return AudioTrack{stream->index, static_cast<double>(stream->codecpar->sample_rate),
                      stream->codecpar->ch_layout.nb_channels};
}

double readDuration(const AVFormatContext &input) {
    // The whole's duration is rounded to microseconds; the track that it comes from tells it exactly.
    const double rounded = seconds(input.duration, AV_TIME_BASE_Q);
    for (unsigned index = 0; index < input.nb_streams; ++index) {
        const AVStream &stream = *input.streams[index];
        const double exact = seconds(stream.duration, stream.time_base);
        if (std::abs(exact - rounded) < 2e-6)
            return exact;
    }
    return rounded;
}

MovieTags readTags(const AVFormatContext &input) {
    MovieTags tags;
    addTags(input.metadata, tags);
    // Some writers keep the creation time in the track alone.
    if (const AVStream *stream = firstStream(input, AVMEDIA_TYPE_VIDEO)) {
        const AVDictionaryEntry *time = av_dict_get(stream->metadata, "creation_time", nullptr, 0);
        if (time)
            tags.try_emplace("creation_time", time->value);
    }
    return tags;
}

} // namespace

MovieFile::State::State(const std::filesystem::path &file)
    : path(file), input(ffmpeg::openInput(file)), videoTrack(readVideoTrack(*input)),
      audioTrack(readAudioTrack(*input)), duration(readDuration(*input)), tags(readTags(*input)) {}

MovieFile::MovieFile(const std::filesystem::path &file) : state_(std::make_unique<State>(file)) {}

MovieFile::~MovieFile() = default;

const std::filesystem::path &MovieFile::path() const {
    return state_->path;
}

std::optional<VideoTrack> MovieFile::videoTrack() const {
    return state_->videoTrack;
}

std::optional<AudioTrack> MovieFile::audioTrack() const {
    return state_->audioTrack;
}

double MovieFile::duration() const {
    return state_->duration;
}

MovieTags MovieFile::tags() const {
    return state_->tags;
}

} // namespace lumetwin::media
