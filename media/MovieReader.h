// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/AudioBlock.h"
#include "media/FrameTimes.h"
#include "media/MovieTags.h"
#include "media/Picture.h"
#include "media/PixelAspect.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace lumetwin::media {

/// Facts of a movie's first video track.
struct VideoTrack {
    int index = 0;           ///< of the stream in its container
    double naturalWidth = 0; ///< pixels as stored: no rotation applied
    double naturalHeight = 0;
    PixelAspect pixelAspect;
    FramePace pace;              ///< rate 0 when unknown
    std::int64_t frameCount = 0; ///< frames that are shown, 0 when unknown
    bool hasTimes = true;        ///< raw streams have none
    /// When each frame is shown, in the track's ticks, where the file counts frames as they are coded (AVI) and the
    /// times of single frames mean nothing; else null.
    std::shared_ptr<const std::vector<std::int64_t>> listedTimes;
    Fraction tick;        ///< unit of the frames' times, seconds
    double startTime = 0; ///< presentation time of the first frame, seconds
    int rotation = 0;     ///< degrees, clockwise, that the frames are to be turned by: 0 to 359
    PictureFormat format;
    ColourTags colour;
};

/// Facts of a movie's first audio track; zero where the track does not tell.
struct AudioTrack {
    int index = 0;
    double sampleRate = 0;
    int channels = 0;
    double startTime = 0; ///< seconds
};

/// What a movie holds beside its first video and its first audio track.
struct OtherContents {
    int audioTracks = 0;
    int subtitleTracks = 0;
    int chapters = 0;
};

/// A movie that has been opened and whose headers have been read. What it tells stays the same, also while a frame
/// reader reads on.
class MovieFile {
public:
    /// Reads the headers, and the whole file where they do not list the frames; that ends early, with fewer frames,
    /// once `cancelled` says so. Throws MediaError when the file cannot be opened or is no movie.
    explicit MovieFile(const std::filesystem::path &file, const std::function<bool()> &cancelled = {});
    ~MovieFile();

    const std::filesystem::path &path() const;
    std::optional<VideoTrack> videoTrack() const;
    std::optional<AudioTrack> audioTrack() const;
    OtherContents otherContents() const;
    double duration() const; ///< seconds
    MovieTags tags() const;

private:
    friend class FrameReader;
    struct State;
    std::unique_ptr<State> state_;
};

enum class StereoView { none, left, right };

/// One picture of a frame and the eye that the stream says it is for.
struct TaggedPicture {
    Picture picture;
    StereoView view = StereoView::none;
};

/// What one presentation time holds: one picture, or the two views of a stereo frame in decoding order.
struct Frame {
    std::array<TaggedPicture, 2> pictures;
    int count = 0;
    std::optional<std::int64_t> time; ///< when it is shown, in the track's ticks; nothing where the track has no times
    std::int64_t duration = 0;        ///< in ticks, 0 when unknown
    std::span<const TaggedPicture> views() const { return {pictures.data(), static_cast<std::size_t>(count)}; }
};

enum class Views { base, all };

/// Decodes a movie's video track from beginning to end, a few frames ahead on a thread of its own. Damaged frames
/// are passed over; a file that ends early ends the reading. It reads through the movie's own demuxer: one
/// frame reader for each opened movie, which must outlive it.
class FrameReader {
public:
    /// Throws MediaError when the track cannot be decoded (no decoder, encrypted, …).
    FrameReader(MovieFile &movie, const VideoTrack &track, Views views);
    ~FrameReader();
    /// The next frame in presentation order; nothing at the end.
    std::optional<Frame> next();
    /// Whether data was damaged or missing; known once next() has returned nothing.
    bool damaged() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The sample rate that AAC carries (ISO/IEC 14496-3, table 1.18) for a source of the given rate: its own, else the
/// next higher one, else the highest.
int aacSampleRate(double sourceRate);

/// Decodes a movie's audio track to 16-bit PCM of the given rate and one or two channels (more are mixed
/// down), beginning at the given time of the movie: sound before it is cut, a late start and gaps are filled with
/// silence.
class AudioReader {
public:
    /// Throws MediaError when the track cannot be decoded or is encrypted; next() does where it is further on.
    AudioReader(const std::filesystem::path &file, const AudioTrack &track, int sampleRate, int channels,
                double fromTime);
    ~AudioReader();
    std::optional<AudioBlock> next();

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumetwin::media
