// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/SourceLayout.h"

#include "engine/texts/LayoutTexts.h"
#include "engine/texts/ProcessorError.h"

#include <numeric>
#include <utility>

namespace lumetwin {

namespace {

using Arrangement = EyeArrangement;

StereoLayout layoutOf(InputLayout chosen) {
    const auto layout = [](Arrangement arrangement, bool isHalf) {
        return StereoLayout{arrangement, isHalf, false, LayoutSource::user};
    };
    switch (chosen) {
    case InputLayout::automatic:
        break;
    case InputLayout::sideBySide:
        return layout(Arrangement::sideBySide, false);
    case InputLayout::halfSideBySide:
        return layout(Arrangement::sideBySide, true);
    case InputLayout::overUnder:
        return layout(Arrangement::overUnder, false);
    case InputLayout::halfOverUnder:
        return layout(Arrangement::overUnder, true);
    case InputLayout::twoPictures:
        return layout(Arrangement::twoPictures, false);
    case InputLayout::twoStreams:
        return layout(Arrangement::twoStreams, false);
    case InputLayout::twoFiles:
        return layout(Arrangement::twoFiles, false);
    }
    return {};
}

/// Whether a source is more than a guess.
bool isBelieved(const StereoLayout &layout) {
    return layout.source == LayoutSource::container || layout.source == LayoutSource::stream ||
           layout.arrangement == Arrangement::twoFiles; // the batch has found both
}

bool isFlatProjection(const std::string &projection) {
    return projection.empty() || projection == "rect";
}

} // namespace

StereoLayout sourceLayout(InputLayout chosen, const MediaFacts &facts) {
    const bool fileSays = facts.layout && isBelieved(*facts.layout);
    if (chosen == InputLayout::automatic)
        return fileSays ? *facts.layout : StereoLayout{};
    StereoLayout layout = layoutOf(chosen);
    if (fileSays && facts.layout->arrangement == layout.arrangement)
        layout.rightEyeFirst = facts.layout->rightEyeFirst;
    return layout;
}

void requireReadable(const StereoLayout &layout) {
    if (layout.arrangement == Arrangement::secondUnread)
        throw ProcessorError(words("error.second.eye.unread"));
    if (layout.arrangement == Arrangement::alternating || layout.arrangement == Arrangement::interleaved)
        throw ProcessorError(words("error.layout.unsupported.format", layoutWords(layout)));
}

std::vector<Warning> layoutWarnings(const StereoLayout &used, const MediaFacts &facts) {
    std::vector<Warning> warnings;
    const bool isUsers = used.source == LayoutSource::user;
    if (!isUsers && facts.layout && !isBelieved(*facts.layout) && !facts.layout->agreesWith(used))
        warnings.push_back({WarningKind::nameSuggestsLayout, {layoutWords(*facts.layout).shown}});
    if (!isUsers && facts.otherLayout && !facts.otherLayout->agreesWith(used)) {
        const StereoLayout &other = *facts.otherLayout;
        if (isBelieved(other))
            warnings.push_back({WarningKind::layoutsDisagree,
                                {layoutWords(used).shown, sourceWords(used.source).shown, layoutWords(other).shown,
                                 sourceWords(other.source).shown}});
        else if (other.arrangement != used.arrangement || other.isHalf != used.isHalf)
            warnings.push_back({WarningKind::nameSuggestsLayout, {layoutWords(other).shown}});
    }
    if (!isFlatProjection(facts.projection))
        warnings.push_back({WarningKind::notRectilinear, {projectionWords(facts.projection).shown}});
    if (used.source != LayoutSource::none && (used.arrangement != Arrangement::sideBySide || used.isHalf))
        warnings.push_back({WarningKind::layoutUsed, {layoutWords(used).shown, sourceWords(used.source).shown}});
    if (used.rightEyeFirst)
        warnings.push_back(
            {WarningKind::eyesPutRight, {sourceWords(isUsers ? facts.layout->source : used.source).shown}});
    return warnings;
}

bool isInOnePicture(const StereoLayout &layout) {
    return layout.arrangement == Arrangement::sideBySide || layout.arrangement == Arrangement::overUnder;
}

EyeCells eyeCells(const StereoLayout &layout, std::int64_t sourceWidth, std::int64_t sourceHeight) {
    const bool beside = layout.arrangement == Arrangement::sideBySide;
    const bool above = layout.arrangement == Arrangement::overUnder;
    const std::int64_t columns = beside ? sourceWidth / 2 : sourceWidth;
    const std::int64_t rows = above ? sourceHeight / 2 : sourceHeight;
    const auto width = static_cast<double>(columns);
    const auto height = static_cast<double>(rows);
    EyeCells cells;
    cells.left = {0, 0, width, height};
    cells.right = {beside ? width : 0, above ? height : 0, width, height};
    if (layout.rightEyeFirst)
        std::swap(cells.left, cells.right);
    cells.shownWidth = beside && layout.isHalf ? columns * 2 : columns;
    cells.shownHeight = above && layout.isHalf ? rows * 2 : rows;
    return cells;
}

media::PixelAspect eyePixelAspect(const StereoLayout &layout, const media::PixelAspect &source) {
    if (!layout.isHalf)
        return source;
    // A half layout is often told by pixels that are twice as wide (or high) as they should be.
    constexpr double nearlyTwo = 1.6; // pixels of discs are up to 1.46 : 1
    const double ratio = static_cast<double>(source.width) / source.height;
    media::PixelAspect eye = source;
    if (layout.arrangement == Arrangement::sideBySide && ratio >= nearlyTwo)
        eye.height *= 2;
    if (layout.arrangement == Arrangement::overUnder && ratio <= 1 / nearlyTwo)
        eye.width *= 2;
    const int divisor = std::gcd(eye.width, eye.height);
    return {eye.width / divisor, eye.height / divisor};
}

} // namespace lumetwin
