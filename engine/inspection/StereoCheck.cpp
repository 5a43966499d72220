// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/StereoCheck.h"

#include "engine/inspection/MediaKinds.h"
#include "engine/stereo/SourceLayout.h"
#include "engine/stereo/StereoLook.h"
#include "media/FrameSampler.h"
#include "media/Image.h"
#include "media/ImagePreview.h"
#include "media/PhotoPackings.h"
#include "media/SpatialPhoto.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <future>
#include <vector>

namespace lumetwin {

namespace {

using media::VideoStream;

constexpr std::array filmPositions{0.1, 0.3, 0.5, 0.7, 0.9};
// Twice the size at which eyes are compared, in either arrangement.
constexpr int previewWidth = 1024;
constexpr int previewHeight = 640;
constexpr double sameTime = 0.005; ///< seconds

/// Looks at pictures while the next ones are decoded.
class Looks {
public:
    template <typename Look> void begin(Look look) {
        pending_.push_back(std::async(std::launch::async, std::move(look)));
    }

    StereoFindings findings() {
        std::vector<StereoLook> looks;
        for (std::future<StereoLook> &look : pending_)
            looks.push_back(look.get());
        return lumetwin::findings(looks);
    }

private:
    std::vector<std::future<StereoLook>> pending_;
};

StereoFindings examineFrames(const media::InputFile &file, const StereoLayout &layout) {
    Looks looks;
    media::sampleFrames(file, filmPositions, [&](const media::SampledFrame &frame) {
        looks.begin([frame, layout] { return lookAtFrame(frame.picture, layout); });
        return true;
    });
    return looks.findings();
}

/// One eye of a film at some times.
struct EyeMoment {
    LumaPlane plane;
    double seconds = 0;
};

std::vector<EyeMoment> momentsOf(const media::InputFile &file, VideoStream video) {
    std::vector<EyeMoment> moments;
    const auto take = [&](const media::SampledFrame &frame) {
        moments.push_back({eyePlane(frame.picture), frame.seconds});
        return true;
    };
    media::sampleFrames(file, filmPositions, take, video);
    return moments;
}

media::EyePair<LumaPlane> inOrder(LumaPlane first, LumaPlane second, const StereoLayout &layout) {
    if (layout.rightEyeFirst)
        std::swap(first, second);
    return {std::move(first), std::move(second)};
}

/// Compares the moments that both streams have: random access pictures need not be at the same times.
StereoFindings examineStreams(const std::vector<EyeMoment> &first, const std::vector<EyeMoment> &second,
                              const StereoLayout &layout) {
    Looks looks;
    for (const EyeMoment &moment : first) {
        const auto partner = std::ranges::find_if(
            second, [&](const EyeMoment &other) { return std::abs(other.seconds - moment.seconds) < sameTime; });
        if (partner != second.end())
            looks.begin([eyes = inOrder(moment.plane, partner->plane, layout), layout] {
                return lookAtEyes(eyes, layout.arrangement);
            });
    }
    return looks.findings();
}

StereoFindings examineFilm(const ConversionInput &input, const StereoLayout &layout) {
    if (isInOnePicture(layout))
        return examineFrames(input, layout);
    const std::vector<EyeMoment> first = momentsOf(input, VideoStream::first);
    if (layout.arrangement == EyeArrangement::twoStreams)
        return examineStreams(first, momentsOf(input, VideoStream::second), layout);
    if (layout.arrangement == EyeArrangement::twoFiles && input.rightEye)
        return examineStreams(first, momentsOf(*input.rightEye, VideoStream::first), layout);
    return {};
}

StereoFindings examinePhoto(const ConversionInput &input, const StereoLayout &layout) {
    if (isInOnePicture(layout))
        return findings(std::array{lookAtFrame(media::readPreview(input, previewWidth, previewHeight), layout)});
    media::EyePair<LumaPlane> eyes;
    if (layout.arrangement == EyeArrangement::twoFiles && input.rightEye) {
        eyes.left = eyePlane(media::readPreview(input, previewWidth / 2, previewHeight / 2));
        eyes.right = eyePlane(media::readPreview(*input.rightEye, previewWidth / 2, previewHeight / 2));
    } else if (layout.arrangement == EyeArrangement::twoPictures) {
        media::readEyePictures(media::ImageFile(input), [&](media::Eye eye, const media::StillImage &image) {
            (eye == media::Eye::left ? eyes.left : eyes.right) = eyePlane(image.picture);
        });
    }
    return findings(
        std::array{lookAtEyes(inOrder(std::move(eyes.left), std::move(eyes.right), layout), layout.arrangement)});
}

} // namespace

StereoFindings examine(const ConversionInput &input, const StereoLayout &layout) {
    return isPhotoFile(input.path()) ? examinePhoto(input, layout) : examineFilm(input, layout);
}

} // namespace lumetwin
