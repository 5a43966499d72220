// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/StereoLook.h"

#include "engine/stereo/SourceLayout.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace lumetwin {

namespace {

constexpr int planeWidth = 512;
constexpr int tallestPlane = 512;

struct Size {
    int width = 0;
    int height = 0;
};

/// The size of the planes for eyes that are stored with one size and shown with another shape. Never enlarged.
Size planeSize(double width, double height, const StereoLayout &layout) {
    const double shownWidth = layout.arrangement == EyeArrangement::sideBySide && layout.isHalf ? 2 * width : width;
    const double shownHeight = layout.arrangement == EyeArrangement::overUnder && layout.isHalf ? 2 * height : height;
    const double columns = std::min<double>(planeWidth, width);
    const double rows = std::min({columns * shownHeight / shownWidth, height, static_cast<double>(tallestPlane)});
    return {static_cast<int>(columns), static_cast<int>(std::lround(rows))};
}

media::EyePair<LumaPlane> planesOf(const media::Picture &frame, const StereoLayout &layout) {
    const EyeCells cells = eyeCells(layout, frame.width, frame.height);
    const Size size = planeSize(cells.left.width, cells.left.height, layout);
    return {reducedLuma(frame, cells.left, size.width, size.height),
            reducedLuma(frame, cells.right, size.width, size.height)};
}

void lookAtPlanes(const media::EyePair<LumaPlane> &planes, StereoLook &look) {
    look.evidence = stereoEvidence(planes.left, planes.right);
    // The other cue takes longer, and tells nothing without this one.
    look.order.slope = look.evidence.slope;
    if (look.evidence.isStereo() && mayBeSwapped(look.order))
        look.order = eyeOrderCues(planes, look.evidence);
}

EyeArrangement otherOf(EyeArrangement arrangement) {
    return arrangement == EyeArrangement::sideBySide ? EyeArrangement::overUnder : EyeArrangement::sideBySide;
}

double medianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

template <typename Value> double median(std::span<const StereoLook> looks, const Value &value) {
    std::vector<double> values;
    for (const StereoLook &look : looks)
        values.push_back(value(look.evidence));
    return medianOf(std::move(values));
}

DisparityFigures medianFigures(std::span<const StereoLook> looks) {
    return {median(looks, [](const StereoEvidence &evidence) { return evidence.figures.nearest; }),
            median(looks, [](const StereoEvidence &evidence) { return evidence.figures.middle; }),
            median(looks, [](const StereoEvidence &evidence) { return evidence.figures.farthest; }),
            median(looks, [](const StereoEvidence &evidence) { return evidence.figures.vertical; })};
}

template <typename Test> std::vector<StereoLook> those(std::span<const StereoLook> looks, const Test &test) {
    std::vector<StereoLook> some;
    std::ranges::copy_if(looks, std::back_inserter(some), test);
    return some;
}

bool isMost(std::size_t part, std::size_t whole) {
    return 2 * part > whole;
}

std::vector<EyeOrderCues> ordersOf(std::span<const StereoLook> looks) {
    std::vector<EyeOrderCues> orders;
    std::ranges::transform(looks, std::back_inserter(orders), &StereoLook::order);
    return orders;
}

/// The other arrangement, if most looks see it.
std::optional<EyeArrangement> otherArrangement(std::span<const StereoLook> looks) {
    for (const EyeArrangement arrangement : {EyeArrangement::sideBySide, EyeArrangement::overUnder})
        if (isMost(static_cast<std::size_t>(std::ranges::count(looks, std::optional(arrangement), &StereoLook::other)),
                   looks.size()))
            return arrangement;
    return std::nullopt;
}

} // namespace

StereoLook lookAtFrame(const media::Picture &frame, const StereoLayout &layout) {
    StereoLook look{.arrangement = layout.arrangement, .evidence = {}, .order = {}, .other = {}};
    if (!isInOnePicture(layout))
        return look;
    lookAtPlanes(planesOf(frame, layout), look);
    if (look.evidence.isStereo())
        return look;
    const EyeArrangement other = otherOf(layout.arrangement);
    const media::EyePair<LumaPlane> planes = planesOf(frame, {.arrangement = other});
    if (stereoEvidence(planes.left, planes.right).isStereo())
        look.other = other;
    return look;
}

LumaPlane eyePlane(const media::Picture &eye) {
    const Size size = planeSize(eye.width, eye.height, {.arrangement = EyeArrangement::twoPictures});
    return reducedLuma(eye, {0, 0, static_cast<double>(eye.width), static_cast<double>(eye.height)}, size.width,
                       size.height);
}

StereoLook lookAtEyes(const media::EyePair<LumaPlane> &eyes, EyeArrangement arrangement) {
    StereoLook look{.arrangement = arrangement, .evidence = {}, .order = {}, .other = {}};
    lookAtPlanes(eyes, look);
    return look;
}

StereoFindings findings(std::span<const StereoLook> looks) {
    const std::vector<StereoLook> telling =
        those(looks, [](const StereoLook &look) { return look.evidence.isTelling() || look.other; });
    StereoFindings found;
    found.wasExamined = !telling.empty();
    if (telling.empty())
        return found;
    std::vector<StereoLook> stereo = those(telling, [](const StereoLook &look) { return look.evidence.isStereo(); });
    const bool isAligned = isMost(stereo.size(), telling.size());
    if (!isAligned)
        stereo = those(telling, [](const StereoLook &look) { return look.evidence.isUnalignedStereo(); });
    if (const auto other = isAligned ? std::nullopt : otherArrangement(telling)) {
        found.seen = other;
        return found;
    }
    if (!isMost(stereo.size(), telling.size()))
        return found;
    found.seen = stereo.front().arrangement;
    found.disparity = medianFigures(stereo);
    constexpr double whole = 100;
    found.unevenness =
        std::min(whole, median(stereo, [](const StereoEvidence &evidence) { return evidence.unevenness; }));
    const auto level = those(stereo, [](const StereoLook &look) { return look.evidence.isLevel(); });
    found.isLevel = isAligned && isMost(level.size(), stereo.size());
    found.looksFlat =
        isMost(those(stereo, [](const StereoLook &look) { return look.evidence.looksFlat(); }).size(), stereo.size());
    found.probablySwapped = isAligned && !found.looksFlat && areSwapped(ordersOf(stereo));
    return found;
}

} // namespace lumetwin
