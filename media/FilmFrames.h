// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/FrameReader.h"
#include "media/InputFile.h"
#include "media/MovieFile.h"
#include "media/PixelAspect.h"

#include <memory>
#include <optional>

namespace lumetwin::media {

/// What is known of one of a movie's video tracks; 0 when unknown. Size and shape are certain from the first frame on.
struct FilmFacts {
    double naturalWidth = 0; ///< pixels as stored, without rotation
    double naturalHeight = 0;
    PixelAspect pixelAspect;
    double duration = 0;  ///< seconds
    double frameRate = 0; ///< frames per second, on average
    int videoStreams = 0; ///< of the movie; cover pictures do not count
};

/// Which frame is given for a place in a film.
enum class FrameChoice {
    /// A random access picture: the last one before the place, or the next one where there is none before. Its blocks
    /// are not smoothed. Faster.
    near,
    /// The same; of pictures of two views that take long to decode, the base view alone.
    soon,
    /// The one that is shown there, up to ten seconds behind a random access picture; beyond, and in tracks without
    /// times, the nearest one that is reached.
    exact,
};

/// Decodes single frames of a movie's video track. Opening reads the headers only, not, as MovieFile does, the times of
/// all frames. For one thread.
class FilmFrames {
public:
    /// Throws MediaError when the file is not a movie, lacks the track or a decoder for it, or is encrypted.
    FilmFrames(const InputFile &file, Views views, FrameChoice choice, VideoStream video = VideoStream::first);
    ~FilmFrames();

    const FilmFacts &facts() const;

    struct Moment {
        Frame frame;
        double seconds = 0;               ///< since the beginning of the track; 0 when the track has no times
        bool isWithoutSecondView = false; ///< a second view is there, and takes too long to decode
    };

    /// The frame for a position (0: the beginning, 1: the end). nullopt when nothing can be decoded. Throws MediaError.
    std::optional<Moment> frameAt(double position);
    /// The frame for a time in seconds since the beginning of the track.
    std::optional<Moment> frameAtTime(double seconds);

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumetwin::media
