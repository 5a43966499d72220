// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/geometry/SBSGeometry.h"
#include "engine/preview/PreviewModes.h"
#include "engine/preview/PreviewPixels.h"
#include "engine/preview/PreviewSize.h"
#include "engine/stereo/EyeExtraction.h"
#include "media/Compositor.h"
#include "model/SettingsRules.h"

#include <cmath>
#include <optional>
#include <utility>

namespace lumetwin {

namespace {

/// What is written: its size in pixels, and where the whole eyes lie in it.
struct Frame {
    double width = 0;
    double height = 0;
    media::EyePair<media::Placement> eyes; ///< of which the source is not used
};

bool isPossible(std::int64_t side) {
    return side >= smallestSide && side <= largestSide;
}

std::optional<Frame> sideBySideFrame(const ConversionSettings &settings, const PreviewFacts &facts) {
    const SBSGeometry geometry = sbsGeometry(settings, facts.eyeWidth, facts.eyeHeight);
    if (geometry.outW < 1 || geometry.outH < 1)
        return std::nullopt;
    return Frame{static_cast<double>(geometry.outW),
                 static_cast<double>(geometry.outH),
                 {geometry.leftHalf({}), geometry.rightHalf({})}};
}

/// The eyes of spatial media, beside each other.
std::optional<Frame> spatialEyes(const ConversionSettings &settings, const PreviewFacts &facts) {
    const EyeCells cells = eyeCells({.arrangement = EyeArrangement::twoPictures}, facts.eyeWidth, facts.eyeHeight);
    const EyeSize eye = eyeSize(settings, cells);
    const EyeExtraction extraction = eyeExtraction(settings, eye, cells);
    Frame frame{2 * static_cast<double>(eye.width), static_cast<double>(eye.height), extraction};
    frame.eyes.right.target.x += static_cast<double>(eye.width);
    frame.eyes.right.clip.x += static_cast<double>(eye.width);
    return frame;
}

std::optional<Frame> frameOf(const ConversionSettings &settings, const PreviewFacts &facts) {
    if (!isPossible(facts.eyeWidth) || !isPossible(facts.eyeHeight))
        return std::nullopt;
    if (settings.enableResize && (!isPossible(settings.resizeWidth) || !isPossible(settings.resizeHeight)))
        return std::nullopt;
    return settings.direction == ConversionDirection::spatialToSBS ? sideBySideFrame(settings, facts)
                                                                   : spatialEyes(settings, facts);
}

/// The size in which a frame is shown. The halves get the same number of columns where they have that.
PreviewSize shownSize(const Frame &frame, double pixelAspect, int maximumWidth, int maximumHeight) {
    PreviewSize size = fittedPreview(frame.width, frame.height, pixelAspect, maximumWidth, maximumHeight);
    if (std::fmod(frame.width, 2) == 0 && size.width > 1)
        size.width -= size.width % 2;
    return size;
}

/// Places a picture as a placement of the frame says, in a canvas that shows the frame reduced. The edges of the halves
/// lie between pixels.
void place(const media::Picture &picture, const media::Placement &wanted, const Frame &frame, media::Picture &canvas) {
    const double scaleX = canvas.width / frame.width;
    const double scaleY = canvas.height / frame.height;
    const media::Rect &target = wanted.target;
    const double left = std::round(wanted.clip.x * scaleX);
    const double right = std::round((wanted.clip.x + wanted.clip.width) * scaleX);
    const media::Placement shown{wholeOf(picture),
                                 {target.x * scaleX, target.y * scaleY, target.width * scaleX, target.height * scaleY},
                                 {left, 0, right - left, static_cast<double>(canvas.height)}};
    media::Compositor().place(picture, shown, canvas);
}

} // namespace

PreviewPicture asWritten(const ConversionSettings &settings, const PreviewFacts &facts, const PreviewPicture &left,
                         const PreviewPicture &right, int maximumWidth, int maximumHeight) {
    const std::optional<Frame> frame = left.isEmpty() ? std::nullopt : frameOf(settings, facts);
    if (!frame)
        return {};
    // A size of the user's is that on the screen.
    const double pixelAspect = settings.enableResize ? 1 : facts.pixelAspect;
    const PreviewSize size = shownSize(*frame, pixelAspect, maximumWidth, maximumHeight);
    media::Picture canvas = emptyPlanes(size.width, size.height);
    media::Compositor::fillBlack(canvas);
    media::EyePair<media::Picture> eyes{planesOf(left), planesOf(right.isEmpty() ? left : right)};
    if (settings.swapLeftRight)
        std::swap(eyes.left, eyes.right);
    place(eyes.left, frame->eyes.left, *frame, canvas);
    place(eyes.right, frame->eyes.right, *frame, canvas);
    return {size.width, size.height, std::make_shared<const std::vector<std::uint8_t>>(interleaved(canvas))};
}

} // namespace lumetwin
