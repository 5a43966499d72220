// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/Encoder.h"

#include <array>
#include <mutex>

namespace lumetwin::media::x265 {

void setColour(x265_param &parameters, const ColourTags &colour) {
    auto &vui = parameters.vui;
    vui.bEnableVideoSignalTypePresentFlag = 1;
    vui.bEnableVideoFullRangeFlag = colour.range == ColourRange::full;
    vui.bEnableColorDescriptionPresentFlag = 1;
    vui.colorPrimaries = colour.primaries;
    vui.transferCharacteristics = colour.transfer;
    vui.matrixCoeffs = colour.matrix;
    if (colour.chromaLocation == ChromaLocation::unspecified)
        return;
    const int location = colour.chromaLocation == ChromaLocation::left     ? 0
                         : colour.chromaLocation == ChromaLocation::centre ? 1
                                                                           : 2;
    vui.bEnableChromaLocInfoPresentFlag = 1;
    vui.chromaSampleLocTypeTopField = location;
    vui.chromaSampleLocTypeBottomField = location;
}

const x265_api *libraryFor(int depth) {
    // Asked for a depth that it does not have, the library looks for another file each time.
    static const x265_api *const eight = x265_api_get(8);
    static const x265_api *const ten = x265_api_get(10);
    return depth > 8 ? ten : eight;
}

Encoder openEncoder(x265_param &parameters) {
    // The first encoder of a process initialises the library's function tables without a lock, so a second encoder
    // could use incomplete tables. Each depth has its own.
    static std::array<std::once_flag, 2> tables;
    const bool isDeep = parameters.internalBitDepth > 8;
    const x265_api *library = libraryFor(parameters.internalBitDepth);
    if (!library)
        return {};
    Encoder encoder(nullptr, {library});
    std::call_once(tables.at(isDeep ? 1 : 0), [&] { encoder.reset(library->encoder_open(&parameters)); });
    if (!encoder)
        encoder.reset(library->encoder_open(&parameters));
    return encoder;
}

} // namespace lumetwin::media::x265
