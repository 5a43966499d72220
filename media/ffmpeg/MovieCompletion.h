// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieWriter.h"

#include <optional>

namespace lumetwin::media::ffmpeg {

/// What a finished movie's header says beyond what the muxer writes.
class MovieCompletion {
public:
    explicit MovieCompletion(MovieTags tags) : tags_(std::move(tags)) {}

    /// The size of the video track with square pixels.
    void showPictures(int width, int height, PixelAspect aspect);
    void describePacking(const std::optional<StereoPacking> &packing) { packing_ = packing; }
    void describeStereo(const StereoVideoEncoding &encoding) { stereo_ = encoding; }
    const MovieTags &tags() const { return tags_; }
    const std::optional<StereoPacking> &packing() const { return packing_; }

    /// Throws MediaError.
    void apply(const OutputFile &file) const;

private:
    struct Size {
        int width;
        int height;
    };

    MovieTags tags_;
    std::optional<Size> shown_;
    std::optional<StereoVideoEncoding> stereo_;
    std::optional<StereoPacking> packing_;
};

} // namespace lumetwin::media::ffmpeg
