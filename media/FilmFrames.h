// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/FrameReader.h"
#include "media/InputFile.h"
#include "media/MovieFile.h"
#include "media/PixelAspect.h"

#include <memory>
#include <optional>

namespace lumetwin::media {

/// What the headers of a movie say of one of its video tracks; 0 when unknown.
struct FilmFacts {
    double naturalWidth = 0; ///< pixels as stored, without rotation
    double naturalHeight = 0;
    PixelAspect pixelAspect;
    double duration = 0;  ///< seconds
    double frameRate = 0; ///< frames per second, on average
    int videoStreams = 0; ///< of the movie; cover pictures do not count
};

/// Decodes single frames of a movie's video track. Opening reads the headers only, not, as MovieFile does, the times of
/// all frames. For one thread.
class FilmFrames {
public:
    /// Throws MediaError when the file is not a movie, lacks the track or a decoder for it, or is encrypted.
    FilmFrames(const InputFile &file, Views views, VideoStream video = VideoStream::first);
    ~FilmFrames();

    const FilmFacts &facts() const;

    struct Moment {
        Frame frame;
        double seconds = 0; ///< since the beginning of the track; 0 when the track has no times
    };

    /// The frame that is shown at a position (0: the beginning, 1: the end), or a random access picture near it: the
    /// last one before it, or the next one where there is none before. Exact is as far as ten seconds behind a random
    /// access picture; then, and in tracks without times, the nearest frame that is reached. nullopt when nothing can
    /// be decoded.
    std::optional<Moment> frameAt(double position, bool exact);
    /// The frame that is shown at a time in seconds since the beginning of the track.
    std::optional<Moment> frameAtTime(double seconds, bool exact);

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumetwin::media
