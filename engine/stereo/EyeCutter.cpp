// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/EyeCutter.h"

namespace lumetwin {

EyeCutter::EyeCutter(const EyeExtraction &extraction, const EyeSize &eye, const media::ColourTags &colour, int depth)
    : extraction_(extraction), format_{media::ColourModel::yuv, depth, 1, 1}, colour_(colour),
      pool_(static_cast<int>(eye.width), static_cast<int>(eye.height), format_, colour) {}

/// Whether the eye can be a view into the memory of the frame.
bool EyeCutter::isPartOf(const media::Picture &frame, const media::Placement &placement) const {
    const media::Rect &cell = placement.source;
    return extraction_.unscaled && frame.format == format_ && frame.colour == colour_ &&
           static_cast<int>(cell.x) % 2 == 0 && static_cast<int>(cell.y) % 2 == 0 &&
           cell.x + cell.width <= frame.width && cell.y + cell.height <= frame.height;
}

media::Picture EyeCutter::cut(const media::Picture &frame, const media::Placement &placement) {
    const media::Rect &cell = placement.source;
    if (isPartOf(frame, placement))
        return media::cropped(frame, static_cast<int>(cell.x), static_cast<int>(cell.y), static_cast<int>(cell.width),
                              static_cast<int>(cell.height));
    media::Picture canvas = pool_.take();
    media::Compositor::fillBlack(canvas);
    const media::Placement shown = withinPicture(placement, frame.width, frame.height);
    if (shown.source.width > 0 && shown.source.height > 0)
        compositor_.place(frame, shown, canvas);
    return canvas;
}

} // namespace lumetwin
