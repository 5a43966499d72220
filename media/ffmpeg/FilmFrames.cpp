// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/FilmFrames.h"

#include "media/StereoMovieFacts.h"
#include "media/ffmpeg/FrameScan.h"
#include "media/ffmpeg/FrameSearch.h"
#include "media/ffmpeg/Input.h"
#include "media/ffmpeg/MovieFileState.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace lumetwin::media {

namespace {

constexpr int mostAttempts = 4; ///< random access pictures that are tried, and searches from one

int videoStreams(const AVFormatContext &input) {
    int count = 0;
    while (ffmpeg::videoStream(input, count))
        ++count;
    return count;
}

AVStream &requiredStream(const InputFile &file, AVFormatContext &input, VideoStream wanted) {
    const AVStream *stream = ffmpeg::videoStream(input, wanted == VideoStream::second ? 1 : 0);
    if (!stream)
        throw MediaError(file.path(), MediaOperation::decode, AVERROR_STREAM_NOT_FOUND, MediaReason::noFrame);
    return *input.streams[stream->index];
}

double secondsOf(std::int64_t time, AVRational base) {
    return time == AV_NOPTS_VALUE ? 0 : std::max(0.0, static_cast<double>(time) * av_q2d(base));
}

FilmFacts factsOf(const AVFormatContext &input, const AVStream &stream) {
    const ffmpeg::Cropping border = ffmpeg::cropping(*stream.codecpar);
    FilmFacts facts;
    facts.naturalWidth = stream.codecpar->width - border.left - border.right;
    facts.naturalHeight = stream.codecpar->height - border.top - border.bottom;
    facts.pixelAspect = ffmpeg::pixelAspect(stream);
    facts.duration = secondsOf(stream.duration, stream.time_base);
    if (facts.duration <= 0)
        facts.duration = secondsOf(input.duration, AV_TIME_BASE_Q);
    if (stream.avg_frame_rate.num > 0 && stream.avg_frame_rate.den > 0)
        facts.frameRate = av_q2d(stream.avg_frame_rate);
    if (ffmpeg::isWithoutTimes(input))
        facts.duration = 0; // an estimate by the bit rate
    facts.videoStreams = videoStreams(input);
    return facts;
}

} // namespace

namespace {

/// Whether the container's headers say what single random access pictures need. Then none of the film has to be decoded
/// to open it.
bool isDescribed(const AVFormatContext &input, VideoStream wanted) {
    const AVStream *stream = ffmpeg::videoStream(input, wanted == VideoStream::second ? 1 : 0);
    return stream && !ffmpeg::isWithoutTimes(input) && stream->codecpar->codec_id != AV_CODEC_ID_NONE &&
           stream->codecpar->width > 0 && stream->codecpar->height > 0 && stream->avg_frame_rate.num > 0 &&
           stream->start_time != AV_NOPTS_VALUE && factsOf(input, *stream).duration > 0;
}

ffmpeg::Input opened(const InputFile &file, FrameChoice choice, VideoStream video) {
    if (choice != FrameChoice::exact)
        if (ffmpeg::Input input(file, ffmpeg::Opening::headers); isDescribed(*input, video))
            return input;
    return ffmpeg::Input(file);
}

} // namespace

struct FilmFrames::State {
    InputFile file;
    ffmpeg::Input input;
    AVStream &stream;
    FilmFacts facts;
    bool bothViews;
    FrameChoice choice;
    std::int64_t begin; ///< time of the first frame, in ticks
    bool isMultilayer = false;

    State(const InputFile &theFile, Views views, FrameChoice theChoice, VideoStream video)
        : file(theFile), input(opened(file, theChoice, video)), stream(requiredStream(file, *input, video)),
          facts(factsOf(*input, stream)), bothViews(views == Views::all), choice(theChoice),
          begin(stream.start_time == AV_NOPTS_VALUE ? 0 : stream.start_time) {
        const StereoMovieFacts stereo = readStereoMovieFacts(file);
        isMultilayer = stereo.multilayer;
        if (stereo.encrypted)
            throw MediaError(file.path(), MediaOperation::decode, AVERROR(EACCES), MediaReason::encryptedMovie);
    }

    bool seekToTime(std::int64_t time) {
        if (time <= begin && ffmpeg::seeksToAnyPicture(*input))
            return av_seek_frame(input.get(), stream.index, 0, AVSEEK_FLAG_BYTE) >= 0;
        return av_seek_frame(input.get(), stream.index, time, AVSEEK_FLAG_BACKWARD) >= 0;
    }

    /// Where there are no times to seek by. Where that is impossible, too, the file is read on from where it is.
    void seekToByte(double position) {
        const auto byte = static_cast<std::int64_t>(std::min(1.0, position) * static_cast<double>(file.size()));
        av_seek_frame(input.get(), stream.index, byte, AVSEEK_FLAG_BYTE);
    }

