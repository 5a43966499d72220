// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/hevc/CodedUnits.h"
#include "media/hevc/SequenceParameterSet.h"
#include "media/x265/ConformanceWindow.h"

/// The first byte is the coding, the next two are a size to show; a unit or a configuration record follows.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace lumetwin::media;
    if (size < 3)
        return 0;
    const hevc::NalBytes bytes(data + 3, size - 3);
    hevc::readSequenceParameterSet(bytes);
    x265::withConformanceWindow(bytes, data[1] * 8, data[2] * 8);
    const hevc::Coding coding = data[0] & 1 ? hevc::Coding::hevc : hevc::Coding::avc;
    for (const hevc::NalBytes unit : hevc::readConfiguration(coding, bytes).units)
        hevc::readSequenceParameterSet(unit);
    return 0;
}
