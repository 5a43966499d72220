// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/FrameTimes.h"
#include "media/InputFile.h"
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
    /// once `cancelled` says so. Throws MediaError when the file is no movie.
    explicit MovieFile(const InputFile &file, const std::function<bool()> &cancelled = {});
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
