// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/hevc/FramePackingUnit.h"

#include "media/hevc/BitWriter.h"

namespace lumetwin::media::hevc {

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes message(const StereoPacking &packing, Coding coding) {
    const bool isHevc = coding == Coding::hevc;
    BitWriter writer;
    writer.number(0); // identifier
    writer.bit(0);    // not the end of an earlier one
    writer.bits(7, packing.arrangement == StereoPacking::Arrangement::overUnder ? 4 : 3);
    writer.bit(0); // no quincunx sampling
    writer.bits(6, packing.rightEyeFirst ? 2 : 1);
    writer.bits(6, 0);  // not mirrored, no fields, no views that are coded for themselves
    writer.bits(16, 0); // places in the grid
    writer.bits(8, 0);
    isHevc ? writer.bit(1) : writer.number(1); // holds until the next one
    writer.bit(isHevc && packing.isHalf);      // the pixel aspect is that of whole eyes; in H.264 no extension
    if (!writer.aligned())
        writer.bit(1); // the rest of the byte is zeros
    return writer.take();
}

} // namespace

Bytes framePackingUnit(const StereoPacking &packing, Coding coding) {
    constexpr std::uint8_t payloadType = 45;
    constexpr std::uint8_t trailing = 0x80;
    const Bytes content = message(packing, coding);
    Bytes unit = coding == Coding::avc ? Bytes{6} : Bytes{NalType::prefixInformation << 1, 1};
    unit.insert(unit.end(), {payloadType, static_cast<std::uint8_t>(content.size())});
    unit.insert(unit.end(), content.begin(), content.end());
    unit.push_back(trailing);
    return withEmulationPrevention(unit);
}

std::size_t beforeFirstSlice(NalBytes sample, Coding coding) {
    constexpr int lastAvcSlice = 5;
    for (const NalBytes unit : unitsOf(sample, 0)) {
        const int avcType = unit[0] & 31;
        const bool slice =
            coding == Coding::avc ? avcType >= 1 && avcType <= lastAvcSlice : nalType(unit) <= NalType::lastPicture;
        if (!slice)
            continue;
        std::size_t place = static_cast<std::size_t>(unit.data() - sample.data()) - 3;
        if (place > 0 && sample[place - 1] == 0) // the longer start code
            --place;
        return place;
    }
    return sample.size();
}

} // namespace lumetwin::media::hevc
