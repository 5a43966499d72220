// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/RangeConversion.h"

namespace lumetwin {

RangeConversion::RangeConversion(bool convert, const media::ColourTags &source, const media::LightLevels &levels,
                                 int width, int height)
    : colour_(source), levels_(levels) {
    if (!convert || !media::isHighDynamicRange(source))
        return;
    colour_ = media::StandardRange::video(source);
    levels_ = {};
    conversion_ = std::make_unique<media::StandardRange>(source, levels, colour_);
    pool_.emplace(width, height, media::yuv420, colour_);
}

media::Picture RangeConversion::apply(const media::Picture &picture) {
    if (!conversion_)
        return picture;
    media::Picture result = pool_->take();
    conversion_->convert(picture, result);
    return result;
}

} // namespace lumetwin
