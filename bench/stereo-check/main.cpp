// SPDX-License-Identifier: GPL-3.0-or-later
// Prints what the check of the eyes finds in each file, as one JSON object a line, with the time that it took.
//
// lumetwin-stereo-check [--over-under] [--half] [--swap] [--evidence] FILES
// lumetwin-stereo-check --scenes    draws scenes with a floor or a ceiling, in order and exchanged
#include "engine/inspection/MediaKinds.h"
#include "engine/inspection/StereoCheck.h"
#include "engine/stereo/StereoLook.h"
#include "media/FrameSampler.h"
#include "media/ImagePreview.h"
#include "tests/support/StereoScenes.h"

#include <nlohmann/json.hpp>

#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <string_view>

namespace {

using namespace lumetwin;
using Json = nlohmann::json;

Json describe(const StereoFindings &found) {
    Json json{{"examined", found.wasExamined},
              {"seen", found.seen ? Json(rawValue(*found.seen)) : Json()},
              {"flat", found.looksFlat},
              {"level", found.isLevel},
              {"swapped", found.probablySwapped}};
    if (found.disparity)
        json["disparity"] = {found.disparity->nearest, found.disparity->middle, found.disparity->farthest,
                             found.disparity->vertical};
    return json;
}

Json describe(const StereoLook &look) {
    const StereoEvidence &evidence = look.evidence;
    return {
        {"distinct", evidence.distinct},     {"correlated", evidence.correlated}, {"returning", evidence.returning},
        {"agreeing", evidence.agreeing},     {"coherent", evidence.coherent},     {"likeness", evidence.likeness},
        {"unevenness", evidence.unevenness}, {"slope", look.order.slope},         {"occlusion", look.order.occlusion},
        {"certainty", look.order.certainty}, {"strips", look.order.strips}};
}

Json evidenceOf(const media::InputFile &file, const StereoLayout &layout) {
    Json looks = Json::array();
    const auto take = [&](const media::Picture &frame) {
        looks.push_back(describe(lookAtFrame(frame, layout)));
        return true;
    };
    if (isPhotoFile(file.path()))
        take(media::readPreview(file, 1024, 640));
    else
        media::sampleFrames(file, std::array{0.1, 0.3, 0.5, 0.7, 0.9},
                            [&](const media::SampledFrame &frame) { return take(frame.picture); });
    return looks;
}

void check(const char *name, const StereoLayout &layout, bool withEvidence) {
    Json line{{"file", name}};
    try {
        const media::InputFile file(name);
        const auto began = std::chrono::steady_clock::now();
        line.update(describe(examine(file, layout)));
        line["seconds"] = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
        if (withEvidence)
            line["evidence"] = evidenceOf(file, layout);
    } catch (const std::exception &error) {
        line["error"] = error.what();
    }
    std::puts(line.dump().c_str());
}

void checkScene(unsigned seed, bool isHanging, bool isExchanged) {
    const test::StereoScene scene{.far = 0.1 * (seed % 26),
                                  .near = -0.4 - 0.1 * (seed % 23),
                                  .things = 3 + static_cast<int>(seed % 10),
                                  .isHanging = isHanging,
                                  .seed = seed};
    media::EyePair<media::Picture> eyes = test::drawnEyes(scene);
    if (isExchanged)
        std::swap(eyes.left, eyes.right);
    Json line = describe(findings(std::array{lookAtFrame(test::besideEachOther(eyes), {})}));
    line["scene"] = std::string(isHanging ? "a ceiling and things that hang" : "a floor and things that stand on it") +
                    (isExchanged ? ", exchanged" : ", in order");
    std::puts(line.dump().c_str());
}

void checkScenes() {
    constexpr unsigned scenes = 100;
    for (const bool isHanging : {false, true})
        for (const bool isExchanged : {false, true})
            for (unsigned seed = 1; seed <= scenes; ++seed)
                checkScene(seed, isHanging, isExchanged);
}

} // namespace

int main(int count, char **arguments) {
    StereoLayout layout;
    bool withEvidence = false;
    for (int index = 1; index < count; ++index) {
        const std::string_view word = arguments[index];
        if (word == "--over-under")
            layout.arrangement = EyeArrangement::overUnder;
        else if (word == "--half")
            layout.isHalf = true;
        else if (word == "--swap")
            layout.rightEyeFirst = true;
        else if (word == "--scenes")
            checkScenes();
        else if (word == "--evidence")
            withEvidence = true;
        else
            check(arguments[index], layout, withEvidence);
    }
    return 0;
}
