// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieFile.h"
#include "media/Picture.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace lumetwin::media {

enum class StereoView { none, left, right };

/// One picture of a frame, and its eye according to the stream.
struct TaggedPicture {
    Picture picture;
    StereoView view = StereoView::none;
};

/// The pictures of one presentation time: one picture, or the two views of a stereo frame in decoding order.
struct Frame {
    std::array<TaggedPicture, 2> pictures;
    int count = 0;
    std::optional<std::int64_t> time; ///< presentation time in the track's ticks; nullopt when the track has no times
    std::int64_t duration = 0;        ///< in ticks, 0 when unknown
    LightLevels levels;               ///< those of the stream
    std::span<const TaggedPicture> views() const { return {pictures.data(), static_cast<std::size_t>(count)}; }
};

enum class Views { base, all };

/// Decodes a movie's video track from beginning to end, on its own thread, a few frames ahead. Damaged frames are
/// skipped. A file that ends early ends the reading. It uses the movie's demuxer, so each opened movie can have only
/// one frame reader and must outlive it.
class FrameReader {
public:
    /// Throws MediaError when the track cannot be decoded (no decoder, encrypted, …).
    FrameReader(MovieFile &movie, const VideoTrack &track, Views views);
    ~FrameReader();
    /// The next frame in presentation order; nullopt at the end.
    std::optional<Frame> next();
    /// The frame that next() will return, without taking it; null at the end. Valid until next() is called.
    const Frame *ahead();
    /// Whether data was damaged or missing. Valid after next() has returned nullopt.
    bool damaged() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumetwin::media
