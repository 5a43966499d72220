// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/LayoutTexts.h"

namespace lumetwin {

namespace {

const char *arrangementKey(const StereoLayout &layout) {
    switch (layout.arrangement) {
    case EyeArrangement::sideBySide:
        return layout.isHalf ? "layout.side.by.side.half" : "layout.side.by.side";
    case EyeArrangement::overUnder:
        return layout.isHalf ? "layout.over.under.half" : "layout.over.under";
    case EyeArrangement::twoPictures:
        return "layout.two.pictures";
    case EyeArrangement::twoStreams:
        return "layout.two.streams";
    case EyeArrangement::twoFiles:
        return "layout.two.files";
    case EyeArrangement::alternating:
        return "layout.alternating";
    case EyeArrangement::interleaved:
        return "layout.interleaved";
    case EyeArrangement::secondUnread:
        return "layout.second.unread";
    }
    return "";
}

const char *sourceKey(LayoutSource source) {
    switch (source) {
    case LayoutSource::none:
        return "layout.source.none";
    case LayoutSource::container:
        return "layout.source.container";
    case LayoutSource::stream:
        return "layout.source.stream";
    case LayoutSource::fileName:
        return "layout.source.file.name";
    case LayoutSource::picture:
        return "layout.source.picture";
    case LayoutSource::user:
        return "layout.source.user";
    }
    return "";
}

} // namespace

Words layoutWords(const StereoLayout &layout) {
    const Words arrangement = words(arrangementKey(layout));
    return layout.rightEyeFirst ? words("layout.right.first.format", arrangement) : arrangement;
}

Words sourceWords(LayoutSource source) {
    return words(sourceKey(source));
}

Words projectionWords(const std::string &projection) {
    if (projection == "equi")
        return words("projection.equirectangular");
    if (projection == "hequ")
        return words("projection.half.equirectangular");
    if (projection == "fish")
        return words("projection.fisheye");
    if (projection == "cyli")
        return words("projection.cylindrical");
    if (projection == "cube")
        return words("projection.cube");
    return words("projection.other.format", projection);
}

} // namespace lumetwin
