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

} // namespace lumetwin::media
