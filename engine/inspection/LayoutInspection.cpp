// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/LayoutInspection.h"

#include "engine/inspection/Inspection.h"
#include "engine/inspection/MediaKinds.h"
#include "media/PhotoPackings.h"
#include "media/VideoPackings.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

namespace lumetwin {

namespace {

EyeArrangement arrangementOf(media::StereoPacking::Arrangement arrangement) {
    switch (arrangement) {
    case media::StereoPacking::Arrangement::sideBySide:
        return EyeArrangement::sideBySide;
    case media::StereoPacking::Arrangement::overUnder:
        return EyeArrangement::overUnder;
    case media::StereoPacking::Arrangement::alternating:
        return EyeArrangement::alternating;
    case media::StereoPacking::Arrangement::interleaved:
        return EyeArrangement::interleaved;
    case media::StereoPacking::Arrangement::secondUnread:
        return EyeArrangement::secondUnread;
    }
    return EyeArrangement::sideBySide;
}

StereoLayout layoutOf(const media::StereoPacking &packing, LayoutSource source) {
    return {arrangementOf(packing.arrangement), packing.isHalf, packing.rightEyeFirst, source};
}

/// Adds what a source says: the first one is used, the first that says something else is kept beside it.
void add(MediaFacts &facts, const std::optional<StereoLayout> &said) {
    if (!said)
        return;
    if (!facts.layout)
        facts.layout = said;
    else if (!facts.otherLayout && !said->agreesWith(*facts.layout))
        facts.otherLayout = said;
}

/// What the definition of a file format says: the halves of these files are exchanged, for crossed eyes.
std::optional<StereoLayout> layoutOfFormat(const std::filesystem::path &file) {
    const std::string extension = lowerCasedExtension(file);
    if (extension != "jps" && extension != "pns")
        return std::nullopt;
    return StereoLayout{EyeArrangement::sideBySide, false, true, LayoutSource::container};
}

void addPhoto(MediaFacts &facts, const media::InputFile &file) {
    const media::PhotoPackings packings = media::readPhotoPackings(file);
    if (packings.eyePictures >= 2)
        add(facts, StereoLayout{EyeArrangement::twoPictures, false, false, LayoutSource::container});
    if (packings.packing)
        add(facts, layoutOf(*packings.packing, LayoutSource::container));
    if (!facts.layout)
        add(facts, layoutOfFormat(file.path()));
    facts.furtherPictures = packings.otherPictures + std::max(packings.eyePictures - 2, 0);
    facts.projection = packings.projection;
    facts.values.horizontalFOV = packings.horizontalFieldOfView;
    if (packings.baseline)
        facts.values.stereoBaseline = *packings.baseline * 1000;
    // Cameras that are turned towards each other have put the near things on the screen already.
    if (packings.convergence && *packings.convergence != 0)
        facts.values.disparity = 0;
}

/// A stream cannot say that its eyes are half as wide; the container's pixel shape can.
StereoLayout withShapeOf(StereoLayout stream, const std::optional<media::StereoPacking> &container) {
    if (container && arrangementOf(container->arrangement) == stream.arrangement)
        stream.isHalf = container->isHalf;
    return stream;
}

void addVideo(MediaFacts &facts, const media::InputFile &file) {
    const media::VideoPackings packings = media::readVideoPackings(file);
    if (packings.container)
        add(facts, layoutOf(*packings.container, LayoutSource::container));
    if (packings.stream)
        add(facts, withShapeOf(layoutOf(*packings.stream, LayoutSource::stream), packings.container));
    if (packings.secondStream && !facts.layout)
        add(facts, StereoLayout{EyeArrangement::twoStreams, false, false, LayoutSource::container});
    if (facts.projection.empty())
        facts.projection = packings.projection;
}

/// The words of a name in lower case (letters and digits), and what two and three of them make together.
std::vector<std::string> wordsOf(const std::filesystem::path &file) {
    std::vector<std::string> words(1);
    for (const char letter : file.stem().string()) {
        const auto byte = static_cast<unsigned char>(letter);
        if (std::isalnum(byte) != 0)
            words.back() += static_cast<char>(std::tolower(byte));
        else if (!words.back().empty())
            words.emplace_back();
    }
    std::vector<std::string> found = words;
    for (std::size_t index = 1; index < words.size(); ++index) {
        found.push_back(words[index - 1] + words[index]);
        if (index > 1)
            found.push_back(words[index - 2] + found.back());
    }
    return found;
}

} // namespace

std::optional<StereoLayout> layoutOfName(const std::filesystem::path &file) {
    using Arrangement = EyeArrangement;
    const std::vector<std::string> parts = wordsOf(file);
    const auto says = [&](std::initializer_list<const char *> candidates) {
        return std::ranges::any_of(candidates,
                                   [&](const char *word) { return std::ranges::find(parts, word) != parts.end(); });
    };
    const auto layout = [](Arrangement arrangement, bool isHalf) {
        return StereoLayout{arrangement, isHalf, false, LayoutSource::fileName};
    };
    const bool is3D = says({"3d"});
    if (says({"hsbs", "halfsbs", "sbshalf", "halfsidebyside"}))
        return layout(Arrangement::sideBySide, true);
    if (says({"hou", "htab", "halfou", "halftab", "ouhalf", "tabhalf", "halfoverunder", "halftopbottom"}))
        return layout(Arrangement::overUnder, true);
    if (says({"fsbs", "fullsbs", "sidebyside"}) || (is3D && says({"sbs"})))
        return layout(Arrangement::sideBySide, false);
    if (says({"fou", "ftab", "fullou", "fulltab", "overunder", "topbottom"}) || (is3D && says({"ou", "tab"})))
        return layout(Arrangement::overUnder, false);
    return std::nullopt;
}

MediaFacts lookClosely(const ConversionInput &input) noexcept {
    MediaFacts facts = lookAt(input);
    if (facts.isSpatial)
        return facts;
    try {
        if (input.rightEye)
            facts.layout = StereoLayout{EyeArrangement::twoFiles, false, false, LayoutSource::fileName};
        facts.kind == MediaFacts::Kind::photo ? addPhoto(facts, input) : addVideo(facts, input);
        add(facts, layoutOfName(input.path()));
    } catch (const std::exception &) { // of the memory
        return facts;
    }
    return facts;
}

} // namespace lumetwin
