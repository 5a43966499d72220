// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/StereoCheck.h"

#include "engine/inspection/MediaKinds.h"
#include "engine/stereo/StereoLook.h"
#include "media/FrameSampler.h"
#include "media/ImagePreview.h"

#include <array>
#include <future>
#include <vector>

namespace lumetwin {

namespace {

constexpr std::array filmPositions{0.1, 0.3, 0.5, 0.7, 0.9};
// Twice the size at which eyes are compared, in either arrangement.
constexpr int previewWidth = 1024;
constexpr int previewHeight = 640;

bool isInOnePicture(const StereoLayout &layout) {
    return layout.arrangement == EyeArrangement::sideBySide || layout.arrangement == EyeArrangement::overUnder;
}

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

} // namespace

StereoFindings examine(const media::InputFile &file, const StereoLayout &layout) {
    if (!isInOnePicture(layout))
        return {};
    if (isPhotoFile(file.path()))
        return findings(std::array{lookAtFrame(media::readPreview(file, previewWidth, previewHeight), layout)});
    Looks looks;
    media::sampleFrames(file, filmPositions, [&](const media::Picture &frame) {
        looks.begin([frame, layout] { return lookAtFrame(frame, layout); });
        return true;
    });
    return looks.findings();
}

StereoFindings examineEyes(const std::function<media::EyePair<media::Picture>()> &next, EyeArrangement arrangement) {
    Looks looks;
    for (media::EyePair<media::Picture> eyes = next(); eyes.left && eyes.right; eyes = next())
        looks.begin([eyes, arrangement] { return lookAtEyes(eyes, arrangement); });
    return looks.findings();
}

} // namespace lumetwin
