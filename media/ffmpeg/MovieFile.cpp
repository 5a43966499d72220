// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/FrameScan.h"
#include "media/ffmpeg/LightLevelData.h"
#include "media/ffmpeg/MovieFileState.h"
#include "media/ffmpeg/Pictures.h"

extern "C" {
#include <libavutil/display.h>
#include <libavutil/intreadwrite.h>
}

#include <algorithm>

#include <cmath>

namespace lumetwin::media {

namespace {

/// The stream of this type with this number, from 0.
const AVStream *streamOf(const AVFormatContext &input, AVMediaType type, int number) {
    for (unsigned index = 0; index < input.nb_streams; ++index) {
        const AVStream *stream = input.streams[index];
        // A cover picture is not a video track.
        if (stream->codecpar->codec_type == type && !(stream->disposition & AV_DISPOSITION_ATTACHED_PIC) &&
            number-- == 0)
            return stream;
    }
    return nullptr;
}

} // namespace

namespace ffmpeg {

PixelAspect pixelAspect(const AVStream &stream, AVRational ofPicture) {
    AVRational ratio =
        stream.sample_aspect_ratio.num ? stream.sample_aspect_ratio : stream.codecpar->sample_aspect_ratio;
    if (ratio.num == 0)
        ratio = ofPicture;
    constexpr std::int64_t most = 4;
    const bool believable =
        ratio.num > 0 && ratio.den > 0 && ratio.num <= most * ratio.den && ratio.den <= most * ratio.num;
    return believable ? PixelAspect{ratio.num, ratio.den} : PixelAspect{};
}

const AVStream *videoStream(const AVFormatContext &input, int number) {
    return streamOf(input, AVMEDIA_TYPE_VIDEO, number);
}

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

double seconds(std::int64_t time, AVRational base) {
    return time == AV_NOPTS_VALUE ? 0 : static_cast<double>(time) * av_q2d(base);
}

/// The rate comes from the frame times. The header's rate is used only for a single frame or without times.
FramePace paceOf(const FrameTimes &times, Fraction stated) {
    if (times.starts.size() > 1)
        return framePace(times);
    return stated ? FramePace{nearestCommonRate(stated), 1 / stated.value(), true} : framePace(times);
}

void readTiming(const AVFormatContext &input, const AVStream &stream, const InputFile &file,
                const std::function<bool()> &cancelled, VideoTrack &track) {
    FrameTimes times = ffmpeg::scanFrames(file, input, stream, cancelled);
    track.frameCount = static_cast<std::int64_t>(times.starts.size());
    track.tick = times.tick;
    track.hasTimes = !ffmpeg::isWithoutTimes(input);
    const AVRational rate = stream.avg_frame_rate;
    if (!track.hasTimes)
        track.pace = paceOf({}, ffmpeg::statedRate(file.path(), stream));
    else
        track.pace = paceOf(times, rate.num > 0 && rate.den > 0 ? Fraction{rate.num, rate.den} : Fraction{});
    if (ffmpeg::countsAsCoded(input))
        track.listedTimes = std::make_shared<const std::vector<std::int64_t>>(std::move(times.starts));
}

/// The matrix is counterclockwise; the result is clockwise.
int rotation(const AVCodecParameters &parameters) {
    const AVPacketSideData *data =
        av_packet_side_data_get(parameters.coded_side_data, parameters.nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
    if (!data || data->size < 9 * sizeof(std::int32_t))
        return 0;
    const double angle = -av_display_rotation_get(reinterpret_cast<const std::int32_t *>(data->data));
    return std::isfinite(angle) ? (static_cast<int>(std::lround(angle)) % 360 + 360) % 360 : 0;
}

void addTags(const AVDictionary *dictionary, MovieTags &tags) {
    const AVDictionaryEntry *entry = nullptr;
    while ((entry = av_dict_iterate(dictionary, entry)))
        tags.try_emplace(entry->key, entry->value);
}

std::optional<VideoTrack> readVideoTrack(const AVFormatContext &input, const InputFile &file,
                                         const std::function<bool()> &cancelled, VideoStream video) {
    const AVStream *stream = ffmpeg::videoStream(input, video == VideoStream::second ? 1 : 0);
    if (!stream)
        return std::nullopt;
    const AVCodecParameters &parameters = *stream->codecpar;
    const ffmpeg::Cropping cropping = ffmpeg::cropping(parameters);
    VideoTrack track;
    track.index = stream->index;
    track.naturalWidth = parameters.width - cropping.left - cropping.right;
    track.naturalHeight = parameters.height - cropping.top - cropping.bottom;
    track.pixelAspect = ffmpeg::pixelAspect(*stream);
    readTiming(input, *stream, file, cancelled, track);
    track.rotation = rotation(parameters);
    track.startTime = seconds(stream->start_time, stream->time_base);
    track.format = ffmpeg::importedFormat(static_cast<AVPixelFormat>(parameters.format));
    track.colour = ffmpeg::colourTags(parameters);
    track.levels = ffmpeg::lightLevels(parameters);
    return track;
}

std::optional<AudioTrack> readAudioTrack(const AVFormatContext &input) {
    const AVStream *stream = streamOf(input, AVMEDIA_TYPE_AUDIO, 0);
    if (!stream)
        return std::nullopt;
    return AudioTrack{stream->index, static_cast<double>(stream->codecpar->sample_rate),
                      stream->codecpar->ch_layout.nb_channels, seconds(stream->start_time, stream->time_base)};
}

OtherContents readOtherContents(const AVFormatContext &input) {
    OtherContents contents;
    for (unsigned index = 0; index < input.nb_streams; ++index) {
        const AVMediaType type = input.streams[index]->codecpar->codec_type;
        contents.audioTracks += type == AVMEDIA_TYPE_AUDIO ? 1 : 0;
        contents.subtitleTracks += type == AVMEDIA_TYPE_SUBTITLE ? 1 : 0;
    }
    contents.audioTracks = std::max(contents.audioTracks - 1, 0);
    contents.chapters = static_cast<int>(input.nb_chapters);
    return contents;
}

double readDuration(const AVFormatContext &input, const std::optional<VideoTrack> &video) {
    // The duration of a raw stream is that of its frames.
    if (video && !video->hasTimes)
        return video->pace.frameDuration * static_cast<double>(video->frameCount);
    // The duration of the file is rounded to microseconds. The track that defines it has the exact one.
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
    // Some writers store the creation time only in the track.
    if (const AVStream *stream = ffmpeg::videoStream(input, 0)) {
        const AVDictionaryEntry *time = av_dict_get(stream->metadata, "creation_time", nullptr, 0);
        if (time)
            tags.try_emplace("creation_time", time->value);
    }
    return tags;
}

} // namespace

MovieFile::State::State(const InputFile &movie, const std::function<bool()> &cancelled, VideoStream video)
    : file(movie), input(file), videoTrack(readVideoTrack(*input, file, cancelled, video)),
      audioTrack(readAudioTrack(*input)), otherContents(readOtherContents(*input)),
      duration(readDuration(*input, videoTrack)), tags(readTags(*input)) {}

MovieFile::MovieFile(const InputFile &file, const std::function<bool()> &cancelled, VideoStream video)
    : state_(std::make_unique<State>(file, cancelled, video)) {}

MovieFile::~MovieFile() = default;

const InputFile &MovieFile::file() const {
    return state_->file;
}

const std::filesystem::path &MovieFile::path() const {
    return state_->file.path();
}

std::optional<VideoTrack> MovieFile::videoTrack() const {
    return state_->videoTrack;
}

std::optional<AudioTrack> MovieFile::audioTrack() const {
    return state_->audioTrack;
}

OtherContents MovieFile::otherContents() const {
    return state_->otherContents;
}

double MovieFile::duration() const {
    return state_->duration;
}

MovieTags MovieFile::tags() const {
    return state_->tags;
}

} // namespace lumetwin::media
