// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/Encoder.h"

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

Encoder openEncoder(x265_param &parameters) {
    // The first encoder of a process initialises the library's function tables without a lock, so a second encoder
    // could use incomplete tables.
    static std::once_flag tables;
    Encoder encoder;
    std::call_once(tables, [&] { encoder.reset(x265_encoder_open(&parameters)); });
    if (!encoder)
        encoder.reset(x265_encoder_open(&parameters));
    return encoder;
}

} // namespace lumetwin::media::x265
