// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/FrameTimes.h"
#include "media/InputFile.h"
#include "media/LightLevels.h"
#include "media/MovieTags.h"
#include "media/Picture.h"
#include "media/PixelAspect.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace lumetwin::media {

/// Facts about a movie's first video track.
struct VideoTrack {
    int index = 0;           ///< of the stream in its container
    double naturalWidth = 0; ///< pixels as stored, without rotation
    double naturalHeight = 0;
    PixelAspect pixelAspect;
    FramePace pace;              ///< rate 0 when unknown
    std::int64_t frameCount = 0; ///< number of shown frames; 0 when unknown
    bool hasTimes = true;        ///< raw streams have none
    /// The presentation time of each frame in the track's ticks, for files that only count coded frames (AVI), so that
    /// the times of single packets are not reliable. Otherwise null.
    std::shared_ptr<const std::vector<std::int64_t>> listedTimes;
    Fraction tick;        ///< unit of the frames' times in seconds
    double startTime = 0; ///< presentation time of the first frame, seconds
    int rotation = 0;     ///< rotation to apply, in degrees clockwise: 0 to 359
    PictureFormat format;
    ColourTags colour;
    LightLevels levels; ///< those of the container
};

/// Facts about a movie's first audio track; 0 when unknown.
struct AudioTrack {
    int index = 0;
    double sampleRate = 0;
    int channels = 0;
    double startTime = 0; ///< seconds
};

/// The contents of a movie besides its first video and its first audio track.
struct OtherContents {
    int audioTracks = 0;
    int subtitleTracks = 0;
    int chapters = 0;
};

/// Which of a movie's video streams is its video track. Cover pictures do not count.
enum class VideoStream { first, second };

/// An opened movie with its headers read. Its facts do not change while a frame reader reads from it.
class MovieFile {
public:
    /// Reads the headers, and the whole file if they do not list all frames. That stops early, with fewer frames, when
    /// `cancelled` returns true. Throws MediaError when the file is not a movie.
    explicit MovieFile(const InputFile &file, const std::function<bool()> &cancelled = {},
                       VideoStream video = VideoStream::first);
    ~MovieFile();

    const InputFile &file() const;
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

} // namespace lumetwin::media
