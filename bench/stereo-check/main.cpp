// SPDX-License-Identifier: GPL-3.0-or-later
// Prints what the check of the eyes finds in each file, as one JSON object a line, with the time that it took.
//
// lumetwin-stereo-check [--over-under] [--swap] [--evidence] FILES
#include "engine/inspection/MediaKinds.h"
#include "engine/inspection/StereoCheck.h"
#include "engine/stereo/StereoLook.h"
#include "media/FrameSampler.h"
#include "media/ImagePreview.h"

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
        else if (word == "--evidence")
            withEvidence = true;
        else
            check(arguments[index], layout, withEvidence);
    }
    return 0;
}
