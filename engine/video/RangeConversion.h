// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/StandardRange.h"

namespace lumetwin {

/// What the pictures of an output are: those of the source, or converted from high to standard range.
class RangeConversion {
public:
    /// With `convert`, pictures of high dynamic range become standard range; otherwise, and for others, nothing
    /// happens. width, height: of the pictures.
    RangeConversion(bool convert, const media::ColourTags &source, const media::LightLevels &levels, int width,
                    int height);

    /// Whether pictures are converted. Then they must come in ten bits, and become eight.
    bool converts() const { return conversion_ != nullptr; }
    /// The bits per sample of the pictures to be handed in, for an output of that depth.
    int workingDepth(int depth) const { return converts() ? 10 : depth; }
    media::ColourTags colour() const { return colour_; }
    media::LightLevels levels() const { return levels_; }

    media::Picture apply(const media::Picture &picture);

private:
    media::ColourTags colour_;
    media::LightLevels levels_;
    std::unique_ptr<media::StandardRange> conversion_;
    std::optional<media::PicturePool> pool_;
};

} // namespace lumetwin