    /// How much earlier, in ticks, to look for a random access picture from which the pictures that lead the next one
    /// can be decoded. Containers seek by the order of coding, from which pictures are at most 16 frames away.
    /// Transport streams seek to any picture, so that later attempts look farther back.
    std::int64_t stepBack(int attempt) const {
        constexpr double leastSeconds = 0.5;
        const double seconds = facts.frameRate > 0 ? std::max(leastSeconds, 16 / facts.frameRate) : leastSeconds;
        return static_cast<std::int64_t>(std::ceil(seconds / av_q2d(stream.time_base))) << 2 * attempt;
    }

    Moment momentOf(Frame frame, const ffmpeg::FrameSearch &by) {
        if (choice != FrameChoice::exact) { // only the headers were read
            facts.naturalWidth = frame.pictures[0].picture.width;
            facts.naturalHeight = frame.pictures[0].picture.height;
            facts.pixelAspect = ffmpeg::pixelAspect(stream, by.pixelShape());
        }
        const double seconds = frame.time ? secondsOf(*frame.time - begin, stream.time_base) : 0;
        return {std::move(frame), seconds, by.leftSecondViewOut()};
    }

    ffmpeg::FrameSearch::Omissions omissions() const {
        return {.loopFilter = choice != FrameChoice::exact,
                .slowSecondView = choice == FrameChoice::soon && isMultilayer};
    }

    /// The next random access picture that can be decoded.
    std::optional<Moment> nextFrame() {
        for (int attempt = 0; attempt < mostAttempts; ++attempt) {
            ffmpeg::FrameSearch search(file.path(), *input, stream, bothViews);
            if (std::optional<Frame> frame = search.randomAccessFrame(omissions()))
                return momentOf(std::move(*frame), search);
        }
        return std::nullopt;
    }

    /// A random access picture near a time.
    std::optional<Moment> nearFrame(std::int64_t time) {
        for (int attempt = 0; attempt < mostAttempts && seekToTime(time); ++attempt) {
            std::optional<Moment> found = nextFrame();
            if (found || time <= begin)
                return found;
            time = std::max(begin, time - stepBack(attempt));
        }
        seekToByte(facts.duration > 0 ? secondsOf(time - begin, stream.time_base) / facts.duration : 0);
        return nextFrame();
    }

    /// The last frame that is not later than a time.
    std::optional<Moment> exactFrame(std::int64_t time) {
        std::int64_t from = time;
        auto unreferenced = ffmpeg::FrameSearch::Unreferenced::leftOut;
        std::optional<Moment> found;
        for (int attempt = 0; attempt < mostAttempts && seekToTime(from); ++attempt) {
            ffmpeg::FrameSearch search(file.path(), *input, stream, bothViews);
            ffmpeg::FrameSearch::Result result = search.frameAt(time, unreferenced);
            if (result.isDoubtful) {
                unreferenced = ffmpeg::FrameSearch::Unreferenced::decoded;
                continue; // from the same place
            }
            if (result.frame && (!found || result.isReached))
                found = momentOf(std::move(*result.frame), search);
            if (result.isReached || from <= begin || result.begin.value_or(time) <= begin)
                break;
            from = std::max(begin, std::min(time, result.begin.value_or(time)) - stepBack(attempt));
        }
        return found;
    }
};

FilmFrames::FilmFrames(const InputFile &file, Views views, FrameChoice choice, VideoStream video)
    : state_(std::make_unique<State>(file, views, choice, video)) {}

FilmFrames::~FilmFrames() = default;

const FilmFacts &FilmFrames::facts() const {
    return state_->facts;
}

std::optional<FilmFrames::Moment> FilmFrames::frameAt(double position) {
    const double share = std::clamp(position, 0.0, 1.0);
    if (state_->facts.duration > 0)
        return frameAtTime(share * state_->facts.duration);
    if (share > 0)
        state_->seekToByte(share);
    return state_->nextFrame();
}

std::optional<FilmFrames::Moment> FilmFrames::frameAtTime(double seconds) {
    // A quarter of a frame early is still this frame: times are rounded.
    const double slack = state_->facts.frameRate > 0 ? 0.25 / state_->facts.frameRate : 0.001;
    const double ticks = (std::max(0.0, seconds) + slack) / av_q2d(state_->stream.time_base);
    const std::int64_t time = state_->begin + static_cast<std::int64_t>(std::min(ticks, 0x1p62));
    if (state_->choice == FrameChoice::exact)
        if (std::optional<Moment> moment = state_->exactFrame(time))
            return moment;
    return state_->nearFrame(time);
}

} // namespace lumetwin::media
